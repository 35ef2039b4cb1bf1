// Rasterises strokes as graphs over their longer axis, one pixel-wide slice at a time.
#include "Strokes.h"

#include "Parallel.h"

namespace pictorel::sample {

namespace {

struct Band {
    int begin;
    int end;
};

constexpr int kBandWidth = 96;

// How much of pixel `index` (covering [index, index + 1)) lies within [low, high).
float Overlap(int index, float low, float high) {
    const auto left = static_cast<float>(index);
    return Saturate(std::min(high, left + 1.0F) - std::max(low, left));
}

void Blend(Vec3& pixel, Vec3 color, float coverage) {
    pixel = Mix(pixel, color, coverage);
}

// Paints pixels [low, high) of one slice; `at(i)` gives the pixel.
template <typename At>
void PaintSlice(float low, float high, Band limits, Vec3 color, float opacity, const At& at) {
    const int first = std::max(static_cast<int>(std::floor(low)), limits.begin);
    const int last = std::min(static_cast<int>(std::ceil(high)), limits.end);
    for (int i = first; i < last; ++i) {
        Blend(at(i), color, opacity * Overlap(i, low, high));
    }
}

void Paint(Picture& picture, Band columns, const Stroke& stroke) {
    const auto scale = static_cast<float>(picture.Height());
    const bool tall = std::abs(stroke.toY - stroke.fromY) >= std::abs(stroke.toX - stroke.fromX);
    const float alongFrom = (tall ? stroke.fromY : stroke.fromX) * scale;
    const float alongTo = (tall ? stroke.toY : stroke.toX) * scale;
    const float acrossFrom = (tall ? stroke.fromX : stroke.fromY) * scale;
    const float acrossTo = (tall ? stroke.toX : stroke.toY) * scale;
    const float low = std::min(alongFrom, alongTo);
    const float high = std::max(alongFrom, alongTo);
    const float length = std::max(high - low, 1e-3F);
    const Band rows{0, picture.Height()};
    const Band along = tall ? rows : columns;
    const Band across = tall ? columns : rows;

    const int first = std::max(static_cast<int>(std::floor(low)), along.begin);
    const int last = std::min(static_cast<int>(std::ceil(high)), along.end);
    for (int i = first; i < last; ++i) {
        const float t = Saturate((static_cast<float>(i) + 0.5F - alongFrom) /
                                 (alongTo - alongFrom + (alongTo < alongFrom ? -1e-3F : 1e-3F)));
        const float bend = stroke.bend * scale;
        const float centre = Mix(acrossFrom, acrossTo, t) + bend * 4.0F * t * (1.0F - t);
        const float slope = ((acrossTo - acrossFrom) + bend * 4.0F * (1.0F - 2.0F * t)) / length;
        const float half = 0.5F *
                           (Mix(stroke.fromWidth, stroke.toWidth, t) + stroke.belly * 4.0F * t * (1.0F - t)) *
                           scale * std::sqrt(1.0F + slope * slope);
        // Thinner than a pixel: keep the pixel's width and fade instead, so that hair-thin tips do not break
        // up.
        const float drawn = std::max(half, 0.5F);
        const float opacity = Overlap(i, low, high) * (half / drawn);
        const Vec3 color = Mix(stroke.fromColor, stroke.toColor, t);
        PaintSlice(centre - drawn, centre + drawn, across, color, opacity,
                   [&](int j) -> Vec3& { return tall ? picture.Row(i)[j] : picture.Row(j)[i]; });
    }
}

void Paint(Picture& picture, Band columns, const Disc& disc) {
    const auto scale = static_cast<float>(picture.Height());
    const float centreY = disc.y * scale;
    const float radiusX = disc.radiusX * scale;
    const float radiusY = std::max(disc.radiusY * scale, 0.5F);
    const int first = std::max(static_cast<int>(std::floor(centreY - radiusY)), 0);
    const int last = std::min(static_cast<int>(std::ceil(centreY + radiusY)), picture.Height());
    for (int y = first; y < last; ++y) {
        const float across = (static_cast<float>(y) + 0.5F - centreY) / radiusY;
        const float half = radiusX * std::sqrt(std::max(0.0F, 1.0F - across * across));
        const float drawn = std::max(half, 0.5F);
        PaintSlice(disc.x * scale - drawn, disc.x * scale + drawn, columns, disc.color,
                   Overlap(y, centreY - radiusY, centreY + radiusY) * (half / drawn),
                   [&](int x) -> Vec3& { return picture.Row(y)[x]; });
    }
}

// The columns a mark can touch, generously.
Band Extent(const Stroke& stroke, float scale) {
    const float margin =
        std::abs(stroke.bend) + 2.0F * (std::max(stroke.fromWidth, stroke.toWidth) + stroke.belly);
    return {static_cast<int>((std::min(stroke.fromX, stroke.toX) - margin) * scale) - 2,
            static_cast<int>((std::max(stroke.fromX, stroke.toX) + margin) * scale) + 2};
}

Band Extent(const Disc& disc, float scale) {
    return {static_cast<int>((disc.x - disc.radiusX) * scale) - 2,
            static_cast<int>((disc.x + disc.radiusX) * scale) + 2};
}

} // namespace

void Strokes::Draw(Picture& picture) const {
    const auto scale = static_cast<float>(picture.Height());
    const int bands = (picture.Width() + kBandWidth - 1) / kBandWidth;
    ForEachIndex(bands, [&](int band) {
        const Band columns{band * kBandWidth, std::min((band + 1) * kBandWidth, picture.Width())};
        for (const auto& mark : marks_) {
            std::visit(
                [&](const auto& shape) {
                    const Band extent = Extent(shape, scale);
                    if (extent.begin < columns.end && extent.end > columns.begin) {
                        Paint(picture, columns, shape);
                    }
                },
                mark);
        }
    });
}

} // namespace pictorel::sample
