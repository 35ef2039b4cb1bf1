// Reading GIF files, see Gif.h.
#include "picture/codecs/ByteReader.h"
#include "picture/codecs/PixelSupport.h"
#include "picture/codecs/gif/Gif.h"
#include "picture/codecs/gif/GifLzw.h"

#include <array>
#include <cstring>
#include <vector>

namespace pictorel::codecs {
namespace {

constexpr std::int64_t kMostPixelsPerByte = 4096; // the longest string of a 12-bit code, and some
constexpr std::uint8_t kExtension = 0x21;
constexpr std::uint8_t kGraphicControl = 0xF9;
constexpr std::uint8_t kFrame = 0x2C;
constexpr std::uint8_t kTrailer = 0x3B;
constexpr std::uint8_t kHasColours = 0x80;
constexpr std::uint8_t kInterlaced = 0x40;

using Palette = std::array<std::array<std::uint8_t, 4>, 256>; // B, G, R, A

struct Frame {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
    bool interlaced = false;
    Palette palette{};
    ByteView data; // from the minimum code size on
};

class GifReader {
  public:
    explicit GifReader(ByteView file) : file_(file) {}

    // The first frame of which anything can be decoded.
    PixelArray Read() {
        ReadScreen();
        while (FindFrame()) {
            if (frame_.width > 0 && frame_.height > 0 && GifLzwDecoder(frame_.data).HasPixels()) {
                return Compose();
            }
            SkipFrame();
        }
        Refuse("The GIF file holds no picture, or is damaged or ends before its first pixel.");
    }

  private:
    void ReadScreen() {
        screenWidth_ = LittleEndian16(file_, 6);
        screenHeight_ = LittleEndian16(file_, 8);
        const std::uint8_t flags = ByteAt(file_, 10);
        at_ = 13;
        if ((flags & kHasColours) != 0) {
            screenColours_ = TakeColours(flags);
        }
    }

    ByteView TakeColours(std::uint8_t flags) {
        const std::size_t bytes = std::size_t{3} << ((flags & 7) + 1);
        const ByteView colours = Slice(file_, at_, bytes);
        at_ += bytes;
        return colours;
    }

    void SkipSubBlocks() {
        while (at_ < file_.size() && file_[at_] != 0) {
            at_ += std::size_t{1} + file_[at_];
        }
        ++at_;
    }

    // Up to the next frame; bytes between blocks that start none are passed over. False where there is none.
    bool FindFrame() {
        while (at_ < file_.size() && file_[at_] != kTrailer) {
            const std::uint8_t block = file_[at_++];
            if (block == kFrame) {
                ReadFrame();
                return true;
            }
            if (block == kExtension) {
                ReadExtension();
            }
        }
        return false;
    }

    void SkipFrame() {
        ++at_; // the code size
        SkipSubBlocks();
        transparent_ = -1;
    }

    void ReadExtension() {
        const std::uint8_t label = ByteAt(file_, at_++);
        if (label == kGraphicControl && ByteAt(file_, at_) >= 4) {
            const bool isSet = (ByteAt(file_, at_ + 1) & 1) != 0;
            transparent_ = isSet ? ByteAt(file_, at_ + 4) : -1;
        }
        SkipSubBlocks();
    }

    void ReadFrame() {
        frame_.left = LittleEndian16(file_, at_);
        frame_.top = LittleEndian16(file_, at_ + 2);
        frame_.width = LittleEndian16(file_, at_ + 4);
        frame_.height = LittleEndian16(file_, at_ + 6);
        const std::uint8_t flags = ByteAt(file_, at_ + 8);
        frame_.interlaced = (flags & kInterlaced) != 0;
        at_ += 9;
        const ByteView colours = (flags & kHasColours) != 0 ? TakeColours(flags) : screenColours_;
        frame_.data = Slice(file_, at_);
        MakePalette(colours);
    }

    void MakePalette(ByteView colours) {
        const std::size_t present = std::min<std::size_t>(colours.size() / 3, 256);
        const auto bits = std::clamp<unsigned>(ByteAt(frame_.data, 0), 1, 8);
        for (std::size_t i = 0; i < frame_.palette.size(); ++i) {
            auto& colour = frame_.palette[i];
            colour = {0, 0, 0, 255};
            if (i < present) {
                colour = {colours[3 * i + 2], colours[3 * i + 1], colours[3 * i], 255};
            } else if (present == 0) { // no colours anywhere: greys
                const auto grey =
                    static_cast<std::uint8_t>(std::min<std::size_t>(i * 255 / ((1U << bits) - 1), 255));
                colour = {grey, grey, grey, 255};
            }
        }
        if (transparent_ >= 0) {
            frame_.palette[static_cast<std::size_t>(transparent_)] = {0, 0, 0, 0};
        }
    }

    PixelArray Compose() {
        // A frame that reaches over its screen makes the screen larger: nothing of it is lost.
        int width = std::max(screenWidth_, frame_.left + frame_.width);
        int height = std::max(screenHeight_, frame_.top + frame_.height);
        if (!IsPlausibleSize(width, height, file_.size(),
                             kMostPixelsPerByte)) { // damaged, or meant to be dear
            width = frame_.width;
            height = frame_.height;
            frame_.left = frame_.top = 0;
        }
        CheckClaimedSize(width, height, file_.size(), kMostPixelsPerByte);
        PixelArray picture(width, height);
        std::uint8_t* const rows = picture.WritableRows();
        const bool coversAll = frame_.width == width && frame_.height == height;
        if (!coversAll) {
            std::memset(rows, 0,
                        static_cast<std::size_t>(picture.Stride()) * static_cast<std::size_t>(height));
        }
        const double missing =
            static_cast<double>(frame_.width) * frame_.height - DecodeFrame(rows, picture.Stride());
        if (!coversAll || transparent_ >= 0) {
            SettleAlpha(picture);
        }
        const double all = static_cast<double>(frame_.width) * frame_.height;
        if (all - missing < (frame_.height > 1 ? frame_.width : 1)) {
            Refuse("The GIF picture ends before its first row of pixels.");
        }
        picture.SetPartShown(1 - missing / (static_cast<double>(width) * height));
        return picture;
    }

    // The rows of the frame in the order the file has them.
    std::vector<int> RowOrder() const {
        std::vector<int> order;
        order.reserve(static_cast<std::size_t>(frame_.height));
        constexpr struct {
            int first;
            int step;
        } kPasses[] = {{0, 8}, {4, 8}, {2, 4}, {1, 2}};
        if (frame_.interlaced) {
            for (const auto& pass : kPasses) {
                for (int y = pass.first; y < frame_.height; y += pass.step) {
                    order.push_back(y);
                }
            }
        } else {
            for (int y = 0; y < frame_.height; ++y) {
                order.push_back(y);
            }
        }
        return order;
    }

    // How many of the frame's pixels are there.
    double DecodeFrame(std::uint8_t* rows, std::ptrdiff_t stride) const {
        GifLzwDecoder decoder(frame_.data);
        std::vector<std::uint8_t> indices(static_cast<std::size_t>(frame_.width));
        std::vector<bool> isThere(static_cast<std::size_t>(frame_.height));
        double pixels = 0;
        std::uint8_t* const first = rows + frame_.top * stride + std::ptrdiff_t{4} * frame_.left;
        for (const int y : RowOrder()) {
            const int present = decoder.Read(indices.data(), frame_.width);
            isThere[static_cast<std::size_t>(y)] = present > 0;
            pixels += present;
            std::uint8_t* pixel = first + y * stride;
            for (int x = 0; x < present; ++x, pixel += PixelArray::kComponents) {
                std::memcpy(pixel, frame_.palette[indices[static_cast<std::size_t>(x)]].data(), 4);
            }
            std::memset(pixel, 0xFF, static_cast<std::size_t>(frame_.width - present) * 4);
        }
        for (int y = 0; frame_.interlaced && y < frame_.height; ++y) {
            if (!isThere[static_cast<std::size_t>(y)]) {
                FillFromCoarserPass(y, isThere, first, stride);
            }
        }
        return pixels;
    }

    // A row that the data does not reach shows what the pass before it shows in its place.
    void FillFromCoarserPass(int y, const std::vector<bool>& isThere, std::uint8_t* first,
                             std::ptrdiff_t stride) const {
        for (const int step : {2, 4, 8}) {
            const int source = y / step * step;
            if (isThere[static_cast<std::size_t>(source)]) {
                std::memcpy(first + y * stride, first + source * stride,
                            static_cast<std::size_t>(frame_.width) * 4);
                return;
            }
        }
    }

    ByteView file_;
    std::size_t at_ = 0;
    int screenWidth_ = 0;
    int screenHeight_ = 0;
    ByteView screenColours_; // R, G, B
    int transparent_ = -1;
    Frame frame_;
};

} // namespace

bool IsGif(ByteView file) noexcept {
    return StartsWith(file, "GIF8"); // the rest, 7a or 9a, makes no difference
}

PixelArray ReadGif(ByteView file, const ReadOptions& /*options*/) {
    return GifReader(file).Read();
}

} // namespace pictorel::codecs
