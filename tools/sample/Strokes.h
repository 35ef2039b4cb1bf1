// Tapered strokes and discs, drawn in order with smooth edges: what plants are made of.
#pragma once

#include "Picture.h"

#include <variant>
#include <vector>

namespace pictorel::sample {

// A slightly bent, tapering line. Places and widths are in picture heights.
struct Stroke {
    float fromX, fromY;
    float toX, toY;
    float bend; // how far its middle is displaced: to the right for a tall stroke, down for a wide one
    float fromWidth, toWidth;
    Vec3 fromColor, toColor;
    float belly = 0.0F; // added to the width in the middle, as leaves and petals have it
};

struct Disc {
    float x, y;
    float radiusX, radiusY;
    Vec3 color;
};

class Strokes {
  public:
    void Add(const Stroke& stroke) { marks_.emplace_back(stroke); }
    void Add(const Disc& disc) { marks_.emplace_back(disc); }

    // Paints everything in the order it was added; all cores work, each on a band of columns of its own.
    void Draw(Picture& picture) const;

  private:
    std::vector<std::variant<Stroke, Disc>> marks_;
};

} // namespace pictorel::sample
