// Decodes TIFF pages, see TiffDecoder.h.
#include "picture/codecs/tiff/TiffDecoder.h"

#include "picture/BufferPool.h"
#include "picture/ForEachBand.h"
#include "picture/codecs/PixelSupport.h"
#include "picture/codecs/tiff/TiffBlocks.h"
#include "picture/codecs/tiff/TiffColouring.h"
#include "picture/codecs/tiff/TiffSamples.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <memory>
#include <mutex>
#include <utility>

namespace pictorel::codecs {
namespace {

constexpr std::size_t kWorkPerByte = 4; // decoding is worth dividing before copying is

// Handles of the library, of which each thread needs its own; opened as they are asked for.
class HandlePool {
  public:
    HandlePool(TiffFile first, ByteView file, std::uint64_t directoryOffset)
        : file_(file), directoryOffset_(directoryOffset) {
        free_.push_back(std::move(first));
    }

    TiffFile Take() {
        {
            const std::lock_guard lock(mutex_);
            if (!free_.empty()) {
                TiffFile taken = std::move(free_.back());
                free_.pop_back();
                return taken;
            }
        }
        return {file_, directoryOffset_};
    }

    void GiveBack(TiffFile tiff) {
        const std::lock_guard lock(mutex_);
        free_.push_back(std::move(tiff));
    }

  private:
    ByteView file_;
    std::uint64_t directoryOffset_;
    std::mutex mutex_;
    std::vector<TiffFile> free_;
};

// Where the pixels of a block lie in the picture.
struct Place {
    int left;
    int top;
    int width;
    int height;
};

Place PlaceOf(int block, const TiffLayout& layout) {
    const int left = block % layout.blocksAcross * layout.blockWidth;
    const int top = block / layout.blocksAcross * layout.blockHeight;
    return {left, top, std::min(layout.blockWidth, layout.width - left),
            std::min(layout.blockHeight, layout.height - top)};
}

// What a thread needs to decode block after block.
class BlockDecoder {
  public:
    BlockDecoder(const TiffFile& tiff, const TiffLayout& layout, ByteView file, const TiffSamples& samples,
                 const TiffColouring& colouring)
        : layout_(layout),
          samples_(samples),
          colouring_(colouring),
          reader_(tiff, layout, file),
          planes_(layout.Planes()),
          decoded_(TakeBuffer(layout.BlockBytes() * planes_.size())) {}

    // Returns the number of rows that were good; the others are white.
    int Decode(int block, std::uint8_t* bgra, std::ptrdiff_t stride) {
        const Place place = PlaceOf(block, layout_);
        int good = place.height;
        for (std::size_t i = 0; i < planes_.size(); ++i) {
            std::uint8_t* const out = decoded_.get() + i * layout_.BlockBytes();
            good = std::min(good, good == 0 ? 0 : reader_.Decode(block, planes_[i], place.height, out));
        }
        const auto colour = [&](int first, int end) {
            if (samples_.Narrow()) {
                ColourRows<std::uint8_t>(first, std::min(end, good), bgra, stride, place.width);
            } else {
                ColourRows<std::uint16_t>(first, std::min(end, good), bgra, stride, place.width);
            }
            for (int y = std::max(first, good); y < end; ++y) {
                std::memset(bgra + y * stride, 0xFF,
                            static_cast<std::size_t>(place.width) * PixelArray::kComponents);
            }
        };
        constexpr int kEnoughBlocks = 4; // to keep the cores busy by themselves
        if (layout_.Blocks() < kEnoughBlocks) {
            ForEachBand(place.height, static_cast<std::size_t>(stride) * kWorkPerByte, colour);
        } else {
            colour(0, place.height);
        }
        return good;
    }

  private:
    template <class Sample>
    void ColourRows(int first, int end, std::uint8_t* bgra, std::ptrdiff_t stride, int pixels) const {
        std::vector<Sample> unpacked;
        for (int y = first; y < end; ++y) {
            ColourRow(y, unpacked, bgra + y * stride, pixels);
        }
    }

    template <class Sample>
    void ColourRow(int y, std::vector<Sample>& unpacked, std::uint8_t* bgra, int pixels) const {
        const std::uint8_t* const row = decoded_.get() + static_cast<std::size_t>(y) * layout_.blockRowBytes;
        if (!layout_.separatePlanes) {
            const int step = layout_.samples;
            if (samples_.IsPlain()) {
                colouring_.ColourRow(row, step, layout_.alphaSample, bgra, pixels);
                return;
            }
            unpacked.resize(static_cast<std::size_t>(pixels) * static_cast<std::size_t>(step));
            samples_.Unpack(row, unpacked.data(), pixels * step, 1);
            colouring_.ColourRow(unpacked.data(), step, layout_.alphaSample, bgra, pixels);
            return;
        }
        const int step = static_cast<int>(planes_.size());
        unpacked.resize(static_cast<std::size_t>(pixels) * planes_.size());
        for (std::size_t i = 0; i < planes_.size(); ++i) {
            samples_.Unpack(row + i * layout_.BlockBytes(), unpacked.data() + i, pixels, step);
        }
        colouring_.ColourRow(unpacked.data(), step, step - 1, bgra, pixels);
    }

    const TiffLayout& layout_;
    const TiffSamples& samples_;
    const TiffColouring& colouring_;
    TiffBlockReader reader_;
    std::vector<int> planes_;
    std::shared_ptr<std::uint8_t> decoded_;
};

// A channel of which the file does not say that it is alpha, and in which all is transparent, is none.
void JudgeAlpha(const TiffLayout& layout, PixelArray& picture) {
    if (layout.alpha == TiffAlpha::None || layout.convertedByLibrary) {
        return;
    }
    const AlphaRange range = FindAlphaRange(picture, 0, picture.Height());
    if (layout.alpha == TiffAlpha::Undeclared && range.highest == 0) {
        MakeOpaque(picture);
    } else {
        picture.SetHasAlpha(range.lowest < 255);
    }
}

} // namespace

PixelArray DecodeTiff(TiffFile tiff, std::uint64_t directoryOffset, const TiffLayout& layout, ByteView file,
                      ByteView icc) {
    const TiffSamples samples(layout);
    const TiffColouring colouring(layout, samples.Narrow(), tiff, icc);
    PixelArray picture(layout.width, layout.height);
    HandlePool handles(std::move(tiff), file, directoryOffset);
    std::uint8_t* const rows = picture.WritableRows();
    std::atomic<std::int64_t> pixels = 0;
    ForEachBand(layout.Blocks(), layout.BlockBytes() * kWorkPerByte, [&](int first, int end) {
        TiffFile own = handles.Take();
        {
            std::optional<BlockDecoder> decoder;
            for (int block = first; block < end; ++block) {
                const Place place = PlaceOf(block, layout);
                std::uint8_t* const bgra =
                    rows + place.top * picture.Stride() + place.left * std::ptrdiff_t{4};
                int goodRows = 0;
                if (layout.convertedByLibrary) {
                    goodRows = DecodeConvertedBlock(own, layout, block, bgra, picture.Stride());
                } else {
                    if (!decoder) {
                        decoder.emplace(own, layout, file, samples, colouring);
                    }
                    goodRows = decoder->Decode(block, bgra, picture.Stride());
                }
                pixels += std::int64_t{goodRows} * place.width;
            }
        }
        handles.GiveBack(std::move(own));
    });
    NotePixelsShown(picture, static_cast<double>(pixels));
    if (layout.convertedByLibrary) {
        ConvertToSrgb(picture, icc);
    }
    JudgeAlpha(layout, picture);
    return picture;
}

} // namespace pictorel::codecs
