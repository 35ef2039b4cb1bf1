// A channel of a JPEG 2000 picture, see J2kChannel.h.
#include "picture/codecs/j2k/J2kChannel.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace pictorel::codecs {
namespace {

constexpr int kWhite = 65535;
constexpr int kMostLevelBits = 16;

std::uint16_t Widened(std::int64_t value, int bits) {
    const std::int64_t most = (std::int64_t{1} << bits) - 1;
    return static_cast<std::uint16_t>((std::clamp<std::int64_t>(value, 0, most) * kWhite + most / 2) / most);
}

} // namespace

J2kChannel::J2kChannel(const J2kStream& stream, const Jp2Palette& palette, const Jp2Boxes::Channel& channel)
    : stream_(stream),
      component_(static_cast<std::size_t>(channel.component)),
      samples_(stream.components[component_]),
      isLookedUp_(channel.column != Jp2Boxes::kNoColumn) {
    FillLevels(palette, channel.column);
}

void J2kChannel::FillLevels(const Jp2Palette& palette, int column) {
    const int bits = std::min(samples_.bits, kMostLevelBits);
    droppedBits_ = samples_.bits - bits;
    levels_.resize(std::size_t{1} << bits);
    for (std::size_t sample = 0; sample < levels_.size(); ++sample) {
        if (isLookedUp_) {
            const auto& colours = palette.columns[static_cast<std::size_t>(column)];
            levels_[sample] =
                Widened(colours.values[std::min(sample, colours.values.size() - 1)], colours.bits);
        } else {
            levels_[sample] = Widened(static_cast<std::int64_t>(sample), bits);
        }
    }
}

std::uint16_t J2kChannel::LevelOf(const std::uint8_t* sample) const {
    std::uint32_t value = *sample;
    if (samples_.SampleBytes() == 2) {
        std::uint16_t wide = 0;
        std::memcpy(&wide, sample, sizeof wide);
        value = wide;
    } else if (samples_.SampleBytes() == 4) {
        std::memcpy(&value, sample, sizeof value);
    }
    const std::uint32_t half =
        samples_.isSigned ? 1U << (samples_.bits - 1) : 0U; // two's complement moved up
    return levels_[((value + half) >> droppedBits_) & (levels_.size() - 1)];
}

J2kChannel::Place J2kChannel::PlaceOf(std::int64_t pixel, std::int64_t pixelStep, std::int64_t sampleStep,
                                      std::int64_t begin, std::int64_t end) const {
    const auto inside = [=](std::int64_t at) { return std::clamp(at, begin, end - 1) - begin; };
    if (sampleStep == pixelStep || isLookedUp_) { // between two numbers of colours there is none
        const std::int64_t at = inside(sampleStep == pixelStep ? pixel : pixel * pixelStep / sampleStep);
        return {at, at, 0};
    }
    // In units of samples / kWhole, from the middle of the pixel to that of the samples.
    const std::int64_t at = (2 * pixel + 1) * pixelStep * kWhole / (2 * sampleStep) - kWhole / 2;
    const std::int64_t low = at < 0 ? -1 : at / kWhole;
    return {inside(low), inside(low + 1), static_cast<int>(at - low * kWhole)};
}

const std::uint8_t* J2kChannel::SampleAt(const J2kPlane& plane, std::int64_t x, std::int64_t y) const {
    return plane.data + (y * plane.area.Width() + x) * samples_.SampleBytes();
}

void J2kChannel::FetchRow(const J2kPlane& plane, const J2kArea& part, std::int64_t row, std::uint16_t* out,
                          std::size_t step) const {
    const J2kArea whole = stream_.grid.Sampled(stream_.stepX, stream_.stepY);
    const std::int64_t count = part.Width();
    if (plane.area.Width() == 0 || plane.area.Height() == 0) { // a sliver of a tile between coarse samples
        for (std::int64_t i = 0; i < count; ++i, out += step) {
            *out = static_cast<std::uint16_t>(Neutral());
        }
        return;
    }
    const Place y = PlaceOf(whole.y0 + part.y0 + row, stream_.stepY, samples_.stepY << plane.halvings,
                            plane.area.y0, plane.area.y1);
    const std::int64_t first = whole.x0 + part.x0;
    const std::int64_t sampleStep = samples_.stepX << plane.halvings;
    const bool isEven = sampleStep == stream_.stepX && y.highWeight == 0;
    for (std::int64_t i = 0; i < count; ++i, out += step) {
        const Place x = PlaceOf(first + i, stream_.stepX, sampleStep, plane.area.x0, plane.area.x1);
        if (isEven) {
            *out = LevelOf(SampleAt(plane, x.low, y.low));
            continue;
        }
        const auto across = [&](std::int64_t sampleRow) {
            return LevelOf(SampleAt(plane, x.low, sampleRow)) * (kWhole - x.highWeight) +
                   LevelOf(SampleAt(plane, x.high, sampleRow)) * x.highWeight;
        };
        const std::int64_t level = std::int64_t{across(y.low)} * (kWhole - y.highWeight) +
                                   std::int64_t{across(y.high)} * y.highWeight;
        *out = static_cast<std::uint16_t>((level + kWhole * kWhole / 2) / (kWhole * kWhole));
    }
}

} // namespace pictorel::codecs
