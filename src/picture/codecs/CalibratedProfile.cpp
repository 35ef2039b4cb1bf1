// Colour profiles made from primaries and gamma, see CalibratedProfile.h.
#include "picture/codecs/CalibratedProfile.h"

#include <lcms2.h>

#include <algorithm>
#include <cmath>
#include <memory>

namespace pictorel::codecs {
namespace {

constexpr double kChromaticityTolerance = 0.002;
constexpr double kGammaTolerance = 0.045; // 2 % of 2.2
constexpr double kSrgbGamma = 2.2;

struct ContextDeleter {
    void operator()(void* context) const noexcept { cmsDeleteContext(static_cast<cmsContext>(context)); }
};
struct ProfileDeleter {
    void operator()(void* profile) const noexcept { cmsCloseProfile(profile); }
};
struct CurveDeleter {
    void operator()(cmsToneCurve* curve) const noexcept { cmsFreeToneCurve(curve); }
};
using Curve = std::unique_ptr<cmsToneCurve, CurveDeleter>;

bool Near(Chromaticity a, Chromaticity b) {
    return std::abs(a.x - b.x) < kChromaticityTolerance && std::abs(a.y - b.y) < kChromaticityTolerance;
}

bool IsSrgbGamma(double gamma) {
    return gamma == 0 || std::abs(gamma - kSrgbGamma) < kGammaTolerance;
}

bool IsSrgb(const CalibratedRgb& space) {
    return space.curve.empty() && Near(space.white, kSrgbWhite) &&
           std::equal(space.primaries.begin(), space.primaries.end(), kSrgbPrimaries.begin(), Near) &&
           std::all_of(space.gamma.begin(), space.gamma.end(), IsSrgbGamma);
}

// Primaries on one line, or a white of no light, span no space.
bool IsSensible(const CalibratedRgb& space) {
    const auto& [red, green, blue] = space.primaries;
    const double area = (green.x - red.x) * (blue.y - red.y) - (blue.x - red.x) * (green.y - red.y);
    const auto sensiblePoint = [](Chromaticity c) {
        return c.x >= -0.5 && c.x <= 1.5 && c.y >= -0.5 && c.y <= 1.5 && std::abs(c.y) > 1e-4;
    };
    return std::abs(area) > 1e-3 && space.white.y > 0.01 && sensiblePoint(space.white) &&
           std::all_of(space.primaries.begin(), space.primaries.end(), sensiblePoint) &&
           std::all_of(space.gamma.begin(), space.gamma.end(),
                       [](double g) { return g == 0 || (g > 0.1 && g < 10); });
}

Curve MakeCurve(cmsContext context, const std::vector<float>& samples, double gamma) {
    if (!samples.empty()) {
        return Curve(cmsBuildTabulatedToneCurveFloat(context, static_cast<cmsUInt32Number>(samples.size()),
                                                     samples.data()));
    }
    if (gamma != 0) {
        return Curve(cmsBuildGamma(context, gamma));
    }
    const double srgb[] = {2.4, 1 / 1.055, 0.055 / 1.055, 1 / 12.92, 0.04045}; // IEC 61966-2-1
    return Curve(cmsBuildParametricToneCurve(context, 4, srgb));
}

} // namespace

ByteBuffer MakeCalibratedProfile(const CalibratedRgb& space) {
    if (IsSrgb(space) || !IsSensible(space)) {
        return {};
    }
    // A context of our own: errors stay silent and nothing is shared between threads.
    const std::unique_ptr<void, ContextDeleter> context(cmsCreateContext(nullptr, nullptr));
    const auto lcms = static_cast<cmsContext>(context.get());
    const Curve curves[] = {MakeCurve(lcms, space.curve, space.gamma[0]),
                            MakeCurve(lcms, space.curve, space.gamma[1]),
                            MakeCurve(lcms, space.curve, space.gamma[2])};
    cmsToneCurve* const handles[] = {curves[0].get(), curves[1].get(), curves[2].get()};
    const cmsCIExyY white{space.white.x, space.white.y, 1};
    const auto& [red, green, blue] = space.primaries;
    const cmsCIExyYTRIPLE primaries{{red.x, red.y, 1}, {green.x, green.y, 1}, {blue.x, blue.y, 1}};
    const std::unique_ptr<void, ProfileDeleter> profile(
        cmsCreateRGBProfileTHR(lcms, &white, &primaries, handles));
    cmsUInt32Number bytes = 0;
    if (!profile || !cmsSaveProfileToMem(profile.get(), nullptr, &bytes)) {
        return {};
    }
    ByteBuffer icc(bytes);
    return cmsSaveProfileToMem(profile.get(), icc.data(), &bytes) ? icc : ByteBuffer{};
}

} // namespace pictorel::codecs
