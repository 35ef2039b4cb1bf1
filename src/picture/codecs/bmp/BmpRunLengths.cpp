// The run-length compressed pixels of bitmap files, see BmpRunLengths.h.
#include "picture/codecs/bmp/BmpRunLengths.h"

#include "picture/codecs/ByteReader.h"
#include "picture/codecs/PixelSupport.h"

#include <algorithm>
#include <cstring>

namespace pictorel::codecs {
namespace {

class RunLengthDecoder {
  public:
    RunLengthDecoder(const BmpHeader& header, PixelArray& picture)
        : header_(header), data_(header.pixels), rows_(picture.WritableRows()), stride_(picture.Stride()) {}

    // How many pixels were reached: all where the data says that it ends.
    double Decode() {
        FillTransparent();
        while (at_ + 1 < data_.size() && y_ < header_.height) {
            const int count = data_[at_];
            const std::size_t value = at_ + 1;
            if (count > 0) {
                PutRun(value, count);
            } else if (!Escape(data_[value])) {
                return named_ > 0 ? static_cast<double>(header_.width) * header_.height : 0;
            }
        }
        const double reached = static_cast<double>(y_) * header_.width + x_;
        FillRestWhite();
        return named_ > 0 ? reached : 0;
    }

  private:
    enum : int { kEndOfLine = 0, kEndOfBitmap = 1, kDelta = 2 };

    // What no code names lets through what is behind; programs that know no transparency see the first
    // colour.
    void FillTransparent() {
        std::array<std::uint8_t, 4> unnamed = header_.palette[0];
        unnamed[3] = 0;
        for (int y = 0; y < header_.height; ++y) {
            for (int x = 0; x < header_.width; ++x) {
                std::memcpy(rows_ + y * stride_ + x * PixelArray::kComponents, unnamed.data(), 4);
            }
        }
    }

    void FillRestWhite() {
        for (; y_ < header_.height; ++y_, x_ = 0) {
            std::memset(Place(), 0xFF,
                        static_cast<std::size_t>(header_.width - x_) * PixelArray::kComponents);
        }
    }

    std::uint8_t* Place() const {
        const int y = header_.topDown ? y_ : header_.height - 1 - y_;
        return rows_ + y * stride_ + x_ * PixelArray::kComponents;
    }

    std::size_t DataBytes(int pixels) const {
        return (static_cast<std::size_t>(pixels) * static_cast<std::size_t>(header_.bits) + 7) / 8;
    }

    void PutRun(std::size_t value, int count) {
        const int distinct = header_.bits == 4 ? 2 : 1; // a 4-bit run alternates between two colours
        for (int i = 0; i < count; ++i) {
            Put(value, i % distinct);
        }
        at_ = value + DataBytes(distinct);
    }

    bool Escape(int code) {
        at_ += 2;
        switch (code) {
            case kEndOfLine:
                x_ = 0;
                ++y_;
                return true;
            case kEndOfBitmap:
                return false;
            case kDelta:
                x_ = std::min(x_ + ByteAt(data_, at_), header_.width);
                y_ += ByteAt(data_, at_ + 1);
                at_ += 2;
                return true;
            default:
                for (int i = 0; i < code; ++i) {
                    Put(at_, i);
                }
                at_ += (DataBytes(code) + 1) / 2 * 2; // padded to a 16-bit boundary
                return true;
        }
    }

    // Pixel `index` of the packed pixels at `start` goes to the current place, if both are there.
    void Put(std::size_t start, int index) {
        const std::size_t byte =
            start + static_cast<std::size_t>(index) * static_cast<std::size_t>(header_.bits) / 8;
        const bool isThere = header_.bits == 24 ? byte + 2 < data_.size() : byte < data_.size();
        if (x_ < header_.width && isThere) {
            std::memcpy(Place(), Colour(byte, index).data(), 4);
            ++x_;
            ++named_;
        }
    }

    std::array<std::uint8_t, 4> Colour(std::size_t byte, int index) const {
        if (header_.bits == 24) {
            return {data_[byte], data_[byte + 1], data_[byte + 2], 255};
        }
        const int packed = data_[byte];
        const int entry = header_.bits == 8 ? packed : (index % 2 == 0 ? packed >> 4 : packed & 15);
        return header_.palette[static_cast<std::size_t>(entry)];
    }

    const BmpHeader& header_;
    ByteView data_;
    std::uint8_t* rows_;
    std::ptrdiff_t stride_;
    std::size_t at_ = 0;
    int x_ = 0;
    int y_ = 0; // in file order
    std::int64_t named_ = 0;
};

} // namespace

std::int64_t PixelsNamedByRunLengths(const BmpHeader& header) {
    const ByteView data = header.pixels;
    const auto bytesOf = [&](int pixels) {
        return (static_cast<std::size_t>(pixels) * static_cast<std::size_t>(header.bits) + 7) / 8;
    };
    constexpr int kLastCommand = 2; // end of line, end of bitmap, delta; above them counts of plain pixels
    std::int64_t named = 0;
    for (std::size_t at = 0; at + 1 < data.size();) {
        const int count = data[at];
        const int code = data[at + 1];
        if (count > 0) {
            named += count;
            at += header.bits == 24 ? 4 : 2;
        } else if (code > kLastCommand) {
            named += code;
            at += 2 + (bytesOf(code) + 1) / 2 * 2;
        } else {
            at += code == kLastCommand ? 4 : 2;
        }
    }
    return named;
}

void DecodeBmpRunLengths(const BmpHeader& header, PixelArray& picture) {
    NotePixelsShown(picture, RunLengthDecoder(header, picture).Decode());
}

} // namespace pictorel::codecs
