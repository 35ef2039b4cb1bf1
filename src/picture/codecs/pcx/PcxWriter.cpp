// Writing PCX files, see Pcx.h.
#include "picture/codecs/ByteReader.h"
#include "picture/codecs/PixelSupport.h"
#include "picture/codecs/RowBands.h"
#include "picture/codecs/pcx/Pcx.h"
#include "picture/codecs/pcx/PcxHeader.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace pictorel::codecs {
namespace {

constexpr int kPlanes = 3;
constexpr std::uint8_t kRun = 0xC0;
constexpr std::ptrdiff_t kLongestRun = 63;

// Every plane of a row for itself: readers that decode a plane at a time get their runs whole.
std::uint8_t* PackPlane(const std::uint8_t* plane, int planeBytes, std::uint8_t* out) {
    const std::uint8_t* const end = plane + planeBytes;
    while (plane < end) {
        const std::uint8_t value = *plane;
        if (plane + 1 == end || plane[1] != value) { // in photos nearly always, so without a branch
            *out = kRun | 1;
            out += value >= kRun ? 1 : 0;
            *out++ = value;
            ++plane;
            continue;
        }
        const std::uint8_t* const limit = plane + std::min(kLongestRun, end - plane);
        const std::uint8_t* next = plane + 2;
        while (next < limit && *next == value) {
            ++next;
        }
        *out++ = static_cast<std::uint8_t>(kRun | (next - plane));
        *out++ = value;
        plane = next;
    }
    return out;
}

// The row in planes of red, green and blue.
void SplitRow(const PixelArray& picture, int y, std::uint8_t* planes, std::size_t planeBytes) {
    std::vector<std::uint8_t> flat;
    const std::uint8_t* pixel = picture.Row(y);
    std::ptrdiff_t step = PixelArray::kComponents;
    if (picture.HasAlpha()) {
        flat.resize(static_cast<std::size_t>(picture.Width()) * 3);
        FlattenRow(picture, y, flat.data());
        pixel = flat.data();
        step = 3;
    }
    for (int x = 0; x < picture.Width(); ++x, pixel += step) {
        planes[x] = pixel[2];
        planes[planeBytes + static_cast<std::size_t>(x)] = pixel[1];
        planes[2 * planeBytes + static_cast<std::size_t>(x)] = pixel[0];
    }
}

std::uint8_t* PackPcxRow(const PixelArray& picture, int y, int planeBytes, std::uint8_t* out) {
    const auto bytes = static_cast<std::size_t>(planeBytes);
    std::vector<std::uint8_t> planes(kPlanes * bytes); // a last odd byte stays 0
    SplitRow(picture, y, planes.data(), bytes);
    for (std::size_t plane = 0; plane < kPlanes; ++plane) {
        out = PackPlane(planes.data() + plane * bytes, planeBytes, out);
    }
    return out;
}

std::uint32_t WholeInches(double dotsPerInch) {
    const double rounded = std::round(dotsPerInch);
    return rounded > 0 && rounded <= 65535 ? static_cast<std::uint32_t>(rounded) : 0;
}

void AppendHeader(ByteBuffer& file, const PixelArray& picture, int planeBytes) {
    file.assign({10, 5, 1, 8, 0, 0, 0, 0});
    AppendLittleEndian16(file, static_cast<std::uint32_t>(picture.Width() - 1));
    AppendLittleEndian16(file, static_cast<std::uint32_t>(picture.Height() - 1));
    AppendLittleEndian16(file, WholeInches(picture.Details().dotsPerInchX));
    AppendLittleEndian16(file, WholeInches(picture.Details().dotsPerInchY));
    file.resize(65);
    file.push_back(kPlanes);
    AppendLittleEndian16(file, static_cast<std::uint32_t>(planeBytes));
    AppendLittleEndian16(file, 1); // colour
    file.resize(kPcxHeaderBytes);
}

} // namespace

ByteBuffer WritePcx(const PixelArray& picture, const WriteOptions& /*options*/) {
    const int planeBytes = (picture.Width() + 1) / 2 * 2;
    ByteBuffer file;
    AppendHeader(file, picture, planeBytes);
    AppendRows(file, picture.Height(), std::size_t{2} * kPlanes * static_cast<std::size_t>(planeBytes),
               [&](int row, std::uint8_t* out) { return PackPcxRow(picture, row, planeBytes, out); });
    return file;
}

} // namespace pictorel::codecs
