// The engine as one more column of a harness that times picture operations side by side: it adds each
// operation to the harness's list, with the amounts that the others in the list take.
#include "EngineOperations.h"
#include "peers.h"

#include <cstring>
#include <memory>

namespace {

using namespace pictorel;
using namespace pictorel::bench;

// What is slow only on a reduced copy, or most often asked for there.
constexpr EngineOperation kPreviewOperations[] = {
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
    {"preview_halftone_1", [](const PixelArray& p) { return Halftone(p, 4, 1); }},
    {"preview_halftone_5", [](const PixelArray& p) { return Halftone(p, 20, 1); }},
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

void AddOperation(peers::Bench& bench, const std::string& name, const EngineOperation& operation,
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
constexpr EngineOperation kEnlarging = {"resize_up_6000_lanczos",
                                        [](const PixelArray& p) { return Resize(p, 6000, 4000); }};

// What takes another road when there is alpha.
constexpr EngineOperation kAlphaOperations[] = {
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
    for (const EngineOperation& operation : kEngineOperations) {
        AddOperation(bench, operation.name, operation, picture, result);
    }
    AddOperation(bench, kEnlarging.name, kEnlarging, CopyOf(bench.ctx.small), result);
    const PixelArray transparent = WithAlpha(picture);
    for (const EngineOperation& operation : kAlphaOperations) {
        AddOperation(bench, operation.name, operation, transparent, result);
    }
    for (const int width : {250, 1000, 2400}) {
        const PixelArray copy = ReducedCopy(picture, width);
        for (const EngineOperation& operation : kPreviewOperations) {
            AddOperation(bench, std::to_string(width) + "_" + operation.name, operation, copy, result);
        }
    }
}

// The harness asks for this while static objects are made. NOLINTNEXTLINE(cert-err58-cpp)
const bool kIsRegistered = (peers::register_peer(AddEngine), true);

} // namespace
