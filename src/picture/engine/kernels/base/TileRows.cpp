// Loops over the components of rows and tiles, see TileRows.h.
#include "picture/engine/kernels/base/TileRows.h"

#include "picture/PixelArray.h"
#include "picture/engine/kernels/base/Rounding.h"
#include "picture/engine/kernels/base/Streaming.h"

#include <algorithm>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "picture/engine/kernels/base/TileRows.cpp"
#include <hwy/cache_control.h>
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace pictorel::engine::HWY_NAMESPACE {

constexpr int kComponents = PixelArray::kComponents;
constexpr int kWideBits = 6;
static_assert(1 << kWideBits == kWideUnit);

void WidenRow(const std::uint8_t* HWY_RESTRICT in, int width, WideComponent* HWY_RESTRICT wide) {
    for (int i = 0; i < width * kComponents; i += kComponents) {
        const int alpha = in[i + 3] * kWideUnit;
        for (int k = 0; k < 3; ++k) {
            wide[i + k] = static_cast<WideComponent>((in[i + k] * alpha + 127) / 255);
        }
        wide[i + 3] = static_cast<WideComponent>(alpha);
    }
}

void NarrowRow(const WideComponent* HWY_RESTRICT wide, int width, std::uint8_t* HWY_RESTRICT out) {
    for (int i = 0; i < width * kComponents; i += kComponents) {
        const float perAlpha = 255.0F / static_cast<float>(std::max<int>(wide[i + 3], 1));
        for (int k = 0; k < 3; ++k) {
            out[i + k] = RoundToByte(static_cast<float>(wide[i + k]) * perAlpha);
        }
        out[i + 3] = static_cast<std::uint8_t>((wide[i + 3] + kWideUnit / 2) / kWideUnit);
    }
}

void WidenColours(const std::uint8_t* HWY_RESTRICT in, int width, WideComponent* HWY_RESTRICT wide) {
    for (int x = 0; x < width; ++x) {
        for (int k = 0; k < 3; ++k) {
            wide[3 * x + k] = static_cast<WideComponent>(in[kComponents * x + k] * kWideUnit);
        }
    }
}

void NarrowColours(const WideComponent* HWY_RESTRICT wide, int width, std::uint8_t* HWY_RESTRICT out) {
    namespace hn = hwy::HWY_NAMESPACE; // the compiler finds no good vectors for groups of three
    const hn::CappedTag<WideComponent, 16> wides;
    const hn::Rebind<std::uint8_t, decltype(wides)> bytes;
    const int lanes = static_cast<int>(hn::Lanes(wides));
    const auto narrow = [&](auto component) HWY_ATTR {
        const auto half = hn::Set(wides, kWideUnit / 2);
        return hn::DemoteTo(bytes, hn::ShiftRight<kWideBits>(hn::Add(component, half)));
    };
    int x = 0;
    for (; x + lanes <= width; x += lanes) {
        auto blue = hn::Zero(wides);
        auto green = blue;
        auto red = blue;
        hn::LoadInterleaved3(wides, wide + 3 * x, blue, green, red);
        hn::StoreInterleaved4(narrow(blue), narrow(green), narrow(red), hn::Set(bytes, 255), bytes,
                              out + kComponents * x);
    }
    for (; x < width; ++x) {
        for (int k = 0; k < 3; ++k) {
            out[kComponents * x + k] =
                static_cast<std::uint8_t>((wide[3 * x + k] + kWideUnit / 2) / kWideUnit);
        }
        out[kComponents * x + 3] = 255;
    }
}

void AddBytes(const std::uint8_t* HWY_RESTRICT row, std::size_t count, std::uint16_t* HWY_RESTRICT sums) {
    for (std::size_t i = 0; i < count; ++i) {
        sums[i] = static_cast<std::uint16_t>(sums[i] + row[i]);
    }
}

void CopyRow(const std::uint8_t* HWY_RESTRICT in, std::size_t size, bool streams,
             std::uint8_t* HWY_RESTRICT out, const std::uint8_t* ahead) {
    namespace hn = hwy::HWY_NAMESPACE;
    const hn::ScalableTag<std::uint8_t> bytes;
    const std::size_t lanes = hn::Lanes(bytes);
    std::size_t i = 0;
    if (streams && reinterpret_cast<std::uintptr_t>(out) % lanes == 0) {
        for (; i + lanes <= size; i += lanes) {
            if (ahead != nullptr) {
                FetchAhead(ahead + i);
            }
            hn::Stream(hn::LoadU(bytes, in + i), bytes, out + i);
        }
        hwy::FlushStream();
    }
    std::memcpy(out + i, in + i, size - i);
}

// What a component contributes to the sums of a picture that has alpha: premultiplied colour, scaled alpha.
inline std::int32_t Premultiplied(const std::uint8_t* pixel, int k) {
    return pixel[k] * (k == 3 ? 255 : pixel[3]);
}

void AddToMean(const std::uint8_t* HWY_RESTRICT row, int count, bool hasAlpha,
               std::int32_t* HWY_RESTRICT whole) {
    if (!hasAlpha) {
        for (int i = 0; i < count; ++i) {
            whole[i] += row[i];
        }
        return;
    }
    for (int i = 0; i < count; i += kComponents) {
        for (int k = 0; k < kComponents; ++k) {
            whole[i + k] += Premultiplied(row + i, k);
        }
    }
}

void SlideOpaque(const MeanStep& step, int count, std::int32_t* HWY_RESTRICT whole,
                 std::uint8_t* HWY_RESTRICT out) {
    const std::uint8_t* HWY_RESTRICT before = step.before;
    const std::uint8_t* HWY_RESTRICT leaving = step.leaving;
    const std::uint8_t* HWY_RESTRICT entering = step.entering;
    const float tip = step.tip;
    const float perLength = step.perLength;
    for (int i = 0; i < count; ++i) {
        const float sum = static_cast<float>(whole[i]) + tip * static_cast<float>(before[i] + entering[i]);
        out[i] = RoundToByte(sum * perLength);
        whole[i] += entering[i] - leaving[i];
    }
}

void SlidePremultiplied(const MeanStep& step, int count, std::int32_t* HWY_RESTRICT whole,
                        std::uint8_t* HWY_RESTRICT out) {
    for (int i = 0; i < count; i += kComponents) {
        float sums[kComponents];
        for (int k = 0; k < kComponents; ++k) {
            const std::int32_t enters = Premultiplied(step.entering + i, k);
            const std::int32_t tips = Premultiplied(step.before + i, k) + enters;
            sums[k] = static_cast<float>(whole[i + k]) + step.tip * static_cast<float>(tips);
            whole[i + k] += enters - Premultiplied(step.leaving + i, k);
        }
        const float perAlpha = sums[3] > 0 ? 255.0F / sums[3] : 0.0F;
        for (int k = 0; k < 3; ++k) {
            out[i + k] = RoundToByte(sums[k] * perAlpha);
        }
        out[i + 3] = RoundToByte(sums[3] * step.perLength / 255.0F);
    }
}

void SlideRow(const MeanStep& step, int count, bool hasAlpha, std::int32_t* whole, std::uint8_t* out) {
    hasAlpha ? SlidePremultiplied(step, count, whole, out) : SlideOpaque(step, count, whole, out);
}

} // namespace pictorel::engine::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pictorel::engine {

HWY_EXPORT(WidenRow);
HWY_EXPORT(NarrowRow);
HWY_EXPORT(WidenColours);
HWY_EXPORT(NarrowColours);
HWY_EXPORT(AddBytes);
HWY_EXPORT(CopyRow);
HWY_EXPORT(AddToMean);
HWY_EXPORT(SlideRow);

void WidenRow(const std::uint8_t* in, int width, WideComponent* wide) {
    HWY_DYNAMIC_DISPATCH(WidenRow)(in, width, wide);
}

void NarrowRow(const WideComponent* wide, int width, std::uint8_t* out) {
    HWY_DYNAMIC_DISPATCH(NarrowRow)(wide, width, out);
}

void WidenColours(const std::uint8_t* in, int width, WideComponent* wide) {
    HWY_DYNAMIC_DISPATCH(WidenColours)(in, width, wide);
}

void NarrowColours(const WideComponent* wide, int width, std::uint8_t* out) {
    HWY_DYNAMIC_DISPATCH(NarrowColours)(wide, width, out);
}

void AddBytes(const std::uint8_t* row, std::size_t count, std::uint16_t* sums) {
    HWY_DYNAMIC_DISPATCH(AddBytes)(row, count, sums);
}

void CopyRow(const std::uint8_t* in, std::size_t size, bool streams, std::uint8_t* out,
             const std::uint8_t* ahead) {
    HWY_DYNAMIC_DISPATCH(CopyRow)(in, size, streams, out, ahead);
}

void AddToMean(const std::uint8_t* row, int count, bool hasAlpha, std::int32_t* whole) {
    HWY_DYNAMIC_DISPATCH(AddToMean)(row, count, hasAlpha, whole);
}

void SlideRow(const MeanStep& step, int count, bool hasAlpha, std::int32_t* whole, std::uint8_t* out) {
    HWY_DYNAMIC_DISPATCH(SlideRow)(step, count, hasAlpha, whole, out);
}

} // namespace pictorel::engine
#endif
