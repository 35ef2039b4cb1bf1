// Reads and writes JPEG files, see JpegCodec.h.
#include "picture/codecs/jpeg/JpegCodec.h"

#include "picture/ForEachBand.h"
#include "picture/ImagingError.h"
#include "picture/codecs/ColourProfile.h"
#include "picture/codecs/Exif.h"
#include "picture/codecs/jpeg/JpegDecoder.h"
#include "picture/codecs/jpeg/JpegEncoder.h"
#include "picture/codecs/jpeg/JpegMend.h"
#include "picture/codecs/jpeg/JpegRestartStrips.h"
#include "picture/codecs/jpeg/JpegWorkingBlock.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstring>
#include <functional>
#include <new>
#include <numeric>
#include <optional>
#include <utility>

namespace pictorel::codecs {
namespace {

// Decodes strips on all cores; false, with rows undefined, where they are not all well.
bool DecodeStrips(const JpegStripPlan& plan, const JpegTarget& target) {
    std::atomic<bool> clean = true;
    const std::size_t stripBytes =
        static_cast<std::size_t>(plan.strips.front().rows) * static_cast<std::size_t>(target.stride);
    // A strip is far more work than its bytes tell: each may go to another thread.
    constexpr std::size_t kWorthAThread = std::size_t{1} << 20;
    ForEachBand(static_cast<int>(plan.strips.size()), std::max(stripBytes, kWorthAThread),
                [&](int first, int end) {
                    for (int i = first; i < end && clean; ++i) {
                        const JpegStrip& strip = plan.strips[static_cast<std::size_t>(i)];
                        const ByteBuffer head = plan.HeadFor(strip.rows);
                        const JpegTarget rows{target.rows + strip.firstRow * target.stride, target.stride,
                                              target.width, strip.rows};
                        const JpegOutcome outcome = DecodeJpeg({head, strip.scan}, rows);
                        if (!outcome.clean || outcome.goodRows < strip.rows) {
                            clean = false;
                        }
                    }
                });
    return clean;
}

// Decodes into the whole picture and gives the number of good rows. What strips say about damage depends on
// where they were cut, so that a damaged file is decoded again in one go.
int Decode(ByteView file, const std::vector<JpegSegment>& segments, PixelArray& picture) {
    const JpegTarget target{picture.WritableRows(), picture.Stride(), picture.Width(), picture.Height()};
    const JpegStripPlan plan = PlanStrips(file, segments);
    if (!plan.strips.empty() && DecodeStrips(plan, target)) {
        return picture.Height();
    }
    JpegOutcome outcome = DecodeJpeg({file, {}}, target);
    if (!outcome.clean && outcome.goodRows < picture.Height()) {
        if (const auto without = WithoutRestartInterval(file, segments)) {
            outcome = DecodeJpeg({*without, {}}, target);
        }
    }
    if (outcome.goodRows == 0) {
        throw ImagingError(ImagingFailure::UnsupportedFormat, "The JPEG file is damaged beyond use.");
    }
    return outcome.goodRows;
}

void ForEachRow(PixelArray& picture, int rows, std::size_t workPerByte,
                const std::function<void(std::uint8_t* row)>& body) {
    std::uint8_t* const first = picture.WritableRows();
    ForEachBand(rows, picture.RowBytes() * workPerByte, [&](int begin, int end) {
        for (int y = begin; y < end; ++y) {
            body(first + y * picture.Stride());
        }
    });
}

// Samples that take the room of a pixel turn into one where they stand.
void ConvertSamples(PixelArray& picture, int rows, SampleLayout layout, ByteView icc) {
    const ColourConverter converter(layout, icc);
    constexpr std::size_t kWorkPerByte = 8; // worth dividing long before plain copying is
    if (!converter.IsIdentity()) {
        ForEachRow(picture, rows, kWorkPerByte,
                   [&](std::uint8_t* row) { converter.ConvertRow(row, row, picture.Width()); });
    }
}

// Decoded greys stand in all components: each level goes through the profile once.
void ConvertGrey(PixelArray& picture, int rows, ByteView icc) {
    if (icc.empty()) {
        return;
    }
    std::array<std::uint8_t, 256> levels{};
    std::iota(levels.begin(), levels.end(), std::uint8_t{0});
    std::array<std::uint8_t, levels.size() * PixelArray::kComponents> pixels{};
    ColourConverter(SampleLayout::Grey8, icc)
        .ConvertRow(levels.data(), pixels.data(), static_cast<int>(levels.size()));
    ForEachRow(picture, rows, 1, [&](std::uint8_t* row) {
        for (int x = 0; x < picture.Width(); ++x, row += PixelArray::kComponents) {
            std::memcpy(row, &pixels[std::size_t{row[0]} * PixelArray::kComponents], PixelArray::kComponents);
        }
    });
}

void ConvertColours(PixelArray& picture, int rows, JpegColour colour, ByteView icc) {
    switch (colour) {
        case JpegColour::Grey:
            return ConvertGrey(picture, rows, icc);
        case JpegColour::Rgb:
            return ConvertSamples(picture, rows, SampleLayout::Bgra8, icc);
        case JpegColour::Ink:
            return ConvertSamples(picture, rows, SampleLayout::Cmyk8, icc);
        case JpegColour::InkInverted:
            return ConvertSamples(picture, rows, SampleLayout::CmykInverted8, icc);
    }
}

void FillWhite(PixelArray& picture, int firstRow) {
    std::uint8_t* const rows = picture.WritableRows();
    for (int y = firstRow; y < picture.Height(); ++y) {
        std::memset(rows + y * picture.Stride(), 0xFF, picture.RowBytes());
    }
}

// What any JPEG file holds becomes upright sRGB with its metadata.
PixelArray Finished(PixelArray picture, int goodRows, JpegColour colour,
                    const std::vector<JpegSegment>& segments) {
    Metadata details = JpegMetadata(segments);
    ConvertColours(picture, goodRows, colour, details.icc);
    FillWhite(picture, goodRows);
    const int orientation = ExifOrientation(details.exif);
    details.icc = ProfileAfterConversion(details.icc);
    details.exif = WithUprightOrientation(details.exif);
    picture.SetDetails(std::move(details));
    picture.SetPartShown(static_cast<double>(goodRows) / picture.Height());
    return ApplyOrientation(std::move(picture), orientation);
}

[[noreturn]] void NoMemory() {
    throw ImagingError(ImagingFailure::OutOfMemory, "There is not enough memory for this JPEG picture.");
}

} // namespace

bool IsJpeg(ByteView file) noexcept {
    if (file.size() < 4 || file[0] != 0xFF || file[1] != jpeg::kStartOfImage) {
        return false;
    }
    if (file[2] == 0xFF) {
        return true;
    }
    // Garbage may follow, but soon a segment must come.
    constexpr std::size_t kMostGarbage = 256;
    const ByteView begin = file.first(std::min(file.size(), kMostGarbage));
    const auto found = std::adjacent_find(begin.begin() + 2, begin.end(), [](int first, int second) {
        return first == 0xFF && ((second >= jpeg::kApp0 && second <= jpeg::kApp0 + 15) ||
                                 second == jpeg::kQuantisation || second == jpeg::kComment);
    });
    return found != begin.end();
}

PixelArray ReadJpeg(ByteView given, const ReadOptions& options) try {
    std::vector<JpegSegment> segments = JpegSegments(given);
    const std::optional<ByteBuffer> mended = MendedJpeg(given, segments);
    const ByteView file = mended ? ByteView(*mended) : given;
    if (mended) {
        segments = JpegSegments(file);
    }
    const JpegInfo info = ReadJpegInfo(file);
    PixelArray picture(info.width, info.height);
    const int goodRows = Decode(file, segments, picture);
    const auto block = options.workingFile ? FindWorkingBlock(segments) : std::nullopt;
    if (!block) {
        return Finished(std::move(picture), goodRows, info.colour, segments);
    }
    if (goodRows < info.height || info.colour != JpegColour::Rgb) {
        throw ImagingError(ImagingFailure::UnsupportedFormat, "The working file is damaged.");
    }
    ApplyWorkingBlock(*block, picture);
    return picture;
} catch (const std::bad_alloc&) {
    NoMemory();
}

void WriteWorkingJpeg(const PixelArray& picture, const ByteSink& sink) try {
    EncodeJpeg(picture, {100, JpegPixels::AsTheyAre}, WorkingMarkers(picture), sink);
} catch (const std::bad_alloc&) {
    NoMemory();
}

ByteBuffer WriteJpeg(const PixelArray& picture, const WriteOptions& options) try {
    ByteBuffer file;
    // Room for about as much as the best quality needs: moving what is there costs more than unused room.
    constexpr std::size_t kMostRoom = std::size_t{256} << 20;
    const auto pixels =
        static_cast<std::size_t>(picture.Width()) * static_cast<std::size_t>(picture.Height());
    file.reserve(std::min(2 * pixels, kMostRoom));
    const auto gather = [&file](ByteView part) { file.insert(file.end(), part.begin(), part.end()); };
    if (options.workingFile) {
        WriteWorkingJpeg(picture, gather);
    } else {
        EncodeJpeg(picture, {std::clamp(options.quality, 1, 100), JpegPixels::OverWhite},
                   MetadataMarkers(picture), gather);
    }
    return file;
} catch (const std::bad_alloc&) {
    NoMemory();
}

} // namespace pictorel::codecs
