// The drawing state of a metafile being played: its pens, brushes and clip as the painter's, see
// DeviceContext.h.
#include "picture/metafile/canvas/DeviceContext.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace pictorel::metafile {
namespace {

// The six hatches: 8 rows of 8 bits, the leftmost pixel in the highest.
constexpr std::array<std::array<std::uint8_t, 8>, 6> kHatches{{
    {0x00, 0x00, 0x00, 0xFF, 0x00, 0x00, 0x00, 0x00},
    {0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08},
    {0x80, 0x40, 0x20, 0x10, 0x08, 0x04, 0x02, 0x01},
    {0x01, 0x02, 0x04, 0x08, 0x10, 0x20, 0x40, 0x80},
    {0x08, 0x08, 0x08, 0xFF, 0x08, 0x08, 0x08, 0x08},
    {0x81, 0x42, 0x24, 0x18, 0x18, 0x24, 0x42, 0x81},
}};

QImage HatchImage(int hatch, QRgb colour, QRgb background) {
    constexpr int kSide = 8;
    const auto& rows = kHatches[static_cast<std::size_t>(std::clamp(hatch, 0, int{kHatches.size()} - 1))];
    QImage image(kSide, kSide, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < kSide; ++y) {
        for (int x = 0; x < kSide; ++x) {
            const bool isLine = (rows[static_cast<std::size_t>(y)] >> (kSide - 1 - x) & 1) != 0;
            image.setPixel(x, y, isLine ? colour : background);
        }
    }
    return image;
}

QImage ColouredMono(QImage image, QRgb textColour, QRgb backgroundColour) {
    for (int y = 0; y < image.height(); ++y) {
        auto* const row = reinterpret_cast<QRgb*>(image.scanLine(y));
        std::transform(row, row + image.width(), row,
                       [&](QRgb pixel) { return qGreen(pixel) < 128 ? textColour : backgroundColour; });
    }
    return image;
}

// Dashes of thin pens in pixels, of thick ones in widths of the pen.
std::vector<double> DashesOf(const Pen& pen, bool isThin) {
    struct Row {
        Qt::PenStyle style;
        std::vector<double> thin;
        std::vector<double> thick;
    };
    static const std::array<Row, 4> kRows{{
        {Qt::DashLine, {18, 6}, {3, 1}},
        {Qt::DotLine, {3, 3}, {1, 1}},
        {Qt::DashDotLine, {9, 6, 3, 6}, {3, 1, 1, 1}},
        {Qt::DashDotDotLine, {9, 3, 3, 3, 3, 3}, {3, 1, 1, 1, 1, 1}},
    }};
    for (const Row& row : kRows) {
        if (row.style == pen.style) {
            return isThin ? row.thin : row.thick;
        }
    }
    return {};
}

} // namespace

QPen DeviceContext::PaintPen(const Pen& pen) const {
    const double width = pen.width * UnitLength();
    const bool isThin = width <= placement_.pixel * 1.5;
    QPen painted(QColor::fromRgb(pen.colour), isThin ? placement_.pixel : std::min(width, kFarthest));
    if (pen.brush) {
        painted.setBrush(PaintBrush(*pen.brush));
    }
    painted.setCapStyle(isThin && !pen.isGeometric ? Qt::SquareCap : pen.cap);
    painted.setJoinStyle(isThin ? Qt::MiterJoin : pen.join);
    painted.setMiterLimit(std::clamp(state_.miterLimit, 1.0, 100.0));
    std::vector<double> dashes = DashesOf(pen, isThin);
    if (pen.style == Qt::CustomDashLine) { // from pixels or logical units to widths
        const double unit = pen.isGeometric ? UnitLength() : placement_.pixel;
        for (const double dash : pen.dashes) {
            dashes.push_back(std::max(dash * unit / painted.widthF(), 0.05));
        }
    }
    if (!dashes.empty()) {
        if (dashes.size() % 2 != 0) {
            dashes.insert(dashes.end(), dashes.begin(), dashes.end());
        }
        painted.setDashPattern(QList<qreal>(dashes.begin(), dashes.end()));
        painted.setCapStyle(Qt::FlatCap);
        painted.setDashOffset(isThin ? 0.5
                                     : 0); // lines start in the middle of a pixel, dashes with a whole one
    }
    return painted;
}

QBrush DeviceContext::PaintBrush(const Brush& brush) const {
    const auto textured = [this](const QImage& image) {
        const QPointF origin = placement_.toCanvas.map(state_.brushOrigin);
        QBrush texture(image);
        texture.setTransform(
            QTransform::fromTranslate(origin.x(), origin.y()).scale(placement_.pixel, placement_.pixel));
        return texture;
    };
    switch (brush.kind) {
        case BrushKind::None:
            return Qt::NoBrush;
        case BrushKind::Solid:
            return QColor::fromRgb(brush.colour);
        case BrushKind::Hatched:
            return textured(
                HatchImage(brush.hatch, brush.colour, state_.opaqueBackground ? state_.backgroundColour : 0));
        case BrushKind::Pattern:
            return textured(brush.pattern);
        case BrushKind::Mono:
            return textured(ColouredMono(brush.pattern, state_.textColour, state_.backgroundColour));
    }
    return Qt::NoBrush;
}

void DeviceContext::FillWith(const QPainterPath& onCanvas, const QBrush& brush, int operation) {
    if (brush.style() != Qt::NoBrush) {
        ApplyClip();
        surface_.Fill(onCanvas, brush, operation);
    }
}

void DeviceContext::Fill(const QPainterPath& onCanvas, const Brush& brush) {
    // A hatch that lets the paper through can only be laid over.
    const bool isSheer = brush.kind == BrushKind::Hatched && !state_.opaqueBackground;
    FillWith(onCanvas, PaintBrush(brush), isSheer ? kCopyPen : state_.operation);
}

void DeviceContext::DrawOutlines(const QPainterPath& onCanvas, const QColor& colour) {
    if (pathIsOpen_) {
        path_.addPath(onCanvas);
    } else {
        FillWith(onCanvas, colour, kCopyPen);
    }
}

// Where the background is opaque, the gaps of a thin dashed line have its colour.
void DeviceContext::StrokeBackground(const QPainterPath& onCanvas, const Pen& pen, const QPen& painted) {
    if (state_.opaqueBackground && !pen.isGeometric && painted.style() != Qt::SolidLine) {
        QPen behind = painted;
        behind.setStyle(Qt::SolidLine);
        behind.setColor(QColor::fromRgb(state_.backgroundColour));
        surface_.Stroke(onCanvas, behind, state_.operation);
    }
}

void DeviceContext::Stroke(const QPainterPath& onCanvas, const Pen& pen) {
    if (pen.visible) {
        const QPen painted = PaintPen(pen);
        ApplyClip();
        StrokeBackground(onCanvas, pen, painted);
        surface_.Stroke(onCanvas, painted, state_.operation);
    }
}

void DeviceContext::Put(const Stamp& stamp) {
    ApplyClip();
    surface_.Put(stamp);
}

void DeviceContext::PutImage(QPoint at, const QImage& image) {
    ApplyClip();
    surface_.PutImage(at, image);
}

// The pixel of the picture in which the middle of the unit lies.
void DeviceContext::SetPixel(QPointF point, QRgb colour) {
    const double side = placement_.pixel;
    const QPointF middle = OnCanvas(point) + HalfUnit();
    QPainterPath square;
    square.addRect(std::floor(middle.x() / side) * side, std::floor(middle.y() / side) * side, side, side);
    FillWith(square, QColor::fromRgb(colour), kCopyPen);
}

void DeviceContext::ApplyClip() {
    if (!std::exchange(clipChanged_, false)) {
        return;
    }
    if (state_.clip && state_.metaClip) {
        surface_.SetClip(*state_.clip & *state_.metaClip);
    } else {
        surface_.SetClip(state_.clip ? state_.clip : state_.metaClip);
    }
}

} // namespace pictorel::metafile
