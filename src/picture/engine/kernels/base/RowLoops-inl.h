// The loops over bytes that compilers turn into vectors by themselves, see RowKernels.h; included once for
// each kind of vectors and once for the plain loops.
#if defined(PICTOREL_ROW_LOOPS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef PICTOREL_ROW_LOOPS_INL_H
#undef PICTOREL_ROW_LOOPS_INL_H
#else
#define PICTOREL_ROW_LOOPS_INL_H
#endif

#include <hwy/highway.h>

#include <cstddef>
#include <cstdint>

HWY_BEFORE_NAMESPACE();
namespace pictorel::engine::HWY_NAMESPACE {
namespace {

inline void AddBytes(const std::uint8_t* HWY_RESTRICT row, std::size_t count,
                     std::uint16_t* HWY_RESTRICT sums) {
    for (std::size_t i = 0; i < count; ++i) {
        sums[i] = static_cast<std::uint16_t>(sums[i] + row[i]);
    }
}

} // namespace
} // namespace pictorel::engine::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
