// Rows of pixels in 16 bits a component: what blurs pass from stage to stage.
#pragma once

#include "picture/PixelArray.h"

#include <cstddef>
#include <cstdint>
#include <new>
#include <vector>

namespace pictorel::engine {

// In 1/128 of a level, 0 to 255 * 128; colour premultiplied where the picture has alpha.
using Fine = std::uint16_t;
inline constexpr int kFineUnit = 128;

// Rows have room for whole vectors, and for vectors begun within them.
inline constexpr std::size_t kFineStep = 32;

// A fine row has two halves of this length: first the components 0 and 2 of all pixels, then the components 1
// and 3. Bytes are parted that way without a shuffle, and put together again.
inline constexpr std::size_t kFinesPerPixel = PixelArray::kComponents / 2; // in a half
constexpr std::size_t HalfLength(int width) {
    return (static_cast<std::size_t>(width) * 2 + kFineStep - 1) / kFineStep * kFineStep + 2 * kFineStep;
}
constexpr std::size_t FineLength(int width) {
    return 2 * HalfLength(width);
}

// Begins on a cache line.
template <class T>
class LineAllocator {
  public:
    using value_type = T;

    LineAllocator() = default;
    template <class U>
    explicit LineAllocator(const LineAllocator<U>& /*other*/) {}

    T* allocate(std::size_t count) { return static_cast<T*>(::operator new(count * sizeof(T), kLine)); }
    void deallocate(T* memory, std::size_t /*count*/) { ::operator delete(memory, kLine); }
    bool operator==(const LineAllocator& /*other*/) const { return true; }

  private:
    static constexpr std::align_val_t kLine{64};
};

using FineRow = std::vector<Fine, LineAllocator<Fine>>;

// Pixels to fine rows and back.
void FineFromPixels(const std::uint8_t* in, int width, bool hasAlpha, Fine* fine);
void PixelsFromFine(const Fine* fine, int width, bool hasAlpha, std::uint8_t* out);

// in + amount (in - blurred) in colour, alpha left alone.
void SharpenPixels(const std::uint8_t* in, const Fine* blurred, int width, bool hasAlpha, float amount,
                   std::uint8_t* out);

} // namespace pictorel::engine
