// Loads a vector once that is used more than once; included once for each kind of vectors.
#if defined(PICTOREL_KEEP_IN_REGISTER_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef PICTOREL_KEEP_IN_REGISTER_INL_H
#undef PICTOREL_KEEP_IN_REGISTER_INL_H
#else
#define PICTOREL_KEEP_IN_REGISTER_INL_H
#endif

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace pictorel::engine::HWY_NAMESPACE {

// GCC loads a vector again for every use of it, which takes twice as long across cache lines.
template <class V>
HWY_INLINE void KeepInRegister([[maybe_unused]] V& vector) {
#if HWY_COMPILER_GCC_ACTUAL && HWY_ARCH_X86 && HWY_TARGET != HWY_EMU128
    asm("" : "+v"(vector.raw));
#endif
}

} // namespace pictorel::engine::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
