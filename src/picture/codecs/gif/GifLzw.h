// The variable-length codes of GIF pixels, decoded so that a damaged end costs only the pixels behind it.
#pragma once

#include "picture/codecs/Codec.h"

#include <array>
#include <cstdint>

namespace pictorel::codecs {

// giflib refuses code sizes above 8 and loses the row in which data ends; this decoder does neither.
class GifLzwDecoder {
  public:
    // `data` starts with the minimum code size, followed by the sub-blocks.
    explicit GifLzwDecoder(ByteView data) noexcept;

    // Up to `count` colour indices (those above 255 as 255); fewer where the data ends or makes no sense.
    int Read(std::uint8_t* indices, int count) noexcept;

    // Whether there is a pixel to begin with; takes it.
    bool HasPixels() noexcept {
        std::uint8_t index = 0;
        return Read(&index, 1) == 1;
    }

  private:
    static constexpr int kCodes = 4096;
    static constexpr int kMostBits = 12;

    bool Refill() noexcept;
    int NextCode() noexcept;               // -1 at the end
    int LengthOf(int code) const noexcept; // of its string; 0 for a code that cannot come
    void Expand(int code, int length, std::uint8_t* to) noexcept;
    void Clear() noexcept;

    ByteView data_;
    std::size_t at_ = 1;
    int blockLeft_ = 0; // bytes of the current sub-block
    std::uint64_t bits_ = 0;
    int bitCount_ = 0;

    int minimumBits_;
    int clearCode_;
    int codeBits_ = 0;
    int nextCode_ = 0;
    int previous_ = -1; // code, none after a clear code
    std::uint8_t previousFirst_ = 0;
    bool ended_ = false;
    std::array<std::uint16_t, kCodes> prefix_{};
    std::array<std::uint8_t, kCodes> suffix_{};
    std::array<std::uint16_t, kCodes> length_{};
    std::array<std::uint8_t, kCodes + 1> waiting_{}; // a string that was asked for in part
    int waitingAt_ = 0;
    int waitingEnd_ = 0;
};

} // namespace pictorel::codecs
