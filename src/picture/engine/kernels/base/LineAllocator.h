// Memory that begins on a line of the cache, for rows that are read and written in whole vectors.
#pragma once

#include "picture/engine/kernels/base/Sizes.h"

#include <cstddef>
#include <new>

namespace pictorel::engine {

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
    static constexpr std::align_val_t kLine{kCacheLine};
};

} // namespace pictorel::engine
