// The picture of a scanned page, see ScannedPage.h.
#include "programs/scanner/ScannedPage.h"

#include "picture/ImagingError.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace pictorel::scanner {
namespace {

constexpr int kBitsPerByte = 8;
constexpr int kOpaque = 255;

// The sample of one channel of pixel x as 0..255.
using Sampler = std::uint8_t (*)(const std::uint8_t* line, int x, int channel, int channels);

std::uint8_t SampleOfBit(const std::uint8_t* line, int x, int channel, int channels) {
    const int byte = line[x / kBitsPerByte * channels + channel];
    return (byte >> (kBitsPerByte - 1 - x % kBitsPerByte)) & 1 ? 255 : 0;
}

std::uint8_t SampleOfByte(const std::uint8_t* line, int x, int channel, int channels) {
    return line[x * channels + channel];
}

std::uint8_t SampleOfTwoBytes(const std::uint8_t* line, int x, int channel, int channels) {
    std::uint16_t value = 0;
    std::memcpy(&value, line + 2 * (x * channels + channel), sizeof(value));
    return static_cast<std::uint8_t>((value * 255U + 32767U) / 65535U); // to the nearest
}

struct DepthRow {
    int depth;
    Sampler sample;
};

constexpr std::array kDepths{DepthRow{1, SampleOfBit}, DepthRow{8, SampleOfByte},
                             DepthRow{16, SampleOfTwoBytes}};

// Which channel of a frame goes to which component of a pixel; components count blue, green, red.
struct Route {
    int channel;
    int component;
};

struct BandRow {
    Band band;
    int channels;
    int routes;
    std::array<Route, 3> route;
};

constexpr std::array kBands{BandRow{Band::Gray, 1, 3, {{{0, 0}, {0, 1}, {0, 2}}}},
                            BandRow{Band::Rgb, 3, 3, {{{0, 2}, {1, 1}, {2, 0}}}},
                            BandRow{Band::Red, 1, 1, {{{0, 2}}}}, BandRow{Band::Green, 1, 1, {{{0, 1}}}},
                            BandRow{Band::Blue, 1, 1, {{{0, 0}}}}};

const BandRow& RowOf(Band band) {
    return *std::find_if(kBands.begin(), kBands.end(), [=](const BandRow& row) { return row.band == band; });
}

const DepthRow* FindDepth(int depth) {
    const auto found =
        std::find_if(kDepths.begin(), kDepths.end(), [=](const DepthRow& row) { return row.depth == depth; });
    return found == kDepths.end() ? nullptr : &*found;
}

ImagingError Unusable(const char* text) {
    return {ImagingFailure::UnsupportedFormat, text};
}

void CopyLine(const FrameLayout& layout, const std::uint8_t* line, std::uint8_t* pixels) {
    const BandRow& band = RowOf(layout.band);
    const Sampler sample = FindDepth(layout.depth)->sample;
    // A set bit of a grey line is black; of a coloured one it is that colour's light.
    const std::uint8_t flip = layout.band == Band::Gray && layout.depth == 1 ? 0xFF : 0;
    for (int x = 0; x < layout.pixelsPerLine; ++x, pixels += PixelArray::kComponents) {
        for (int i = 0; i < band.routes; ++i) {
            const Route& route = band.route[static_cast<std::size_t>(i)];
            pixels[route.component] =
                static_cast<std::uint8_t>(sample(line, x, route.channel, band.channels) ^ flip);
        }
    }
}

} // namespace

std::int64_t NeededBytesPerLine(const FrameLayout& layout) {
    const std::int64_t channels = RowOf(layout.band).channels;
    const std::int64_t perChannel =
        (std::int64_t{layout.pixelsPerLine} * layout.depth + kBitsPerByte - 1) / kBitsPerByte;
    return channels * perChannel;
}

void ScannedPage::AddFrame(const FrameLayout& layout, std::vector<std::uint8_t> bytes) {
    if (FindDepth(layout.depth) == nullptr) {
        throw Unusable("The scanner sends colours of a depth that is not supported.");
    }
    if (layout.pixelsPerLine < 1 || layout.bytesPerLine < NeededBytesPerLine(layout) ||
        (!frames_.empty() && frames_.front().layout.pixelsPerLine != layout.pixelsPerLine)) {
        throw Unusable("The scanner describes its page in a way that contradicts itself.");
    }
    Frame frame{layout, std::move(bytes)};
    if (frame.Lines() < 1) {
        throw Unusable("The scanner sent an empty page.");
    }
    frames_.push_back(std::move(frame));
}

PixelArray ScannedPage::Picture() const {
    unsigned components = 0;
    int height = frames_.empty() ? 0 : frames_.front().Lines();
    for (const Frame& frame : frames_) {
        height = std::min(height, frame.Lines());
        const BandRow& band = RowOf(frame.layout.band);
        for (int i = 0; i < band.routes; ++i) {
            components |= 1U << band.route[static_cast<std::size_t>(i)].component;
        }
    }
    if (components != 0b111) {
        throw Unusable("The scanner did not send every colour of the page.");
    }
    PixelArray picture(frames_.front().layout.pixelsPerLine, height);
    std::uint8_t* const rows = picture.WritableRows();
    for (int y = 0; y < height; ++y) {
        std::uint8_t* const row = rows + y * picture.Stride();
        std::memset(row, kOpaque, picture.RowBytes());
        for (const Frame& frame : frames_) {
            CopyLine(frame.layout, frame.bytes.data() + std::ptrdiff_t{y} * frame.layout.bytesPerLine, row);
        }
    }
    return picture;
}

} // namespace pictorel::scanner
