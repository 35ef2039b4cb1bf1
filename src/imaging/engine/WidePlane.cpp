// Wide components of a rectangle of pixels, see WidePlane.h.
#include "imaging/engine/WidePlane.h"

namespace pictorel::engine {
namespace {

constexpr int kComponents = PixelArray::kComponents;

// Calls copy(first, count, wide) for the pixels inside `begin` <= x < `end` and repeats the outermost ones
// over the rest of left <= x < left + count.
template <class Copy>
void LoadContinued(int begin, int end, int left, int count, WideComponent* wide, const Copy& copy) {
    const int first = std::clamp(left, begin, end - 1);
    const int last = std::clamp(left + count - 1, begin, end - 1);
    const int before = std::clamp(first - left, 0, count - 1);
    WideComponent* const inside = wide + static_cast<std::ptrdiff_t>(before) * kComponents;
    copy(first, last - first + 1, inside);
    for (WideComponent* p = wide; p != inside; p += kComponents) {
        std::copy_n(inside, kComponents, p);
    }
    WideComponent* const behind = inside + static_cast<std::ptrdiff_t>(last - first + 1) * kComponents;
    for (WideComponent* p = behind; p < wide + static_cast<std::ptrdiff_t>(count) * kComponents;
         p += kComponents) {
        std::copy_n(behind - kComponents, kComponents, p);
    }
}

// The processor follows rows, not strips of them: it is told what comes next.
void FetchAhead(const std::uint8_t* from, std::ptrdiff_t size) {
    constexpr std::ptrdiff_t kLine = 64;
    for (std::ptrdiff_t i = 0; i < size; i += kLine) {
        __builtin_prefetch(from + i);
    }
}

} // namespace

WidePlane::WidePlane(const Bounds& bounds)
    : bounds_(bounds),
      rowLength_(static_cast<std::ptrdiff_t>(AlignedLength(bounds.right - bounds.left))),
      memory_(TakeBuffer(static_cast<std::size_t>(rowLength_) *
                         static_cast<std::size_t>(bounds.bottom - bounds.top) * sizeof(WideComponent))),
      rows_(reinterpret_cast<WideComponent*>(memory_.get())) {}

void LoadWideRow(const PixelArray& source, int y, int left, int count, WideComponent* wide) {
    LoadContinued(0, source.Width(), left, count, wide, [&](int first, int inside, WideComponent* to) {
        const std::uint8_t* const from = source.Row(y) + static_cast<std::ptrdiff_t>(first) * kComponents;
        if (y + 2 < source.Height()) {
            FetchAhead(from + 2 * source.Stride(), static_cast<std::ptrdiff_t>(inside) * kComponents);
        }
        WidenRow(from, inside, source.HasAlpha(), to);
    });
}

void LoadWideRow(const WidePlane& source, int y, int left, int count, WideComponent* wide) {
    const Bounds& bounds = source.Extent();
    LoadContinued(
        bounds.left, bounds.right, left, count, wide, [&](int first, int inside, WideComponent* to) {
            std::copy_n(source.Row(y) + static_cast<std::ptrdiff_t>(first - bounds.left) * kComponents,
                        static_cast<std::ptrdiff_t>(inside) * kComponents, to);
        });
}

} // namespace pictorel::engine
