// ICC profiles made on the spot, so that the colours they must give are known.
#pragma once

#include "picture/codecs/Codec.h"

#include <lcms2.h>

#include <array>

namespace pictorel::codecs::testing {

inline ByteBuffer SavedProfile(cmsHPROFILE profile) { // takes the profile over
    cmsUInt32Number size = 0;
    cmsSaveProfileToMem(profile, nullptr, &size);
    ByteBuffer bytes(size);
    cmsSaveProfileToMem(profile, bytes.data(), &size);
    cmsCloseProfile(profile);
    return bytes;
}

inline ByteBuffer RgbProfile(const cmsCIExyYTRIPLE& primaries, double gamma) {
    const cmsCIExyY d65{0.3127, 0.3290, 1.0};
    cmsToneCurve* const curve = cmsBuildGamma(nullptr, gamma);
    const std::array<cmsToneCurve*, 3> curves{curve, curve, curve};
    ByteBuffer bytes = SavedProfile(cmsCreateRGBProfile(&d65, &primaries, curves.data()));
    cmsFreeToneCurve(curve);
    return bytes;
}

// The primaries and gamma of the wide space that cameras offer beside sRGB (Adobe RGB, 1998).
inline ByteBuffer WideRgbProfile() {
    return RgbProfile({{0.64, 0.33, 1}, {0.21, 0.71, 1}, {0.15, 0.06, 1}}, 563.0 / 256.0);
}

inline ByteBuffer SrgbProfile() {
    return SavedProfile(cmsCreate_sRGBProfile());
}

inline ByteBuffer GreyProfile(double gamma) {
    const cmsCIExyY d50{0.3457, 0.3585, 1.0};
    cmsToneCurve* const curve = cmsBuildGamma(nullptr, gamma);
    ByteBuffer bytes = SavedProfile(cmsCreateGrayProfile(&d50, curve));
    cmsFreeToneCurve(curve);
    return bytes;
}

// An ink space whose only deed is to show what a profile can do that the plain rule does not: cyan ink is the
// lightness, other inks do nothing.
inline ByteBuffer InkProfile() {
    cmsHPROFILE const profile = cmsCreateProfilePlaceholder(nullptr);
    cmsSetProfileVersion(profile, 4.3);
    cmsSetDeviceClass(profile, cmsSigOutputClass);
    cmsSetColorSpace(profile, cmsSigCmykData);
    cmsSetPCS(profile, cmsSigLabData);
    cmsPipeline* const pipeline = cmsPipelineAlloc(nullptr, 4, 3);
    cmsStage* const grid = cmsStageAllocCLut16bit(nullptr, 2, 4, 3, nullptr);
    const auto fill = [](const cmsUInt16Number* in, cmsUInt16Number* out, void*) -> cmsInt32Number {
        out[0] = static_cast<cmsUInt16Number>(65535 - in[0]);
        out[1] = out[2] = 0x8080;
        return 1;
    };
    cmsStageSampleCLut16bit(grid, fill, nullptr, 0);
    cmsPipelineInsertStage(pipeline, cmsAT_END, cmsStageAllocToneCurves(nullptr, 4, nullptr));
    cmsPipelineInsertStage(pipeline, cmsAT_END, grid);
    cmsPipelineInsertStage(pipeline, cmsAT_END, cmsStageAllocToneCurves(nullptr, 3, nullptr));
    cmsWriteTag(profile, cmsSigAToB0Tag, pipeline);
    cmsPipelineFree(pipeline);
    return SavedProfile(profile);
}

} // namespace pictorel::codecs::testing
