// Decoding JPEG 2000 by OpenJPEG, see J2kDecoder.h.
#include "picture/codecs/j2k/J2kDecoder.h"

#include "picture/codecs/PixelSupport.h"
#include "picture/codecs/j2k/J2kLibrary.h"

#include <algorithm>
#include <array>
#include <new>

namespace pictorel::codecs {
namespace {

std::size_t SampleBytesOf(const J2kStream& stream, const J2kTile& tile) {
    std::size_t bytes = 0;
    for (std::size_t i = 0; i < stream.components.size(); ++i) {
        const J2kArea area = tile.AreaOf(stream.components[i], i);
        bytes += static_cast<std::size_t>(area.Width() * area.Height()) *
                 static_cast<std::size_t>(stream.components[i].SampleBytes());
    }
    return bytes;
}

// Where a file does not hold the finer details of a tile, the library hands out smaller components, and does
// not say so. It shows in how much of the memory it wrote to, which is filled beforehand with what no picture
// has.
class WrittenBytes {
  public:
    WrittenBytes() {
        std::uint32_t random = 1;
        for (std::uint8_t& byte : pattern_) {
            random = random * 1664525 + 1013904223;
            byte = static_cast<std::uint8_t>(random >> 24);
        }
    }

    void Prepare(ByteBuffer& samples) const {
        for (std::size_t at = 0; at < samples.size(); at += pattern_.size()) {
            std::copy_n(pattern_.begin(), std::min(pattern_.size(), samples.size() - at),
                        samples.begin() + static_cast<std::ptrdiff_t>(at));
        }
    }

    // To within the few bytes at the end that may be the same by chance.
    std::size_t Count(const ByteBuffer& samples) const {
        std::size_t count = samples.size();
        while (count > 0 && samples[count - 1] == pattern_[(count - 1) % pattern_.size()]) {
            --count;
        }
        return count;
    }

  private:
    std::array<std::uint8_t, 4093> pattern_{};
};

// Finds the halvings that make up `written` bytes: components that come later were reached later, so they are
// halved as often or oftener. False where there are none.
class HalvingSearch {
  public:
    HalvingSearch(const J2kStream& stream, J2kTile& tile, std::size_t written)
        : stream_(stream), tile_(tile), written_(written) {}

    bool Find() {
        constexpr std::size_t kMostComponents = 4; // of more there are too many combinations
        if (tile_.halvings.size() <= kMostComponents) {
            return FindFrom(0, 0);
        }
        for (int halvings = 0; halvings <= mostHalvings_; ++halvings) {
            std::fill(tile_.halvings.begin(), tile_.halvings.end(), halvings);
            if (IsFound()) {
                return true;
            }
        }
        return false;
    }

  private:
    bool FindFrom(std::size_t component, int least) {
        if (component == tile_.halvings.size()) {
            return IsFound();
        }
        for (int halvings = least; halvings <= mostHalvings_; ++halvings) {
            tile_.halvings[component] = halvings;
            if (FindFrom(component + 1, halvings)) {
                return true;
            }
        }
        return false;
    }

    bool IsFound() const {
        constexpr std::size_t kByChance = 4;
        const std::size_t bytes = SampleBytesOf(stream_, tile_);
        return bytes >= written_ && bytes < written_ + kByChance;
    }

    static constexpr int kWorthShowing = 6; // halvings

    const J2kStream& stream_;
    J2kTile& tile_;
    std::size_t written_;
    int mostHalvings_ = std::min(stream_.levels, kWorthShowing);
};

} // namespace

struct J2kDecoder::Implementation {
    const J2kStream& stream;
    J2kSource source;
    J2kByteStream bytes;
    J2kCodec codec{opj_create_decompress(OPJ_CODEC_J2K)};
    J2kImage image;
    WrittenBytes writtenBytes;
    bool isAtEnd = false;

    explicit Implementation(const J2kStream& of)
        : stream(of),
          source{of.usable, of.cutLengthAt, of.trueLength, of.lacksEnd},
          bytes(MakeReadStream(source)) {
        if (!codec) {
            throw std::bad_alloc();
        }
        opj_dparameters_t parameters;
        opj_set_default_decoder_parameters(&parameters);
        opj_image_t* made = nullptr;
        const bool isSetUp = opj_setup_decoder(codec.get(), &parameters) != OPJ_FALSE &&
                             opj_decoder_set_strict_mode(codec.get(), OPJ_FALSE) != OPJ_FALSE;
        const int threads = J2kThreads(stream.grid.Width() * stream.grid.Height());
        if (threads > 1) {
            opj_codec_set_threads(codec.get(), threads);
        }
        const bool isRead = isSetUp && opj_read_header(bytes.get(), codec.get(), &made) != OPJ_FALSE;
        image.reset(made);
        if (!isRead || image->numcomps != stream.components.size()) {
            Refuse("The header of the JPEG 2000 file is damaged.");
        }
    }

    bool Next(J2kTile& tile) {
        while (!isAtEnd) {
            if (Decode(tile)) {
                return true;
            }
        }
        return false;
    }

    // False at the end, and for a tile of which nothing is there.
    bool Decode(J2kTile& tile) {
        OPJ_UINT32 number = 0;
        OPJ_UINT32 size = 0;
        OPJ_UINT32 components = 0;
        OPJ_INT32 x0 = 0;
        OPJ_INT32 y0 = 0;
        OPJ_INT32 x1 = 0;
        OPJ_INT32 y1 = 0;
        OPJ_BOOL isMore = OPJ_FALSE;
        isAtEnd = opj_read_tile_header(codec.get(), bytes.get(), &number, &size, &x0, &y0, &x1, &y1,
                                       &components, &isMore) == OPJ_FALSE ||
                  isMore == OPJ_FALSE;
        if (isAtEnd) {
            return false;
        }
        tile.area = {x0, y0, x1, y1};
        tile.halvings.assign(stream.components.size(), 0);
        tile.samples.resize(size);
        if (SampleBytesOf(stream, tile) > size) {
            Refuse("The JPEG 2000 file has a tile of another size than it says.");
        }
        writtenBytes.Prepare(tile.samples);
        isAtEnd =
            opj_decode_tile_data(codec.get(), number, tile.samples.data(), size, bytes.get()) == OPJ_FALSE;
        const std::size_t written = isAtEnd ? 0 : writtenBytes.Count(tile.samples);
        return written > 0 && HalvingSearch(stream, tile, written).Find();
    }
};

J2kDecoder::J2kDecoder(const J2kStream& stream) : implementation_(std::make_unique<Implementation>(stream)) {}

J2kDecoder::~J2kDecoder() = default;

bool J2kDecoder::Next(J2kTile& tile) {
    return implementation_->Next(tile);
}

} // namespace pictorel::codecs
