// Colour management through Little CMS, see ColourProfile.h.
#include "picture/codecs/ColourProfile.h"

#include "picture/ForEachBand.h"

#include <lcms2.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <utility>
#include <vector>

namespace pictorel::codecs {
namespace {

struct CloseProfile {
    void operator()(void* profile) const noexcept { cmsCloseProfile(profile); }
};
struct DeleteTransform {
    void operator()(void* transform) const noexcept { cmsDeleteTransform(transform); }
};
using Profile = std::unique_ptr<void, CloseProfile>;
using Transform = std::unique_ptr<void, DeleteTransform>;

std::uint8_t To8(std::uint8_t sample) noexcept {
    return sample;
}

std::uint8_t To8(std::uint16_t sample) noexcept {
    return static_cast<std::uint8_t>((sample * 255U + 32767U) / 65535U);
}

std::uint8_t Product(unsigned a, unsigned b) noexcept { // of two fractions of 255, rounded
    return static_cast<std::uint8_t>((a * b + 127U) / 255U);
}

// The plain rules for samples without a profile: which of a pixel's samples is blue, green, red and alpha (-1
// where it is opaque).
template <class Sample, int kChannels, int kBlue, int kGreen, int kRed, int kAlpha>
void PlainRow(const void* samples, std::uint8_t* bgra, int pixels) noexcept {
    const auto* in = static_cast<const Sample*>(samples);
    for (int x = 0; x < pixels; ++x, in += kChannels, bgra += PixelArray::kComponents) {
        const std::uint8_t alpha = kAlpha < 0 ? std::uint8_t{255} : To8(in[std::max(kAlpha, 0)]);
        const std::array<std::uint8_t, 4> out{To8(in[kBlue]), To8(in[kGreen]), To8(in[kRed]), alpha};
        std::memcpy(bgra, out.data(), out.size());
    }
}

template <class Sample, bool kInverted>
void PlainInkRow(const void* samples, std::uint8_t* bgra, int pixels) noexcept {
    const auto* in = static_cast<const Sample*>(samples);
    const auto light = [](Sample sample) -> unsigned { return kInverted ? To8(sample) : 255 - To8(sample); };
    for (int x = 0; x < pixels; ++x, in += 4, bgra += PixelArray::kComponents) {
        const unsigned black = light(in[3]);
        const std::array<std::uint8_t, 4> out{Product(light(in[2]), black), Product(light(in[1]), black),
                                              Product(light(in[0]), black), 255};
        std::memcpy(bgra, out.data(), out.size());
    }
}

// The level 0..255 of linear light, by IEC 61966-2-1, from a table of 65536 steps.
std::uint8_t SrgbLevel(float light) {
    constexpr float kSteps = 65535;
    static const std::vector<std::uint8_t> levels = [] {
        std::vector<std::uint8_t> table(static_cast<std::size_t>(kSteps) + 1);
        for (std::size_t i = 0; i < table.size(); ++i) {
            const double linear = static_cast<double>(i) / kSteps;
            const double encoded =
                linear <= 0.0031308 ? 12.92 * linear : 1.055 * std::pow(linear, 1 / 2.4) - 0.055;
            table[i] = static_cast<std::uint8_t>(std::lround(encoded * 255));
        }
        return table;
    }();
    return levels[static_cast<std::size_t>(std::lround(std::clamp(light, 0.0F, 1.0F) * kSteps))];
}

// CIE 1976 L*a*b* about D50, worked out here: the 16-bit tables of Little CMS are up to twenty levels off.
template <class Sample>
void LabRow(const void* samples, std::uint8_t* bgra, int pixels) {
    constexpr float kLightnessUnit = static_cast<float>(std::numeric_limits<Sample>::max()) / 100;
    constexpr float kColourUnit = sizeof(Sample) == 1 ? 1 : 256;
    constexpr std::array<float, 3> kWhite{0.96422F, 1, 0.82521F};
    // XYZ about D50 to linear sRGB, Bradford-adapted; rows blue, green, red.
    constexpr std::array<std::array<float, 3>, 3> kToLight{{{0.0719453F, -0.2289914F, 1.4052427F},
                                                            {-0.9787684F, 1.9161415F, 0.0334540F},
                                                            {3.1338561F, -1.6168667F, -0.4906146F}}};
    const auto unfold = [](float t) { // the inverse of the f() of L*a*b*
        constexpr float kDelta = 6.0F / 29;
        return t > kDelta ? t * t * t : 3 * kDelta * kDelta * (t - 4.0F / 29);
    };
    const auto* in = static_cast<const Sample*>(samples);
    for (int x = 0; x < pixels; ++x, in += 3, bgra += PixelArray::kComponents) {
        const float y = (static_cast<float>(in[0]) / kLightnessUnit + 16) / 116;
        const float a = (static_cast<float>(in[1]) / kColourUnit - 128) / 500;
        const float b = (static_cast<float>(in[2]) / kColourUnit - 128) / 200;
        const std::array<float, 3> xyz{unfold(y + a) * kWhite[0], unfold(y) * kWhite[1],
                                       unfold(y - b) * kWhite[2]};
        for (std::size_t i = 0; i < kToLight.size(); ++i) {
            bgra[i] = SrgbLevel(kToLight[i][0] * xyz[0] + kToLight[i][1] * xyz[1] + kToLight[i][2] * xyz[2]);
        }
        bgra[3] = 255;
    }
}

struct LayoutTraits {
    SampleLayout layout;
    cmsUInt32Number lcmsFormat;
    cmsColorSpaceSignature space; // that a profile for these samples must be of; 0: profiles are ignored
    bool hasAlpha;
    void (*plainRow)(const void* samples, std::uint8_t* bgra, int pixels);
};

constexpr cmsColorSpaceSignature kNoProfile{};

constexpr std::array<LayoutTraits, 10> kLayouts{{
    {SampleLayout::Grey8, TYPE_GRAY_8, cmsSigGrayData, false, PlainRow<std::uint8_t, 1, 0, 0, 0, -1>},
    {SampleLayout::Grey16, TYPE_GRAY_16, cmsSigGrayData, false, PlainRow<std::uint16_t, 1, 0, 0, 0, -1>},
    {SampleLayout::Rgb16, TYPE_RGB_16, cmsSigRgbData, false, PlainRow<std::uint16_t, 3, 2, 1, 0, -1>},
    {SampleLayout::Rgba16, TYPE_RGBA_16, cmsSigRgbData, true, PlainRow<std::uint16_t, 4, 2, 1, 0, 3>},
    {SampleLayout::Bgra8, TYPE_BGRA_8, cmsSigRgbData, true, PlainRow<std::uint8_t, 4, 0, 1, 2, 3>},
    {SampleLayout::Cmyk8, TYPE_CMYK_8, cmsSigCmykData, false, PlainInkRow<std::uint8_t, false>},
    {SampleLayout::CmykInverted8, TYPE_CMYK_8_REV, cmsSigCmykData, false, PlainInkRow<std::uint8_t, true>},
    {SampleLayout::Cmyk16, TYPE_CMYK_16, cmsSigCmykData, false, PlainInkRow<std::uint16_t, false>},
    {SampleLayout::Lab8, 0, kNoProfile, false, LabRow<std::uint8_t>},
    {SampleLayout::Lab16, 0, kNoProfile, false, LabRow<std::uint16_t>},
}};

constexpr bool LayoutsStandInOrder() {
    for (std::size_t i = 0; i < kLayouts.size(); ++i) {
        if (static_cast<std::size_t>(kLayouts[i].layout) != i) {
            return false;
        }
    }
    return true;
}
static_assert(LayoutsStandInOrder());

Profile OpenProfile(ByteView icc) {
    if (icc.empty() || icc.size() > std::numeric_limits<cmsUInt32Number>::max()) {
        return nullptr;
    }
    Profile profile(cmsOpenProfileFromMem(icc.data(), static_cast<cmsUInt32Number>(icc.size())));
    if (!profile) {
        return nullptr;
    }
    // Device links, abstract and named-colour profiles describe no picture.
    constexpr std::array kPictureProfiles{cmsSigInputClass, cmsSigDisplayClass, cmsSigOutputClass,
                                          cmsSigColorSpaceClass};
    const auto kind = cmsGetDeviceClass(profile.get());
    return std::find(kPictureProfiles.begin(), kPictureProfiles.end(), kind) == kPictureProfiles.end()
               ? nullptr
               : std::move(profile);
}

// From samples of a layout in the `source` space to B, G, R, A in sRGB; null where the profile cannot do it.
Transform MakeTransform(const Profile& source, const LayoutTraits& traits) {
    if (!source || cmsGetColorSpace(source.get()) != traits.space) {
        return nullptr;
    }
    const Profile srgb(cmsCreate_sRGBProfile());
    const bool perceptual = cmsIsIntentSupported(source.get(), INTENT_PERCEPTUAL, LCMS_USED_AS_INPUT) != 0;
    return Transform(cmsCreateTransform(source.get(), traits.lcmsFormat, srgb.get(), TYPE_BGRA_8,
                                        perceptual ? INTENT_PERCEPTUAL : INTENT_RELATIVE_COLORIMETRIC,
                                        traits.hasAlpha ? cmsFLAGS_COPY_ALPHA : 0U));
}

// Whether a B, G, R, A transform leaves colours as they are, judged by what it does, since the names in
// profiles say little. The probes are all greys and an even grid over the cube.
bool ChangesNothing(const Transform& transform) {
    constexpr int kGridStep = 15;
    std::vector<std::uint8_t> before;
    const auto add = [&](int blue, int green, int red) {
        for (const int component : {blue, green, red, 255}) {
            before.push_back(static_cast<std::uint8_t>(component));
        }
    };
    for (int grey = 0; grey < 256; ++grey) {
        add(grey, grey, grey);
    }
    for (int blue = 0; blue < 256; blue += kGridStep) {
        for (int green = 0; green < 256; green += kGridStep) {
            for (int red = 0; red < 256; red += kGridStep) {
                add(blue, green, red);
            }
        }
    }
    std::vector<std::uint8_t> after(before.size());
    cmsDoTransform(transform.get(), before.data(), after.data(),
                   static_cast<cmsUInt32Number>(before.size() / PixelArray::kComponents));
    return std::equal(before.begin(), before.end(), after.begin(),
                      [](int a, int b) { return std::abs(a - b) <= 1; });
}

ByteBuffer PlainSrgbProfile() {
    const Profile srgb(cmsCreate_sRGBProfile());
    cmsUInt32Number size = 0;
    if (!srgb || cmsSaveProfileToMem(srgb.get(), nullptr, &size) == 0) {
        return {};
    }
    ByteBuffer bytes(size);
    if (cmsSaveProfileToMem(srgb.get(), bytes.data(), &size) == 0) {
        return {};
    }
    // The time of making becomes a fixed one (1 January 2000), so that equal pictures give equal files.
    constexpr std::size_t kDateOffset = 24;
    constexpr std::array<std::uint8_t, 12> kDate{0x07, 0xD0, 0, 1, 0, 1, 0, 0, 0, 0, 0, 0};
    std::copy(kDate.begin(), kDate.end(), bytes.begin() + kDateOffset);
    return bytes;
}

} // namespace

struct ColourConverter::Implementation {
    const LayoutTraits& traits;
    Transform transform; // null: the plain rule
    bool identity = false;

    Implementation(SampleLayout layout, ByteView iccProfile)
        : traits(kLayouts[static_cast<std::size_t>(layout)]) {
        transform = MakeTransform(OpenProfile(iccProfile), traits);
        if (layout == SampleLayout::Bgra8) {
            identity = !transform || ChangesNothing(transform);
        }
    }
};

ColourConverter::ColourConverter(SampleLayout layout, ByteView iccProfile)
    : implementation_(std::make_unique<Implementation>(layout, iccProfile)) {}
ColourConverter::~ColourConverter() = default;
ColourConverter::ColourConverter(ColourConverter&&) noexcept = default;
ColourConverter& ColourConverter::operator=(ColourConverter&&) noexcept = default;

bool ColourConverter::IsIdentity() const noexcept {
    return implementation_->identity;
}

void ColourConverter::ConvertRow(const void* samples, std::uint8_t* bgra, int pixels) const {
    const LayoutTraits& traits = implementation_->traits;
    if (implementation_->identity) {
        if (samples != bgra) {
            std::memcpy(bgra, samples, static_cast<std::size_t>(pixels) * PixelArray::kComponents);
        }
        return;
    }
    if (!implementation_->transform) {
        traits.plainRow(samples, bgra, pixels);
        return;
    }
    cmsDoTransform(implementation_->transform.get(), samples, bgra, static_cast<cmsUInt32Number>(pixels));
    if (!traits.hasAlpha) {
        for (int x = 0; x < pixels; ++x) {
            bgra[x * PixelArray::kComponents + 3] = 255;
        }
    }
}

void ConvertToSrgb(PixelArray& picture, ByteView iccProfile) {
    const ColourConverter converter(SampleLayout::Bgra8, iccProfile);
    if (!converter.IsIdentity()) {
        std::uint8_t* const rows = picture.WritableRows();
        // A converted pixel costs far more than the memory it stands in.
        constexpr std::size_t kWorkPerByte = 8;
        ForEachBand(picture.Height(), picture.RowBytes() * kWorkPerByte, [&](int first, int end) {
            for (int y = first; y < end; ++y) {
                std::uint8_t* const row = rows + y * picture.Stride();
                converter.ConvertRow(row, row, picture.Width());
            }
        });
    }
    Metadata details = picture.Details();
    details.icc = ProfileAfterConversion(iccProfile);
    picture.SetDetails(std::move(details));
}

ByteBuffer ProfileAfterConversion(ByteView iccProfile) {
    const Profile profile = OpenProfile(iccProfile);
    if (!profile) {
        return {};
    }
    const Transform transform =
        MakeTransform(profile, kLayouts[static_cast<std::size_t>(SampleLayout::Bgra8)]);
    if (transform && ChangesNothing(transform)) {
        return {iccProfile.begin(), iccProfile.end()};
    }
    return PlainSrgbProfile();
}

} // namespace pictorel::codecs
