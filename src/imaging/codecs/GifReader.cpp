// Reading GIF files, see Gif.h.
#include "imaging/codecs/ByteReader.h"
#include "imaging/codecs/Gif.h"
#include "imaging/codecs/GifLzw.h"
#include "imaging/codecs/PixelSupport.h"

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

    PixelArray Read() {
        ReadScreen();
        FindFrame();
        return Compose();
    }

  private:
    void ReadScreen() {
        screenWidth_ = LittleEndian16(file_, 6);
        screenHeight_ = LittleEndian16(file_, 8);
        const std::uint8_t flags = ByteAt(file_, 10);
        at_ = 13;
        if ((flags & kHasColours) != 0) {
            colours_ = TakeColours(flags);
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

    // Up to the first frame; bytes between blocks that start none are passed over.
    void FindFrame() {
        while (at_ < file_.size() && file_[at_] != kTrailer) {
            const std::uint8_t block = file_[at_++];
            if (block == kFrame) {
                ReadFrame();
                return;
            }
            if (block == kExtension) {
                ReadExtension();
            }
        }
        Refuse("The GIF file holds no picture.");
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
        if ((flags & kHasColours) != 0) {
            colours_ = TakeColours(flags);
        }
        frame_.data = Slice(file_, at_);
        MakePalette();
    }

    void MakePalette() {
        const std::size_t present = std::min<std::size_t>(colours_.size() / 3, 256);
        const auto bits = std::clamp<unsigned>(ByteAt(frame_.data, 0), 1, 8);
        for (std::size_t i = 0; i < frame_.palette.size(); ++i) {
            auto& colour = frame_.palette[i];
            colour = {0, 0, 0, 255};
            if (i < present) {
                colour = {colours_[3 * i + 2], colours_[3 * i + 1], colours_[3 * i], 255};
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
        const int width = std::max(screenWidth_, frame_.left + frame_.width);
        const int height = std::max(screenHeight_, frame_.top + frame_.height);
        CheckClaimedSize(width, height, file_.size(), kMostPixelsPerByte);
        if (frame_.width == 0 || frame_.height == 0) {
            Refuse("The GIF file holds a picture without pixels.");
        }
        PixelArray picture(width, height);
        std::uint8_t* const rows = picture.WritableRows();
        const bool coversAll = frame_.width == width && frame_.height == height;
        if (!coversAll) {
            std::memset(rows, 0,
                        static_cast<std::size_t>(picture.Stride()) * static_cast<std::size_t>(height));
        }
        DecodeFrame(rows, picture.Stride());
        if (!coversAll || transparent_ >= 0) {
            SettleAlpha(picture);
        }
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

    void DecodeFrame(std::uint8_t* rows, std::ptrdiff_t stride) const {
        GifLzwDecoder decoder(frame_.data);
        std::vector<std::uint8_t> indices(static_cast<std::size_t>(frame_.width));
        bool isAny = false;
        for (const int y : RowOrder()) {
            const int present = decoder.Read(indices.data(), frame_.width);
            isAny = isAny || present > 0;
            std::uint8_t* pixel = rows + (frame_.top + y) * stride + std::ptrdiff_t{4} * frame_.left;
            for (int x = 0; x < present; ++x, pixel += PixelArray::kComponents) {
                std::memcpy(pixel, frame_.palette[indices[static_cast<std::size_t>(x)]].data(), 4);
            }
            std::memset(pixel, 0xFF, static_cast<std::size_t>(frame_.width - present) * 4);
        }
        if (!isAny) {
            Refuse("The GIF file is damaged or ends before its first pixel.");
        }
    }

    ByteView file_;
    std::size_t at_ = 0;
    int screenWidth_ = 0;
    int screenHeight_ = 0;
    ByteView colours_; // R, G, B of the screen, then of the frame where it has its own
    int transparent_ = -1;
    Frame frame_;
};

} // namespace

bool IsGif(ByteView file) noexcept {
    return StartsWith(file, "GIF87a") || StartsWith(file, "GIF89a");
}

PixelArray ReadGif(ByteView file, const ReadOptions& /*options*/) {
    return GifReader(file).Read();
}

} // namespace pictorel::codecs
