// Draws what a view shows of a picture, see ViewRenderer.h.
#include "view/ViewRenderer.h"

#include "picture/ForEachBand.h"
#include "picture/PixelMath.h"
#include "view/ViewFilters.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <vector>

namespace pictorel {
namespace {

// So near to 1 that the widest picture comes out at its own width, see ViewAxis::kNothing.
constexpr double kSameScale = 1e-12;

enum class Method { Copy, Nearest, Area, Cubic };

// All that the bands of one drawing share.
struct Plan {
    Method method = Method::Copy;
    const PixelArray* level = nullptr;
    bool premultiply = false; // the level's colour is not yet
    bool transparent = false;
    Span across; // device pixels that show the picture
    Span down;
    std::int64_t originAcross = 0;
    std::int64_t originDown = 0;
    std::vector<int> columns; // Nearest
    std::vector<int> rows;
    std::vector<Taps> columnTaps; // Area, Cubic
    std::vector<Taps> rowTaps;
    Span source; // columns of the level that are read; some before and beyond it are its repeated edge
    Pixel background = 0;

    int TapCount() const noexcept { return method == Method::Area ? kAreaTaps : kCubicTaps; }
};

Method ChooseMethod(const ViewScene& scene, double scale) {
    if (!scene.smooth || scale > kLargestSmoothZoom) {
        return Method::Nearest;
    }
    if (std::abs(scale - 1.0) < kSameScale) {
        return Method::Copy;
    }
    return scale < 1.0 ? Method::Area : Method::Cubic;
}

SourceScale ScaleOf(const ViewAxis& axis, int level) {
    return {std::ldexp(axis.zoom, level), axis.Origin(), std::ldexp(axis.picture, -level)};
}

void PlanTaps(Plan& plan, const SourceScale& across, const SourceScale& down) {
    const auto makeTaps = plan.method == Method::Area ? AreaTaps : CubicTaps;
    plan.columnTaps = makeTaps(across, plan.across);
    plan.rowTaps = makeTaps(down, plan.down);
    plan.source = {plan.columnTaps.front().first, plan.columnTaps.back().first + plan.TapCount()};
}

Plan MakePlan(PicturePyramid& pyramid, const ViewScene& scene, const Canvas& canvas) {
    Plan plan;
    plan.background = kOpaque | (scene.background & 0xff) << 16 | (scene.background & 0xff00) |
                      (scene.background >> 16 & 0xff);
    plan.across = scene.across.Drawn(canvas.width);
    plan.down = scene.down.Drawn(canvas.height);
    if (plan.across.IsEmpty() || plan.down.IsEmpty()) {
        plan.down = {};
        return plan;
    }
    const int level = scene.smooth ? PicturePyramid::LevelFor(scene.across.zoom) : 0;
    plan.level = &pyramid.Level(level);
    plan.transparent = plan.level->HasAlpha();
    plan.premultiply = plan.transparent && level == 0;
    const SourceScale across = ScaleOf(scene.across, level);
    const SourceScale down = ScaleOf(scene.down, level);
    plan.originAcross = across.origin;
    plan.originDown = down.origin;
    plan.method = ChooseMethod(scene, across.zoom);
    if (plan.method == Method::Nearest) {
        plan.columns = NearestPixels(across, plan.across);
        plan.rows = NearestPixels(down, plan.down);
    } else if (plan.method != Method::Copy) {
        PlanTaps(plan, across, down);
    }
    return plan;
}

// Rows of a level in premultiplied colour, the last few of them kept.
class SourceRows {
  public:
    SourceRows(const PixelArray& level, bool premultiply, Span columns)
        : level_(level), premultiply_(premultiply), columns_(columns) {}

    // The pixels of `columns`; row numbers before and beyond the level give its first and last row. Stays
    // good until kCubicTaps other rows have been asked for.
    const std::uint8_t* Row(int y) {
        y = std::clamp(y, 0, level_.Height() - 1);
        const std::uint8_t* const plain = level_.Row(y) + columns_.begin * std::ptrdiff_t{4};
        if (!premultiply_) {
            return plain;
        }
        Kept& kept = kept_[static_cast<std::size_t>(y % kCubicTaps)];
        if (kept.row != y) {
            kept.row = y;
            kept.pixels.resize(static_cast<std::size_t>(columns_.Length()) * 4);
            PremultiplyRow(plain, columns_.Length(), kept.pixels.data());
        }
        return kept.pixels.data();
    }

  private:
    struct Kept {
        int row = -1;
        std::vector<std::uint8_t> pixels;
    };

    const PixelArray& level_;
    bool premultiply_;
    Span columns_;
    std::array<Kept, kCubicTaps> kept_;
};

void FillPixels(std::uint8_t* pixels, int count, Pixel colour) {
    for (int x = 0; x < count; ++x) {
        StorePixel(pixels + std::ptrdiff_t{4} * x, colour);
    }
}

// Draws the rows of one band: DrawRow gives the part of a canvas row that shows the picture.
class BandPainter {
  public:
    explicit BandPainter(const Plan& plan)
        : plan_(plan),
          read_{std::max(plan.source.begin, 0), std::min(plan.source.end, plan.level->Width())},
          rows_(*plan.level, plan.premultiply, read_),
          mixed_(static_cast<std::size_t>(plan.source.Length() + kMixedPadding) * 4) {}

    void DrawRow(int y, std::uint8_t* pixels) {
        if (plan_.method == Method::Area || plan_.method == Method::Cubic) {
            DrawFiltered(y, pixels);
        } else {
            DrawPicked(y, pixels);
        }
        if (plan_.transparent) {
            LayOverChequer(y, pixels);
        }
    }

  private:
    void DrawPicked(int y, std::uint8_t* pixels) const;
    void DrawFiltered(int y, std::uint8_t* pixels);
    void LayOverChequer(int y, std::uint8_t* pixels) const;

    const Plan& plan_;
    Span read_; // the columns of plan_.source that there are
    SourceRows rows_;
    std::vector<std::int16_t> mixed_; // plan_.source
};

void BandPainter::DrawPicked(int y, std::uint8_t* pixels) const {
    const int count = plan_.across.Length();
    if (plan_.method == Method::Copy) {
        const auto row = static_cast<int>(y - plan_.originDown);
        const std::int64_t first = plan_.across.begin - plan_.originAcross;
        std::memcpy(pixels, plan_.level->Row(row) + 4 * first, static_cast<std::size_t>(count) * 4);
    } else {
        const std::uint8_t* const row =
            plan_.level->Row(plan_.rows[static_cast<std::size_t>(y - plan_.down.begin)]);
        for (int x = 0; x < count; ++x) {
            StorePixel(pixels + 4 * x, LoadPixel(row + 4 * plan_.columns[static_cast<std::size_t>(x)]));
        }
    }
    if (plan_.premultiply) {
        PremultiplyRow(pixels, count, pixels);
    }
}

void BandPainter::DrawFiltered(int y, std::uint8_t* pixels) {
    const Taps& taps = plan_.rowTaps[static_cast<std::size_t>(y - plan_.down.begin)];
    std::array<const std::uint8_t*, 4> rows{};
    for (int t = 0; t < plan_.TapCount(); ++t) {
        rows[static_cast<std::size_t>(t)] = rows_.Row(taps.first + t);
    }
    std::int16_t* const first = mixed_.data() + std::ptrdiff_t{4} * (read_.begin - plan_.source.begin);
    MixRows(plan_.TapCount(), rows, taps.weights, 4 * read_.Length(), first);
    for (int x = plan_.source.begin; x < read_.begin; ++x) {
        std::copy_n(first, 4, mixed_.data() + std::ptrdiff_t{4} * (x - plan_.source.begin));
    }
    std::int16_t* const end = first + std::ptrdiff_t{4} * read_.Length();
    for (int x = read_.end; x < plan_.source.end; ++x) {
        std::copy_n(end - 4, 4, end + std::ptrdiff_t{4} * (x - read_.end));
    }
    MixColumns(mixed_.data(), plan_.source.begin, plan_.columnTaps, pixels);
}

// The cells hang on the picture, so that dragging moves them with it.
void BandPainter::LayOverChequer(int y, std::uint8_t* pixels) const {
    const std::int64_t cellDown = (y - plan_.originDown) / kChequerCell;
    int x = plan_.across.begin;
    while (x < plan_.across.end) {
        const std::int64_t cell = (x - plan_.originAcross) / kChequerCell;
        const Pixel grey = (cell + cellDown) % 2 == 0 ? kLightChequer : kDarkChequer;
        const int end = static_cast<int>(
            std::min<std::int64_t>(plan_.originAcross + (cell + 1) * kChequerCell, plan_.across.end));
        for (; x < end; ++x, pixels += 4) {
            StorePixel(pixels, OverGrey(LoadPixel(pixels), grey));
        }
    }
}

} // namespace

void DrawScene(PicturePyramid& pyramid, const ViewScene& scene, const Canvas& canvas) {
    const Plan plan = MakePlan(pyramid, scene, canvas);
    const auto bytes = static_cast<std::size_t>(canvas.width) * 4;
    ForEachBand(plan.down.begin, bytes, [&](int first, int end) {
        for (int y = first; y < end; ++y) {
            FillPixels(canvas.rows + y * canvas.stride, canvas.width, plan.background);
        }
    });
    ForEachBand(canvas.height - plan.down.end, bytes, [&](int first, int end) {
        for (int y = first; y < end; ++y) {
            FillPixels(canvas.rows + (plan.down.end + y) * canvas.stride, canvas.width, plan.background);
        }
    });
    ForEachBand(plan.down.Length(), 4 * bytes, [&](int first, int end) {
        BandPainter painter(plan);
        for (int y = plan.down.begin + first; y < plan.down.begin + end; ++y) {
            std::uint8_t* const row = canvas.rows + y * canvas.stride;
            FillPixels(row, plan.across.begin, plan.background);
            painter.DrawRow(y, row + std::ptrdiff_t{4} * plan.across.begin);
            FillPixels(row + std::ptrdiff_t{4} * plan.across.end, canvas.width - plan.across.end,
                       plan.background);
        }
    });
}

} // namespace pictorel
