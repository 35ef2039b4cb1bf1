// The drawing objects that records create and select: pens, brushes, fonts, palettes, regions.
#pragma once

#include <QBrush>
#include <QImage>
#include <QRectF>
#include <QString>

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <variant>
#include <vector>

namespace pictorel::metafile {

enum class BrushKind { None, Solid, Hatched, Pattern, Mono };

struct Brush {
    BrushKind kind = BrushKind::Solid;
    QRgb colour = 0xFFFFFFFF;
    int hatch = 0;    // horizontal, vertical, downwards, upwards, cross, diagonal cross
    QImage pattern{}; // Mono: black where the text's colour goes, white where the background's does
};

struct Pen {
    bool visible = true;
    QRgb colour = 0xFF000000;
    double width = 0; // logical units; 0 is one pixel
    Qt::PenStyle style = Qt::SolidLine;
    Qt::PenCapStyle cap = Qt::RoundCap;
    Qt::PenJoinStyle join = Qt::RoundJoin;
    std::vector<double>
        dashes{}; // lengths of the style that is the file's own: pixels, or units where geometric
    bool isGeometric = false;
    bool insideFrame = false;
    std::optional<Brush> brush{}; // what a geometric pen draws with where that is no plain colour
};

struct Font {
    double height =
        0;            // logical units: below 0 that of the letters, above 0 that of the line, 0 the usual one
    double width = 0; // mean width of the letters, 0 for the usual one
    double escapement = 0; // degrees of the base line, counter-clockwise
    int weight = 400;
    bool italic = false;
    bool underlined = false;
    bool struckOut = false;
    std::uint8_t charset = 0;
    QString face{};
};

struct Palette {
    std::vector<QRgb> colours;
};

struct RegionShape {
    std::vector<QRectF> rectangles; // logical units
};

using Object = std::variant<std::monostate, Pen, Brush, Font, Palette, RegionShape>;
using SharedObject = std::shared_ptr<const Object>;

// The stock object with this number (pens, brushes and fonts that need not be made), or none.
Object StockObject(std::uint32_t number);
inline constexpr std::uint32_t kStockFlag = 0x80000000;

class ObjectTable {
  public:
    // Into the lowest free slot, as Windows metafiles count.
    void Add(Object object);

    // Into the slot that the record names, as enhanced metafiles do; slots beyond what any file has are
    // ignored.
    void Put(std::uint32_t slot, Object object);

    void Remove(std::uint32_t slot);

    // Null where there is none. A selected object lives on when its slot is freed.
    SharedObject At(std::uint32_t slot) const;

  private:
    static constexpr std::uint32_t kMostSlots = 1U << 16;

    std::map<std::uint32_t, SharedObject> objects_;
    std::set<std::uint32_t> freed_; // slots below next_ that are empty
    std::uint32_t next_ = 0;
};

} // namespace pictorel::metafile
