// Lines of text, see Text.h.
#include "picture/metafile/canvas/Text.h"

#include "picture/metafile/canvas/Regions.h"

#include <QFont>
#include <QFontMetricsF>
#include <QGuiApplication>

#include <algorithm>
#include <cmath>

namespace pictorel::metafile {
namespace {

constexpr int kEm = 256; // outlines are made at this size, and scaled

enum Alignment : unsigned { UpdatesPosition = 1, Right = 2, Centre = 6, Bottom = 8, BaseLine = 24 };
constexpr unsigned kAcrossBits = 6;
constexpr unsigned kDownBits = 24;

QFont PaintFont(const Font& font) {
    QFont painted(font.face);
    painted.setPixelSize(kEm);
    painted.setWeight(static_cast<QFont::Weight>(std::clamp(font.weight == 0 ? 400 : font.weight, 100, 900)));
    painted.setItalic(font.italic);
    painted.setHintingPreference(QFont::PreferNoHinting);
    painted.setStyleStrategy(QFont::ForceOutline);
    return painted;
}

// A line laid out in units of the outlines: from (0, 0), the base line's start, to the right.
struct Layout {
    QPainterPath outlines;
    double advance = 0;
    double ascent = 0;
    double descent = 0;
    double unitX = 1; // logical units that a unit takes, across and down
    double unitY = 1;
};

class LayoutMaker {
  public:
    LayoutMaker(const DeviceContext& context, const TextLine& line)
        : font_(*context.State().font), painted_(PaintFont(font_)), metrics_(painted_), line_(line) {
        layout_.ascent = metrics_.ascent();
        layout_.descent = metrics_.descent();
        const double lineHeight = layout_.ascent + layout_.descent;
        layout_.unitY = font_.height < 0 ? -font_.height / kEm : font_.height / lineHeight;
        if (font_.height == 0) { // 12 points, where nothing is said
            const QTransform device = context.State().mapping.ToDevice();
            const double length = std::hypot(device.m21(), device.m22());
            layout_.unitY = length > 0 ? 16 / length / kEm : 1;
        }
        layout_.unitX = font_.width == 0 ? layout_.unitY
                                         : std::abs(font_.width) / std::max(metrics_.averageCharWidth(), 1.0);
        extra_ = context.State().textExtra / std::max(layout_.unitX, 1e-6);
    }

    Layout Make() {
        line_.distances.empty() && extra_ == 0 ? AddWhole() : AddLetters();
        AddRules();
        layout_.outlines.setFillRule(Qt::WindingFill);
        return std::move(layout_);
    }

  private:
    void AddWhole() {
        layout_.outlines.addText(0, 0, painted_, line_.text);
        layout_.advance = metrics_.horizontalAdvance(line_.text);
    }

    void AddLetters() {
        double down = 0;
        const bool hasPairs = (line_.options & TextLine::kPairs) != 0;
        for (qsizetype i = 0; i < line_.text.size();) {
            const bool isPair = line_.text[i].isHighSurrogate() && i + 1 < line_.text.size();
            const QString letter = line_.text.mid(i, isPair ? 2 : 1);
            layout_.outlines.addText(layout_.advance, down, painted_, letter);
            double step = metrics_.horizontalAdvance(letter);
            for (qsizetype k = i; k < i + letter.size(); ++k) {
                const auto at = static_cast<std::size_t>(hasPairs ? 2 * k : k);
                if (at < line_.distances.size()) {
                    step = (k > i ? step : 0) + line_.distances[at] / layout_.unitX;
                }
                if (hasPairs && at + 1 < line_.distances.size()) {
                    down -= line_.distances[at + 1] / layout_.unitY;
                }
            }
            layout_.advance += step + extra_;
            i += letter.size();
        }
    }

    void AddRules() {
        const double thickness = metrics_.lineWidth();
        if (font_.underlined) {
            layout_.outlines.addRect(0, metrics_.underlinePos(), layout_.advance, thickness);
        }
        if (font_.struckOut) {
            layout_.outlines.addRect(0, -metrics_.strikeOutPos(), layout_.advance, thickness);
        }
    }

    const Font& font_;
    QFont painted_;
    QFontMetricsF metrics_;
    const TextLine& line_;
    double extra_ = 0;
    Layout layout_;
};

// Where the reference stands in the layout.
QPointF Anchor(const Layout& layout, unsigned alignment) {
    const unsigned across = alignment & kAcrossBits;
    const unsigned down = alignment & kDownBits;
    return {across == Centre  ? layout.advance / 2
            : across == Right ? layout.advance
                              : 0,
            down == BaseLine ? 0
            : down == Bottom ? layout.descent
                             : -layout.ascent};
}

// Letters stand upright on a page whose axes are turned round; only the world transform turns them.
QTransform ToCanvas(const DeviceContext& context, const Layout& layout, QPointF reference) {
    const Mapping& mapping = context.State().mapping;
    const QTransform page = mapping.PageToDevice();
    const QTransform& world = mapping.World();
    const QTransform& canvas = context.DeviceToCanvas();
    const QPointF anchor = Anchor(layout, context.State().textAlignment);
    const QPointF place = context.ToCanvas().map(reference);
    return QTransform::fromTranslate(-anchor.x(), -anchor.y()) *
           QTransform::fromScale(layout.unitX, layout.unitY) *
           QTransform().rotate(-context.State().font->escapement) *
           QTransform(world.m11(), world.m12(), world.m21(), world.m22(), 0, 0) *
           QTransform::fromScale(std::abs(page.m11()), std::abs(page.m22())) *
           QTransform::fromScale(canvas.m11(), canvas.m22()) *
           QTransform::fromTranslate(place.x(), place.y());
}

void DrawLetters(DeviceContext& context, const TextLine& line) {
    constexpr double kPerLine = 15000;
    constexpr double kPerLetter = 12000;
    context.Canvas().Spend(kPerLine + kPerLetter * static_cast<double>(line.text.size()));
    if (context.Canvas().IsExhausted()) {
        return;
    }
    DrawingState& state = context.State();
    const bool updatesPosition = (state.textAlignment & UpdatesPosition) != 0;
    const QPointF reference = updatesPosition ? state.position : line.reference;
    const Layout layout = LayoutMaker(context, line).Make();
    const QTransform transform = ToCanvas(context, layout, reference);
    if (state.opaqueBackground) {
        QPainterPath cell;
        cell.addRect(0, -layout.ascent, layout.advance, layout.ascent + layout.descent);
        context.FillWith(Bounded(transform.map(cell)), QColor::fromRgb(state.backgroundColour), kCopyPen);
    }
    context.DrawOutlines(Bounded(transform.map(layout.outlines)), QColor::fromRgb(state.textColour));
    if (updatesPosition) {
        state.position =
            reference +
            QTransform().rotate(-state.font->escapement).map(QPointF(layout.advance * layout.unitX, 0));
    }
}

} // namespace

void DrawText(DeviceContext& context, const TextLine& line) {
    DrawingState& state = context.State();
    if ((line.options & TextLine::kOpaque) != 0) {
        context.FillWith(context.OnCanvas(PathOf(line.rectangle)), QColor::fromRgb(state.backgroundColour),
                         kCopyPen);
    }
    if (qGuiApp == nullptr || line.text.isEmpty()) {
        return;
    }
    if ((line.options & TextLine::kClipped) == 0) {
        DrawLetters(context, line);
        return;
    }
    const auto before = state.clip;
    IntersectClip(context, line.rectangle);
    DrawLetters(context, line);
    context.SetClip(before);
}

} // namespace pictorel::metafile
