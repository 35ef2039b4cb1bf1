// The engine as one more column of a harness that times picture operations side by side: it adds each
// operation to the harness's list, with the amounts that the others in the list take.
#include "imaging/engine/Filters.h"
#include "imaging/engine/Geometry.h"
#include "imaging/engine/HistogramOperations.h"
#include "imaging/engine/PointOperations.h"
#include "imaging/engine/Resample.h"
#include "imaging/engine/Stylize.h"
#include "peers.h"

#include <cstring>
#include <memory>

namespace {

using namespace pictorel;
using namespace pictorel::engine;

constexpr std::uint32_t kBlack = 0;

struct Operation {
    const char* name;
    PixelArray (*run)(const PixelArray&);
};

// Named as in the harness, which compares what has the same name.
constexpr Operation kOperations[] = {
    {"brightness", [](const PixelArray& p) { return Brightness(p, 30); }},
    {"contrast", [](const PixelArray& p) { return Contrast(p, 1.3); }},
    {"gamma", [](const PixelArray& p) { return Gamma(p, 2.2); }},
    {"posterize", [](const PixelArray& p) { return Posterize(p, 6); }},
    {"invert", [](const PixelArray& p) { return Invert(p); }},
    {"channel_add", [](const PixelArray& p) { return AddToChannels(p, 20, -10, 5); }},
    {"colorize_multiply", [](const PixelArray& p) { return Colorize(p, 255, 190, 140); }},
    {"threshold_luma", [](const PixelArray& p) { return Threshold(p, 128); }},
    {"saturation", [](const PixelArray& p) { return Saturation(p, 0.4); }},
    {"hue", [](const PixelArray& p) { return Hue(p, 40); }},
    {"lightness", [](const PixelArray& p) { return Lightness(p, 0.2); }},
    {"auto_contrast", [](const PixelArray& p) { return AutoContrast(p); }},
    {"auto_levels", [](const PixelArray& p) { return AutoLevels(p); }},
    {"equalize_luma", [](const PixelArray& p) { return Equalize(p, 1); }},
    {"gauss_1", [](const PixelArray& p) { return GaussianBlur(p, 1); }},
    {"gauss_3", [](const PixelArray& p) { return GaussianBlur(p, 3); }},
    {"gauss_10", [](const PixelArray& p) { return GaussianBlur(p, 10); }},
    {"unsharp_1", [](const PixelArray& p) { return UnsharpMask(p, 1); }},
    {"motion_h_41", [](const PixelArray& p) { return MotionBlur(p, 0, 41); }},
    {"motion_v_41", [](const PixelArray& p) { return MotionBlur(p, 90, 41); }},
    {"motion_30deg_41", [](const PixelArray& p) { return MotionBlur(p, 30, 41); }},
    {"zoom_blur_10pct", [](const PixelArray& p) { return ZoomBlur(p, 10); }},
    {"zoom_blur_50pct", [](const PixelArray& p) { return ZoomBlur(p, 50); }},
    {"min_3", [](const PixelArray& p) { return MinimumFilter(p, 1); }},
    {"max_3", [](const PixelArray& p) { return MaximumFilter(p, 1); }},
    {"min_11", [](const PixelArray& p) { return MinimumFilter(p, 5); }},
    {"max_11", [](const PixelArray& p) { return MaximumFilter(p, 5); }},
    {"mosaic_8", [](const PixelArray& p) { return Mosaic(p, 8); }},
    {"mosaic_50", [](const PixelArray& p) { return Mosaic(p, 50); }},
    {"emboss_3x3", [](const PixelArray& p) { return Emboss(p, 135, 3, 1); }},
    {"halftone_1", [](const PixelArray& p) { return Halftone(p, 1, 1); }},
    {"noise_uniform_20", [](const PixelArray& p) { return Noise(p, 8); }},
    {"diffuse_2", [](const PixelArray& p) { return Diffuse(p, 2, 100); }},
    {"flip_v", [](const PixelArray& p) { return MirrorTopToBottom(p); }},
    {"flip_h", [](const PixelArray& p) { return MirrorLeftToRight(p); }},
    {"rot90_cw", [](const PixelArray& p) { return QuarterTurnRight(p); }},
    {"rot90_ccw", [](const PixelArray& p) { return QuarterTurnLeft(p); }},
    {"rot180", [](const PixelArray& p) { return Rotate(p, 180, kBlack); }},
    {"rotate30_bicubic", [](const PixelArray& p) { return Rotate(p, 30, kBlack); }},
    {"skew_bicubic", [](const PixelArray& p) { return Skew(p, false, 16.7, kBlack); }},
    {"skew_v_bicubic", [](const PixelArray& p) { return Skew(p, true, 16.7, kBlack); }},
    {"perspective_bicubic", [](const PixelArray& p) { return Perspective(p, true, 30, kBlack); }},
    {"perspective_80_bicubic", [](const PixelArray& p) { return Perspective(p, true, 80, kBlack); }},
    {"twirl_bicubic", [](const PixelArray& p) { return Twirl(p, 180, kBlack); }},
    {"twirl_360_bicubic", [](const PixelArray& p) { return Twirl(p, 360, kBlack); }},
    {"reproduce_4", [](const PixelArray& p) { return Reproduce(p, 4); }},
    {"reproduce_7", [](const PixelArray& p) { return Reproduce(p, 7); }},
    {"resize_3000_lanczos", [](const PixelArray& p) { return Resize(p, 3000, 2000); }},
    {"resize_1920_lanczos", [](const PixelArray& p) { return Resize(p, 1920, 1280); }},
    {"resize_250_lanczos", [](const PixelArray& p) { return Resize(p, 250, 167); }},
};

// What is slow only on a reduced copy, or most often asked for there.
constexpr Operation kPreviewOperations[] = {
    {"preview_reproduce_4", [](const PixelArray& p) { return Reproduce(p, 4); }},
    {"preview_reproduce_30", [](const PixelArray& p) { return Reproduce(p, 30); }},
    {"preview_zoom_blur_10", [](const PixelArray& p) { return ZoomBlur(p, 10); }},
    {"preview_zoom_blur_50", [](const PixelArray& p) { return ZoomBlur(p, 50); }},
    {"preview_zoom_blur_100", [](const PixelArray& p) { return ZoomBlur(p, 100); }},
    {"preview_max_1", [](const PixelArray& p) { return MaximumFilter(p, 1); }},
    {"preview_max_2", [](const PixelArray& p) { return MaximumFilter(p, 2); }},
    {"preview_max_5", [](const PixelArray& p) { return MaximumFilter(p, 5); }},
    {"preview_noise_8", [](const PixelArray& p) { return Noise(p, 8); }},
    {"preview_diffuse_50", [](const PixelArray& p) { return Diffuse(p, 2, 50); }},
    {"preview_rotate_30", [](const PixelArray& p) { return Rotate(p, 30, kBlack); }},
    {"preview_skew_30", [](const PixelArray& p) { return Skew(p, true, 30, kBlack); }},
    {"preview_skew_80", [](const PixelArray& p) { return Skew(p, true, 80, kBlack); }},
    {"preview_tilt_30", [](const PixelArray& p) { return Perspective(p, true, 30, kBlack); }},
    {"preview_tilt_85", [](const PixelArray& p) { return Perspective(p, true, 85, kBlack); }},
    {"preview_twirl_180", [](const PixelArray& p) { return Twirl(p, 180, kBlack); }},
    {"preview_twirl_360", [](const PixelArray& p) { return Twirl(p, 360, kBlack); }},
    {"preview_mosaic_13", [](const PixelArray& p) { return Mosaic(p, 13); }},
    {"preview_halftone_1", [](const PixelArray& p) { return Halftone(p, 1, 1); }},
    {"preview_halftone_5", [](const PixelArray& p) { return Halftone(p, 5, 1); }},
    {"preview_emboss_4", [](const PixelArray& p) { return Emboss(p, 135, 4, 1); }},
    {"preview_gauss_10", [](const PixelArray& p) { return GaussianBlur(p, 10); }},
    {"preview_sharpen", [](const PixelArray& p) { return UnsharpMask(p, 1); }},
    {"preview_brightness", [](const PixelArray& p) { return Brightness(p, 30); }},
    {"preview_hue", [](const PixelArray& p) { return Hue(p, 40); }},
};

PixelArray CopyOf(const peers::View& view) {
    PixelArray picture(view.w, view.h);
    std::uint8_t* const rows = picture.WritableRows();
    for (int y = 0; y < view.h; ++y) {
        std::memcpy(rows + y * picture.Stride(), view.data + static_cast<std::size_t>(y) * view.stride,
                    picture.RowBytes());
    }
    return picture;
}

PixelArray ReducedCopy(const PixelArray& picture, int width) {
    PixelArray copy = Resize(picture, width, picture.Height() * width / picture.Width());
    copy.SetReduction(static_cast<double>(width) / picture.Width());
    return copy;
}

void AddOperation(peers::Bench& bench, const std::string& name, const Operation& operation,
                  const PixelArray& source, const std::shared_ptr<PixelArray>& result) {
    const auto run = [=] {
        *result = {}; // gives its memory back for the next result
        *result = operation.run(source);
    };
    const auto view = [=] {
        // The harness compares rows that lie one behind the other as well as ours: it is given the distance.
        return peers::View{const_cast<std::uint8_t*>(result->Row(0)), result->Width(), result->Height(),
                           static_cast<std::size_t>(result->Stride()), PixelArray::kComponents};
    };
    bench.add(name, "pictorel", peers::Fit::Same, run, view);
}

// Enlarging takes the harness's small picture, four times up.
constexpr Operation kEnlarging = {"resize_up_6000_lanczos",
                                  [](const PixelArray& p) { return Resize(p, 6000, 4000); }};

// What takes another road when there is alpha.
constexpr Operation kAlphaOperations[] = {
    {"alpha_resize_3000", [](const PixelArray& p) { return Resize(p, 3000, 2000); }},
    {"alpha_resize_250", [](const PixelArray& p) { return Resize(p, 250, 167); }},
    {"alpha_rotate30", [](const PixelArray& p) { return Rotate(p, 30, kBlack); }},
    {"alpha_zoom_blur_10pct", [](const PixelArray& p) { return ZoomBlur(p, 10); }},
};

// Opaque at its left side and clear at its right one.
PixelArray WithAlpha(const PixelArray& picture) {
    PixelArray result = picture;
    std::uint8_t* const rows = result.WritableRows();
    for (int y = 0; y < result.Height(); ++y) {
        for (int x = 0; x < result.Width(); ++x) {
            rows[y * result.Stride() + std::ptrdiff_t{x} * PixelArray::kComponents + 3] =
                static_cast<std::uint8_t>(255 - 255LL * x / result.Width());
        }
    }
    result.SetHasAlpha(true);
    return result;
}

void AddEngine(peers::Bench& bench) {
    const PixelArray picture = CopyOf(bench.ctx.src);
    const auto result = std::make_shared<PixelArray>();
    for (const Operation& operation : kOperations) {
        AddOperation(bench, operation.name, operation, picture, result);
    }
    AddOperation(bench, kEnlarging.name, kEnlarging, CopyOf(bench.ctx.small), result);
    const PixelArray transparent = WithAlpha(picture);
    for (const Operation& operation : kAlphaOperations) {
        AddOperation(bench, operation.name, operation, transparent, result);
    }
    for (const int width : {250, 1000, 2400}) {
        const PixelArray copy = ReducedCopy(picture, width);
        for (const Operation& operation : kPreviewOperations) {
            AddOperation(bench, std::to_string(width) + "_" + operation.name, operation, copy, result);
        }
    }
}

// The harness asks for this while static objects are made. NOLINTNEXTLINE(cert-err58-cpp)
const bool kIsRegistered = (peers::register_peer(AddEngine), true);

} // namespace
