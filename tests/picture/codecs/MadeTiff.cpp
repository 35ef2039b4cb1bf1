// Makes TIFF files, see MadeTiff.h.
#include "picture/codecs/MadeTiff.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <utility>

namespace pictorel::codecs::testing {
namespace {

using Memory = TiffMemory;

Memory& Of(thandle_t client) {
    return *static_cast<Memory*>(client);
}

tmsize_t ReadBack(thandle_t client, void* out, tmsize_t size) {
    Memory& memory = Of(client);
    const std::size_t left = memory.bytes.size() - std::min(memory.position, memory.bytes.size());
    const std::size_t count = std::min(static_cast<std::size_t>(size), left);
    std::memcpy(out, memory.bytes.data() + memory.position, count);
    memory.position += count;
    return static_cast<tmsize_t>(count);
}

tmsize_t Write(thandle_t client, void* in, tmsize_t size) {
    Memory& memory = Of(client);
    const auto count = static_cast<std::size_t>(size);
    memory.bytes.resize(std::max(memory.bytes.size(), memory.position + count));
    std::memcpy(memory.bytes.data() + memory.position, in, count);
    memory.position += count;
    return size;
}

toff_t Seek(thandle_t client, toff_t offset, int whence) {
    Memory& memory = Of(client);
    memory.position = static_cast<std::size_t>(offset) + (whence == SEEK_END   ? memory.bytes.size()
                                                          : whence == SEEK_CUR ? memory.position
                                                                               : 0);
    return memory.position;
}

// The library's advice to writers is kept off the terminal of the tests; what the editor reads has to be
// silent by itself.
class NoAdvice {
  public:
    NoAdvice() : former_(TIFFSetWarningHandler(nullptr)) {}
    ~NoAdvice() { TIFFSetWarningHandler(former_); }
    NoAdvice(const NoAdvice&) = delete;
    NoAdvice& operator=(const NoAdvice&) = delete;

  private:
    TIFFErrorHandler former_;
};

TIFF* Open(Memory& memory, const std::string& mode) {
    return TIFFClientOpen(
        "made", mode.c_str(), &memory, ReadBack, Write, Seek, [](thandle_t) { return 0; },
        [](thandle_t client) -> toff_t { return Of(client).bytes.size(); }, nullptr, nullptr);
}

// 0..1 as the bits of a half-precision number; 0 and numbers too small for a normal one become 0.
std::uint64_t HalfBits(float value) {
    const auto bits = std::bit_cast<std::uint32_t>(value);
    const int exponent = static_cast<int>(bits >> 23 & 0xFF) - 127 + 15;
    return exponent <= 0 ? 0 : static_cast<std::uint64_t>(exponent) << 10 | (bits >> 13 & 0x3FF);
}

std::uint64_t SampleBits(const TiffRecipe& recipe, int level) {
    const bool index = recipe.photometric == PHOTOMETRIC_PALETTE;
    if (recipe.format == SAMPLEFORMAT_IEEEFP) {
        const float part = static_cast<float>(level) / 255;
        return recipe.bits == 64   ? std::bit_cast<std::uint64_t>(static_cast<double>(part))
               : recipe.bits == 32 ? std::bit_cast<std::uint32_t>(part)
                                   : HalfBits(part);
    }
    const std::uint64_t largest = UINT64_MAX >> (64 - recipe.bits);
    const auto part = static_cast<std::uint64_t>(level);
    return recipe.bits <= 8 || index ? part & largest
           : recipe.bits == 64       ? largest / 255 * part
                                     : (part * largest + 127) / 255;
}

// Samples of 16, 32 and 64 bits in the machine's order, 24 bits and others as the file has them.
class SamplePacker {
  public:
    explicit SamplePacker(ByteBuffer& out) : out_(out) {}

    void Add(std::uint64_t value, int bits) {
        if (bits == 16 || bits == 32 || bits == 64 || bits == 24) {
            const auto* const bytes = reinterpret_cast<const std::uint8_t*>(&value); // lowest first
            out_.insert(out_.end(), bytes, bytes + bits / 8);
            return;
        }
        for (int i = bits - 1; i >= 0; --i) {
            pending_ = pending_ << 1 | (value >> i & 1);
            if (++count_ == 8) {
                out_.push_back(static_cast<std::uint8_t>(pending_));
                count_ = 0;
            }
        }
    }
    void EndRow() {
        while (count_ != 0) {
            Add(0, 1);
        }
    }

  private:
    ByteBuffer& out_;
    std::uint64_t pending_ = 0;
    int count_ = 0;
};

ByteBuffer Block(const TiffRecipe& recipe, const TiffValue& level, int left, int top, int width, int height,
                 int plane) {
    ByteBuffer block;
    SamplePacker packer(block);
    for (int y = top; y < top + height; ++y) {
        for (int x = left; x < left + width; ++x) {
            for (int sample = 0; sample < recipe.samples; ++sample) {
                if (!recipe.separate || sample == plane) {
                    // What hangs over the edge goes on like the edge, as lossy compressions like it.
                    const int seen =
                        level(std::min(x, recipe.width - 1), std::min(y, recipe.height - 1), sample);
                    packer.Add(SampleBits(recipe, seen), recipe.bits);
                }
            }
        }
        packer.EndRow();
    }
    return block;
}

void WriteBlocks(TIFF* tiff, const TiffRecipe& recipe, const TiffValue& level) {
    const int width = recipe.tile > 0 ? recipe.tile : recipe.width;
    const int step = recipe.tile > 0 ? recipe.tile : recipe.rowsPerStrip;
    for (int plane = 0; plane < (recipe.separate ? recipe.samples : 1); ++plane) {
        for (int top = 0; top < recipe.height; top += step) {
            for (int left = 0; left < recipe.width; left += width) {
                const int height = recipe.tile > 0 ? step : std::min(step, recipe.height - top);
                ByteBuffer block = Block(recipe, level, left, top, width, height, plane);
                const auto size = static_cast<tmsize_t>(block.size());
                const auto x = static_cast<std::uint32_t>(left);
                const auto y = static_cast<std::uint32_t>(top);
                const auto z = static_cast<std::uint16_t>(plane);
                const tmsize_t written =
                    recipe.tile > 0
                        ? TIFFWriteEncodedTile(tiff, TIFFComputeTile(tiff, x, y, 0, z), block.data(), size)
                        : TIFFWriteEncodedStrip(tiff, TIFFComputeStrip(tiff, y, z), block.data(), size);
                EXPECT_GE(written, 0) << recipe.name;
            }
        }
    }
}

void SetTags(TIFF* tiff, const TiffRecipe& recipe) {
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, recipe.width);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, recipe.height);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, recipe.bits);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, recipe.samples);
    TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT, recipe.format);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, recipe.photometric);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, recipe.compression);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, recipe.separate ? PLANARCONFIG_SEPARATE : PLANARCONFIG_CONTIG);
    TIFFSetField(tiff, TIFFTAG_ORIENTATION, recipe.orientation);
    TIFFSetField(tiff, TIFFTAG_FILLORDER, recipe.fillOrder);
    if (recipe.tile > 0) {
        TIFFSetField(tiff, TIFFTAG_TILEWIDTH, recipe.tile);
        TIFFSetField(tiff, TIFFTAG_TILELENGTH, recipe.tile);
    } else {
        TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, recipe.rowsPerStrip);
    }
    if (recipe.predictor > 0) {
        TIFFSetField(tiff, TIFFTAG_PREDICTOR, recipe.predictor);
    }
    if (!recipe.extra.empty()) {
        const std::vector<std::uint16_t> extra(recipe.extra.begin(), recipe.extra.end());
        TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, static_cast<int>(extra.size()), extra.data());
    }
    if (recipe.tags) {
        recipe.tags(tiff);
    }
}

} // namespace

int TiffLevel(const TiffRecipe& recipe, int x, int y, int sample) {
    const int level = (x * 5 + y * 3 + sample * 41) & 255;
    return recipe.bits < 8 ? level & ((1 << recipe.bits) - 1) : level;
}

TiffInMemory::TiffInMemory(ByteBuffer file)
    : memory_(std::make_unique<TiffMemory>(TiffMemory{std::move(file)})), handle_(Open(*memory_, "r")) {}

TiffInMemory::~TiffInMemory() {
    if (handle_ != nullptr) {
        TIFFClose(handle_);
    }
}

ByteBuffer MadeTiff(const TiffRecipe& recipe, const TiffValue& level) {
    const NoAdvice silence;
    Memory memory;
    TIFF* const tiff = Open(memory, recipe.mode);
    SetTags(tiff, recipe);
    WriteBlocks(tiff, recipe, level);
    TIFFClose(tiff);
    return memory.bytes;
}

ByteBuffer MadeTiffPages(const std::vector<TiffRecipe>& recipes) {
    Memory memory;
    TIFF* const tiff = Open(memory, "w");
    for (const TiffRecipe& recipe : recipes) {
        SetTags(tiff, recipe);
        WriteBlocks(tiff, recipe, [&](int x, int y, int sample) { return TiffLevel(recipe, x, y, sample); });
        TIFFWriteDirectory(tiff);
    }
    TIFFClose(tiff);
    return memory.bytes;
}

} // namespace pictorel::codecs::testing
