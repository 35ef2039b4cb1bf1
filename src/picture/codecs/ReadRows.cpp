// Rows on their way into a picture, see ReadRows.h.
#include "picture/codecs/ReadRows.h"

#include "picture/codecs/ByteReader.h"

#include <utility>
#include <vector>

namespace pictorel::codecs {
namespace {

constexpr std::size_t kColourSpaceAt = 16; // in the header of a profile

bool IsGreyProfile(ByteView icc) noexcept {
    return StartsWith(Slice(icc, kColourSpaceAt), "GRAY");
}

SampleLayout LayoutOf(bool isWide, bool isGreyProfile) noexcept {
    if (isGreyProfile) {
        return isWide ? SampleLayout::Grey16 : SampleLayout::Grey8;
    }
    return isWide ? SampleLayout::Rgba16 : SampleLayout::Bgra8;
}

std::uint8_t To8(std::uint8_t sample) noexcept {
    return sample;
}
std::uint8_t To8(std::uint16_t sample) noexcept {
    return static_cast<std::uint8_t>((sample * 255U + 32767U) / 65535U);
}

} // namespace

RowReader::RowReader(PixelArray& picture, ByteView iccProfile, bool isWide, bool isGrey)
    : rows_(picture.WritableRows()),
      stride_(picture.Stride()),
      isWide_(isWide),
      isGreyProfile_(isGrey && IsGreyProfile(iccProfile)),
      converter_(LayoutOf(isWide, isGreyProfile_), iccProfile) {
    Metadata details = picture.Details();
    details.icc = ProfileAfterConversion(iccProfile);
    picture.SetDetails(std::move(details));
}

void RowReader::Take(const void* samples, int x, int y, int pixels) const {
    std::uint8_t* const bgra = Place(x, y);
    if (!isGreyProfile_) {
        converter_.ConvertRow(samples, bgra, pixels);
    } else if (isWide_) {
        TakeGrey(static_cast<const std::uint16_t*>(samples), bgra, pixels);
    } else {
        TakeGrey(static_cast<const std::uint8_t*>(samples), bgra, pixels);
    }
}

template <class Sample>
void RowReader::TakeGrey(const Sample* samples, std::uint8_t* bgra, int pixels) const {
    const auto count = static_cast<std::size_t>(pixels);
    std::vector<Sample> grey(count);
    std::vector<std::uint8_t> alpha(count);
    for (std::size_t i = 0; i < count; ++i) {
        grey[i] = samples[4 * i + 1];
        alpha[i] = To8(samples[4 * i + 3]);
    }
    converter_.ConvertRow(grey.data(), bgra, pixels);
    for (std::size_t i = 0; i < count; ++i) {
        bgra[4 * i + 3] = alpha[i];
    }
}

} // namespace pictorel::codecs
