// The variable-length codes of GIF pixels, see GifLzw.h.
#include "imaging/codecs/GifLzw.h"

#include "imaging/codecs/ByteReader.h"

namespace pictorel::codecs {

GifLzwDecoder::GifLzwDecoder(ByteView data) noexcept
    : data_(data), minimumBits_(ByteAt(data, 0)), clearCode_(0) {
    constexpr int kLargestMinimum = kMostBits - 1;
    ended_ = minimumBits_ < 1 || minimumBits_ > kLargestMinimum;
    if (!ended_) {
        clearCode_ = 1 << minimumBits_;
        for (int code = 0; code < clearCode_; ++code) {
            suffix_[static_cast<std::size_t>(code)] = static_cast<std::uint8_t>(std::min(code, 255));
        }
        Clear(); // some files leave out the first clear code
    }
}

void GifLzwDecoder::Clear() noexcept {
    codeBits_ = minimumBits_ + 1;
    nextCode_ = clearCode_ + 2;
    previous_ = -1;
}

bool GifLzwDecoder::NextByte() noexcept {
    if (blockLeft_ == 0) {
        blockLeft_ = ByteAt(data_, at_);
        ++at_;
        if (blockLeft_ == 0) {
            return false;
        }
    }
    if (at_ >= data_.size()) {
        return false;
    }
    bits_ |= std::uint32_t{data_[at_]} << bitCount_;
    bitCount_ += 8;
    ++at_;
    --blockLeft_;
    return true;
}

int GifLzwDecoder::NextCode() noexcept {
    while (bitCount_ < codeBits_) {
        if (!NextByte()) {
            return -1;
        }
    }
    const auto code = static_cast<int>(bits_ & ((1U << codeBits_) - 1));
    bits_ >>= codeBits_;
    bitCount_ -= codeBits_;
    return code;
}

// Puts the string of a code on the stack and learns the next one; false for a code that cannot come.
bool GifLzwDecoder::Expand(int code) noexcept {
    int walk = code;
    if (code > nextCode_ || (code == nextCode_ && previous_ < 0)) {
        return false;
    }
    if (code == nextCode_) { // the string being learned: the previous one and its own first index
        stack_[static_cast<std::size_t>(stackSize_++)] = previousFirst_;
        walk = previous_;
    }
    while (walk > clearCode_) {
        stack_[static_cast<std::size_t>(stackSize_++)] = suffix_[static_cast<std::size_t>(walk)];
        walk = prefix_[static_cast<std::size_t>(walk)];
    }
    const std::uint8_t first = suffix_[static_cast<std::size_t>(walk)];
    stack_[static_cast<std::size_t>(stackSize_++)] = first;
    // A full table stays as it is until the clear code, which may come late.
    if (previous_ >= 0 && nextCode_ < kCodes) {
        prefix_[static_cast<std::size_t>(nextCode_)] = static_cast<std::uint16_t>(previous_);
        suffix_[static_cast<std::size_t>(nextCode_)] = first;
        ++nextCode_;
        if (nextCode_ == 1 << codeBits_ && codeBits_ < kMostBits) {
            ++codeBits_;
        }
    }
    previous_ = code;
    previousFirst_ = first;
    return true;
}

int GifLzwDecoder::Read(std::uint8_t* indices, int count) noexcept {
    int done = 0;
    while (done < count) {
        if (stackSize_ > 0) {
            indices[done++] = stack_[static_cast<std::size_t>(--stackSize_)];
            continue;
        }
        if (ended_) {
            break;
        }
        const int code = NextCode();
        if (code == clearCode_) {
            Clear();
        } else {
            ended_ = code < 0 || code == clearCode_ + 1 || !Expand(code);
        }
    }
    return done;
}

} // namespace pictorel::codecs
