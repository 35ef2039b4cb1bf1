// The variable-length codes of GIF pixels, see GifLzw.h.
#include "picture/codecs/gif/GifLzw.h"

#include "picture/codecs/ByteReader.h"

#include <algorithm>

namespace pictorel::codecs {

GifLzwDecoder::GifLzwDecoder(ByteView data) noexcept
    : data_(data), minimumBits_(ByteAt(data, 0)), clearCode_(0) {
    constexpr int kLargestMinimum = kMostBits - 1;
    ended_ = minimumBits_ < 1 || minimumBits_ > kLargestMinimum;
    if (!ended_) {
        clearCode_ = 1 << minimumBits_;
        for (int code = 0; code < clearCode_; ++code) {
            suffix_[static_cast<std::size_t>(code)] = static_cast<std::uint8_t>(std::min(code, 255));
            length_[static_cast<std::size_t>(code)] = 1;
        }
        Clear(); // some files leave out the first clear code
    }
}

void GifLzwDecoder::Clear() noexcept {
    codeBits_ = minimumBits_ + 1;
    nextCode_ = clearCode_ + 2;
    previous_ = -1;
}

// As many bytes as there is room for, of this sub-block or the next; false where there are none.
bool GifLzwDecoder::Refill() noexcept {
    if (blockLeft_ == 0) {
        blockLeft_ = ByteAt(data_, at_);
        ++at_;
    }
    constexpr int kRoom = 64;
    const std::size_t left = at_ < data_.size() ? data_.size() - at_ : 0;
    const int wanted = std::min((kRoom - bitCount_) / 8, blockLeft_);
    const int taken = static_cast<int>(std::min<std::size_t>(left, static_cast<std::size_t>(wanted)));
    for (int i = 0; i < taken; ++i, bitCount_ += 8) {
        bits_ |= std::uint64_t{data_[at_ + static_cast<std::size_t>(i)]} << bitCount_;
    }
    at_ += static_cast<std::size_t>(taken);
    blockLeft_ -= taken;
    return taken > 0;
}

inline int GifLzwDecoder::NextCode() noexcept {
    while (bitCount_ < codeBits_) {
        if (!Refill()) {
            return -1;
        }
    }
    const auto code = static_cast<int>(bits_ & ((std::uint64_t{1} << codeBits_) - 1));
    bits_ >>= codeBits_;
    bitCount_ -= codeBits_;
    return code;
}

int GifLzwDecoder::LengthOf(int code) const noexcept {
    if (code < nextCode_) {
        return length_[static_cast<std::size_t>(code)];
    }
    // The string being learned: the previous one and its own first index.
    const bool isBeingLearned = code == nextCode_ && previous_ >= 0;
    return isBeingLearned ? length_[static_cast<std::size_t>(previous_)] + 1 : 0;
}

// Writes the string of a code and learns the next one.
void GifLzwDecoder::Expand(int code, int length, std::uint8_t* to) noexcept {
    std::uint8_t* end = to + length;
    int walk = code;
    if (code == nextCode_) {
        *--end = previousFirst_;
        walk = previous_;
    }
    while (--end != to) {
        *end = suffix_[static_cast<std::size_t>(walk)];
        walk = prefix_[static_cast<std::size_t>(walk)];
    }
    *to = suffix_[static_cast<std::size_t>(walk)];
    // A full table stays as it is until the clear code, which may come late.
    if (previous_ >= 0 && nextCode_ < kCodes) {
        const auto learned = static_cast<std::size_t>(nextCode_);
        prefix_[learned] = static_cast<std::uint16_t>(previous_);
        suffix_[learned] = *to;
        length_[learned] = static_cast<std::uint16_t>(length_[static_cast<std::size_t>(previous_)] + 1);
        ++nextCode_;
        if (nextCode_ == 1 << codeBits_ && codeBits_ < kMostBits) {
            ++codeBits_;
        }
    }
    previous_ = code;
    previousFirst_ = *to;
}

int GifLzwDecoder::Read(std::uint8_t* indices, int count) noexcept {
    int done = 0;
    for (;;) {
        const int taken = std::min(count - done, waitingEnd_ - waitingAt_);
        std::copy_n(waiting_.data() + waitingAt_, taken, indices + done);
        waitingAt_ += taken;
        done += taken;
        while (done < count && waitingAt_ == waitingEnd_) {
            const int code = ended_ ? -1 : NextCode();
            if (code == clearCode_) {
                Clear();
                continue;
            }
            const int length = code < 0 || code == clearCode_ + 1 ? 0 : LengthOf(code);
            if (length == 0) {
                ended_ = true;
                return done;
            }
            if (length <= count - done) {
                Expand(code, length, indices + done);
                done += length;
            } else {
                Expand(code, length, waiting_.data());
                waitingAt_ = 0;
                waitingEnd_ = length;
            }
        }
        if (done == count) {
            return done;
        }
    }
}

} // namespace pictorel::codecs
