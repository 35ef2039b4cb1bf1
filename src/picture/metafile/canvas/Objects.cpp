// The drawing objects, see Objects.h.
#include "picture/metafile/canvas/Objects.h"

namespace pictorel::metafile {
namespace {

struct StockBrush {
    std::uint32_t number;
    BrushKind kind;
    QRgb colour;
};
constexpr StockBrush kStockBrushes[] = {
    {0, BrushKind::Solid, 0xFFFFFFFF},  {1, BrushKind::Solid, 0xFFC0C0C0}, {2, BrushKind::Solid, 0xFF808080},
    {3, BrushKind::Solid, 0xFF404040},  {4, BrushKind::Solid, 0xFF000000}, {5, BrushKind::None, 0},
    {18, BrushKind::Solid, 0xFFFFFFFF},
};

struct StockPen {
    std::uint32_t number;
    bool visible;
    QRgb colour;
};
constexpr StockPen kStockPens[] = {
    {6, true, 0xFFFFFFFF},
    {7, true, 0xFF000000},
    {8, false, 0},
    {19, true, 0xFF000000},
};

constexpr std::uint32_t kFirstStockFont = 10;
constexpr std::uint32_t kStockPalette = 15;
constexpr std::uint32_t kLastStockFont = 17;

} // namespace

Object StockObject(std::uint32_t number) {
    for (const StockBrush& row : kStockBrushes) {
        if (row.number == number) {
            return Brush{.kind = row.kind, .colour = row.colour};
        }
    }
    for (const StockPen& row : kStockPens) {
        if (row.number == number) {
            return Pen{.visible = row.visible, .colour = row.colour};
        }
    }
    if (number >= kFirstStockFont && number <= kLastStockFont && number != kStockPalette) {
        return Font{};
    }
    return {};
}

void ObjectTable::Add(Object object) {
    if (freed_.empty()) {
        Put(next_, std::move(object));
    } else {
        Put(*freed_.begin(), std::move(object));
    }
}

void ObjectTable::Put(std::uint32_t slot, Object object) {
    if (slot >= kMostSlots) {
        return;
    }
    objects_[slot] = std::make_shared<const Object>(std::move(object));
    freed_.erase(slot);
    if (slot == next_) {
        ++next_;
    }
}

void ObjectTable::Remove(std::uint32_t slot) {
    if (objects_.erase(slot) > 0 && slot < next_) {
        freed_.insert(slot);
    }
}

SharedObject ObjectTable::At(std::uint32_t slot) const {
    if ((slot & kStockFlag) != 0) {
        return std::make_shared<const Object>(StockObject(slot & ~kStockFlag));
    }
    const auto found = objects_.find(slot);
    return found == objects_.end() ? nullptr : found->second;
}

} // namespace pictorel::metafile
