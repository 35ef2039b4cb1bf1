// The picture that playing a metafile gives, see Drawing.h.
#include "picture/metafile/Drawing.h"

#include "picture/codecs/PixelSupport.h"
#include "picture/metafile/WrittenBitmap.h"
#include "picture/metafile/canvas/PaintedSurface.h"
#include "picture/metafile/canvas/Survey.h"

#include <algorithm>
#include <cmath>

namespace pictorel::metafile {
namespace {

// A drawing has any size, so one that would be larger than this is drawn smaller.
constexpr double kMostDrawnPixels = std::min<double>(1 << 24, kMaximumPixels);
constexpr double kLongestDrawnSide = 16000;

// Without physical size, units are pixels where that makes a picture of a sensible size.
constexpr double kShortestSensible = 32;
constexpr double kLongestSensible = 1024;

// Drawing ends with it, however large the file: about a second, since an editor that does not answer is of no
// use to anybody. Noting what would be drawn comes before that, and has less.
constexpr double kMostWork = 1.5e9;
constexpr double kMostSurveyWork = 2e8;

// What the picture shows of the device's plane, and in how many pixels.
struct Plan {
    QRectF sheet;
    double width = 0;
    double height = 0;
    double dotsPerInchX = 0;
    double dotsPerInchY = 0;
};

// Within a hundredth, and two units of what frames are given in: a hundredth of a millimetre.
bool IsNear(const QRectF& a, const QRectF& b, QPointF dotsPerMillimetre) {
    const double frameUnit = std::max(dotsPerMillimetre.x(), dotsPerMillimetre.y()) / 100;
    const double tolerance = 1 + std::max(b.width(), b.height()) / 100 + 2 * frameUnit;
    return std::abs(a.left() - b.left()) <= tolerance && std::abs(a.top() - b.top()) <= tolerance &&
           std::abs(a.right() - b.right()) <= tolerance && std::abs(a.bottom() - b.bottom()) <= tolerance;
}

Plan UsualPlan(const QRectF& sheet, const QSizeF& inches) {
    Plan plan{sheet};
    if (!inches.isEmpty()) {
        plan.width = inches.width() * kUsualResolution;
        plan.height = inches.height() * kUsualResolution;
    } else {
        const double longest = std::max(sheet.width(), sheet.height());
        const bool sensible = longest >= kShortestSensible && longest <= kLongestSensible;
        const double scale = sensible ? 1 : kLongestSensible / longest;
        plan.width = sheet.width() * scale;
        plan.height = sheet.height() * scale;
    }
    const double shrink = std::min({1.0, std::sqrt(kMostDrawnPixels / (plan.width * plan.height)),
                                    kLongestDrawnSide / std::max(plan.width, plan.height)});
    plan.width *= shrink;
    plan.height *= shrink;
    return plan;
}

// A file of bitmaps takes the size that shows the finest of them pixel by pixel; one of a drawing and bitmaps
// that make up much of it does so where that is the larger size.
void FollowBitmaps(Plan& plan, const Survey& survey, QPointF dotsPerMillimetre) {
    constexpr double kMuch = 0.25;
    constexpr double kMostPerBitmapPixel =
        4; // a small bitmap on a large sheet is no reason for a vast picture
    double finestX = 0;
    double finestY = 0;
    double area = 0;
    double pixels = 0;
    for (const Survey::PlacedCopy& copy : survey.Copies()) {
        if (copy.scaleX > 0 && copy.scaleY > 0) {
            finestX = std::max(finestX, 1 / copy.scaleX);
            finestY = std::max(finestY, 1 / copy.scaleY);
            area += copy.area.width() * copy.area.height();
            pixels += copy.pixels;
        }
    }
    if (finestX == 0 || area < kMuch * plan.sheet.width() * plan.sheet.height()) {
        return;
    }
    const bool isBitmap = !survey.DrawsMoreThanCopies();
    if (isBitmap && IsNear(survey.Extents(), plan.sheet, dotsPerMillimetre)) {
        plan.sheet = survey.Extents(); // the sheet's physical size is rounded
    }
    const double width = std::round(plan.sheet.width() * finestX);
    const double height = std::round(plan.sheet.height() * finestY);
    const double most = std::min<double>(kMostPerBitmapPixel * pixels, kMaximumPixels);
    if (width * height > most || width > kMaximumSide || height > kMaximumSide) {
        return;
    }
    if (isBitmap || (width > plan.width && height > plan.height)) {
        plan.width = width;
        plan.height = height;
    }
}

void SetResolution(Plan& plan, const QSizeF& inches, const Survey& survey) {
    if (survey.Copies().size() == 1 && !survey.DrawsMoreThanCopies() && survey.Copies()[0].dotsPerInchX > 0) {
        plan.dotsPerInchX = survey.Copies()[0].dotsPerInchX;
        plan.dotsPerInchY = survey.Copies()[0].dotsPerInchY;
    } else if (!inches.isEmpty()) {
        plan.dotsPerInchX = plan.width / inches.width();
        plan.dotsPerInchY = plan.height / inches.height();
    }
}

Plan PlanOf(const Drawing& drawing) {
    Survey survey(kMostSurveyWork);
    if (drawing.hasBitmaps || drawing.sheet.isEmpty()) {
        DeviceContext context(survey, {QTransform(), 1, drawing.dotsPerMillimetre}, drawing.mapping);
        drawing.play(context);
    }
    const QRectF sheet = drawing.sheet.isEmpty() ? survey.Extents() : drawing.sheet;
    if (sheet.isEmpty()) {
        codecs::Refuse("The metafile draws nothing.");
    }
    Plan plan = UsualPlan(sheet, drawing.sheet.isEmpty() ? QSizeF() : drawing.inches);
    FollowBitmaps(plan, survey, drawing.dotsPerMillimetre);
    plan.width = std::clamp(std::round(plan.width), 1.0, double{kMaximumSide});
    plan.height = std::clamp(std::round(plan.height), 1.0, double{kMaximumSide});
    SetResolution(plan, drawing.inches, survey);
    return plan;
}

// How many canvas pixels across make one of the picture.
int CanvasScale(const Plan& plan, bool isBitmap) {
    constexpr int kFinest = 4;
    constexpr double kMostCanvasPixels = std::min<double>(24e6, kMaximumPixels);
    int scale = isBitmap ? 1 : kFinest;
    while (scale > 1 && (plan.width * plan.height * scale * scale > kMostCanvasPixels ||
                         std::max(plan.width, plan.height) * scale > kLongestDrawnSide)) {
        --scale;
    }
    return scale;
}

} // namespace

PixelArray Played(const Drawing& drawing) {
    const Plan plan = PlanOf(drawing);
    const QSize size(static_cast<int>(plan.width), static_cast<int>(plan.height));
    CheckPictureSize(size.width(), size.height());
    const int scale = CanvasScale(plan, drawing.isOnlyBitmaps);
    const QTransform toCanvas = QTransform::fromTranslate(-plan.sheet.x(), -plan.sheet.y()) *
                                QTransform::fromScale(scale * plan.width / plan.sheet.width(),
                                                      scale * plan.height / plan.sheet.height());
    PaintedSurface surface(size, scale, kMostWork);
    DeviceContext context(surface, {toCanvas, double(scale), drawing.dotsPerMillimetre}, drawing.mapping);
    const double part = drawing.play(context);
    if (surface.IsExhausted() && !surface.IsPainted()) {
        codecs::Refuse("The metafile would take too long to draw.");
    }
    PixelArray picture = surface.Finish();
    picture.SetPartShown(part);
    Metadata details;
    details.dotsPerInchX = plan.dotsPerInchX;
    details.dotsPerInchY = plan.dotsPerInchY;
    picture.SetDetails(std::move(details));
    return picture;
}

} // namespace pictorel::metafile
