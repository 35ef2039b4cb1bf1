// The scene "text": a printed test card of letters, patches, wedges and hairlines, with hard edges
// throughout.
#include "Parallel.h"
#include "Scenes.h"

#include <array>
#include <numbers>
#include <string_view>

namespace pictorel::sample {

namespace {

constexpr Vec3 kPaper{0.90F, 0.87F, 0.80F};
constexpr Vec3 kInk{0.012F, 0.016F, 0.030F};
constexpr Vec3 kAmber{1.0F, 0.44F, 0.06F};
constexpr Vec3 kTeal{0.02F, 0.30F, 0.38F};

struct Point {
    float x, y;
};

struct Box {
    float left, top, right, bottom;
};

// Paints shapes given by their signed distance (negative inside, in picture heights) on a sheet of 4 by 3
// units of a quarter picture height, centred on the picture and scaled to fit it.
class Press {
  public:
    explicit Press(Picture& picture)
        : picture_(picture),
          scale_(std::min(static_cast<float>(picture.Width()) / kSheetWidth,
                          static_cast<float>(picture.Height()) / kSheetHeight)),
          left_(0.5F * (static_cast<float>(picture.Width()) - kSheetWidth * scale_)),
          top_(0.5F * (static_cast<float>(picture.Height()) - kSheetHeight * scale_)) {}

    static constexpr float kSheetWidth = 4.0F;
    static constexpr float kSheetHeight = 3.0F;

    template <typename Distance>
    void Fill(Box box, Vec3 color, const Distance& distance) {
        const int firstRow = std::max(0, static_cast<int>(box.top * scale_ + top_) - 1);
        const int lastRow = std::min(picture_.Height(), static_cast<int>(box.bottom * scale_ + top_) + 2);
        const int first = std::max(0, static_cast<int>(box.left * scale_ + left_) - 1);
        const int last = std::min(picture_.Width(), static_cast<int>(box.right * scale_ + left_) + 2);
        ForEachIndex(std::max(0, lastRow - firstRow), [&](int i) {
            Vec3* row = picture_.Row(firstRow + i);
            const float y = (static_cast<float>(firstRow + i) + 0.5F - top_) / scale_;
            for (int column = first; column < last; ++column) {
                const Point at{(static_cast<float>(column) + 0.5F - left_) / scale_, y};
                row[column] = Mix(row[column], color, Saturate(0.5F - distance(at) * scale_));
            }
        });
    }

    void Rectangle(Box box, Vec3 color) {
        Fill(box, color, [box](Point p) {
            return std::max({box.left - p.x, p.x - box.right, box.top - p.y, p.y - box.bottom});
        });
    }

    void Line(Point from, Point to, float width, Vec3 color) {
        const float half = 0.5F * width;
        const Box box{std::min(from.x, to.x) - half, std::min(from.y, to.y) - half,
                      std::max(from.x, to.x) + half, std::max(from.y, to.y) + half};
        const Point way{to.x - from.x, to.y - from.y};
        const float length = std::max(way.x * way.x + way.y * way.y, 1e-12F);
        Fill(box, color, [=](Point p) {
            const Point off{p.x - from.x, p.y - from.y};
            const float t = Saturate((off.x * way.x + off.y * way.y) / length);
            return std::hypot(off.x - way.x * t, off.y - way.y * t) - half;
        });
    }

    void Ring(Point centre, float radius, float width, Vec3 color) {
        const float outer = radius + width;
        Fill({centre.x - outer, centre.y - outer, centre.x + outer, centre.y + outer}, color, [=](Point p) {
            return std::abs(std::hypot(p.x - centre.x, p.y - centre.y) - radius) - 0.5F * width;
        });
    }

  private:
    Picture& picture_;
    float scale_;
    float left_;
    float top_;
};

// Letters as polylines on a grid four units wide and six high: two digits a point (x, then y from the top), a
// blank between lines.
struct Letter {
    char name;
    std::string_view lines;
};

constexpr Letter kLetters[] = {
    {'A', "0602204246 0444"},
    {'C', "4130100105163645"},
    {'D', "00063645413000"},
    {'E', "40000646 0333"},
    {'G', "41301001051636454323"},
    {'H', "0006 4046 0343"},
    {'I', "0006"},
    {'L', "000646"},
    {'N', "06004640"},
    {'O', "103041453616050110"},
    {'P', "06003041423303"},
    {'R', "06003041423303 2346"},
    {'S', "413010010213334445361605"},
    {'T', "0040 2026"},
    {'U', "000516364540"},
};

constexpr float kLetterAdvance = 5.6F;

std::string_view LinesOf(char name) {
    for (const Letter& letter : kLetters) {
        if (letter.name == name) {
            return letter.lines;
        }
    }
    return {};
}

// Sets a line of capitals; `unit` is the grid's step, so letters are six units tall.
void SetLine(Press& press, std::string_view text, Point at, float unit, float weight, Vec3 color) {
    for (const char name : text) {
        Point previous{};
        bool isDrawing = false;
        const std::string_view lines = LinesOf(name);
        for (std::size_t i = 0; i + 1 < lines.size();) {
            if (lines[i] == ' ') {
                isDrawing = false;
                ++i;
                continue;
            }
            const Point next{at.x + static_cast<float>(lines[i] - '0') * unit,
                             at.y + static_cast<float>(lines[i + 1] - '0') * unit};
            if (isDrawing) {
                press.Line(previous, next, weight, color);
            }
            previous = next;
            isDrawing = true;
            i += 2;
        }
        at.x += (name == 'I' ? kLetterAdvance - 4.0F : kLetterAdvance) * unit;
    }
}

void PrintPatches(Press& press, Point at) {
    constexpr std::array<Vec3, 12> kPatches = {{{0.45F, 0.03F, 0.03F},
                                                {0.80F, 0.20F, 0.02F},
                                                {0.85F, 0.57F, 0.02F},
                                                {0.28F, 0.50F, 0.05F},
                                                {0.05F, 0.29F, 0.09F},
                                                {0.02F, 0.33F, 0.40F},
                                                {0.04F, 0.11F, 0.45F},
                                                {0.14F, 0.06F, 0.33F},
                                                {0.50F, 0.08F, 0.28F},
                                                {0.78F, 0.46F, 0.34F},
                                                {0.36F, 0.20F, 0.10F},
                                                {0.20F, 0.30F, 0.48F}}};
    constexpr float kSide = 0.26F;
    for (std::size_t i = 0; i < kPatches.size(); ++i) {
        const float x = at.x + static_cast<float>(i % 6) * (kSide + 0.03F);
        const std::size_t line = i / 6;
        const float y = at.y + static_cast<float>(line) * (kSide + 0.03F);
        press.Rectangle({x, y, x + kSide, y + kSide}, kPatches[i]);
    }
}

// Eleven greys, even steps of the encoded value.
void PrintGreys(Press& press, Point at) {
    for (int i = 0; i <= 10; ++i) {
        const float light = std::pow(0.1F * static_cast<float>(i), 2.2F);
        const float x = at.x + 0.155F * static_cast<float>(i);
        // Each step covers the rest of the ramp, so that no paper shines through where two meet.
        press.Rectangle({x, at.y, at.x + 11.0F * 0.155F, at.y + 0.18F}, {light, light, light});
    }
}

// A star of wedges that meet in the centre: it shows at which fineness detail turns grey.
void PrintStar(Press& press, Point centre, float radius) {
    constexpr float kWedges = 36.0F;
    press.Fill({centre.x - radius, centre.y - radius, centre.x + radius, centre.y + radius}, kInk,
               [=](Point p) {
                   const float x = p.x - centre.x;
                   const float y = p.y - centre.y;
                   const float away = std::hypot(x, y);
                   const float turn = std::atan2(y, x) * kWedges;
                   const float wedge = -std::asin(std::sin(turn)) * away / kWedges;
                   return std::max(wedge, away - radius);
               });
    press.Ring(centre, radius + 0.03F, 0.012F, kInk);
}

void PrintLines(Press& press, Point at) {
    // Bars that get finer step by step, standing and lying.
    float x = at.x;
    float width = 0.020F;
    while (width > 0.0012F) {
        for (int i = 0; i < 3; ++i) {
            press.Rectangle({x, at.y, x + width, at.y + 0.24F}, kInk);
            x += 2.0F * width;
        }
        x += 0.012F;
        width *= 0.78F;
    }
    // A fan of hairlines from one point.
    for (int i = 0; i <= 12; ++i) {
        const float angle = static_cast<float>(i) * std::numbers::pi_v<float> / 24.0F;
        const Point from{at.x + 0.02F, at.y + 0.94F};
        press.Line(from, {from.x + 0.45F * std::cos(angle), from.y - 0.45F * std::sin(angle)}, 0.0030F, kInk);
    }
    for (int i = 1; i <= 9; ++i) {
        press.Ring({at.x + 0.50F, at.y + 0.44F}, 0.018F * static_cast<float>(i), 0.0030F,
                   i % 3 == 0 ? kAmber : kInk);
    }
}

void PrintCheckers(Press& press, Box box, int columns, int rows) {
    const float width = (box.right - box.left) / static_cast<float>(columns);
    const float height = (box.bottom - box.top) / static_cast<float>(rows);
    for (int i = 0; i < columns * rows; ++i) {
        const int column = i % columns;
        const int row = i / columns;
        if ((column + row) % 2 == 0) {
            const float x = box.left + width * static_cast<float>(column);
            const float y = box.top + height * static_cast<float>(row);
            press.Rectangle({x, y, x + width, y + height}, kInk);
        }
    }
}

} // namespace

Picture PaintPoster(int width, int height) {
    Picture picture(width, height);
    ForEachIndex(height, [&](int y) { std::fill_n(picture.Row(y), width, kTeal); });
    Press press(picture);
    press.Rectangle({0.10F, 0.10F, 3.90F, 2.90F}, kPaper);
    press.Rectangle({0.10F, 0.10F, 3.90F, 0.98F}, kInk);
    press.Rectangle({0.10F, 0.98F, 3.90F, 1.01F}, kAmber);
    SetLine(press, "CLEAR", {0.32F, 0.24F}, 0.0640F, 0.056F, kPaper);
    SetLine(press, "LINES", {2.25F, 0.24F}, 0.0640F, 0.056F, kAmber);
    SetLine(press, "SHARP EDGES AND SOLID COLOURS", {0.305F, 0.755F}, 0.0216F, 0.016F, kPaper);

    PrintPatches(press, {0.30F, 1.20F});
    PrintGreys(press, {0.30F, 1.83F});
    SetLine(press, "THE LIGHT LEADS THE EDGE", {0.30F, 2.13F}, 0.0132F, 0.0110F, kInk);
    SetLine(press, "THE LIGHT LEADS THE EDGE", {0.30F, 2.25F}, 0.0092F, 0.0070F, kInk);
    SetLine(press, "THE LIGHT LEADS THE EDGE", {0.30F, 2.34F}, 0.0064F, 0.0045F, kInk);
    PrintCheckers(press, {0.30F, 2.46F, 1.16F, 2.74F}, 24, 8);
    PrintCheckers(press, {1.22F, 2.46F, 2.005F, 2.74F}, 56, 20);

    PrintStar(press, {2.63F, 1.66F}, 0.43F);
    PrintLines(press, {3.15F, 1.20F});
    press.Line({2.18F, 2.46F}, {3.70F, 2.26F}, 0.006F, kInk);
    press.Line({2.18F, 2.56F}, {3.70F, 2.36F}, 0.020F, kTeal);
    press.Line({2.18F, 2.68F}, {3.70F, 2.48F}, 0.060F, kAmber);
    return picture;
}

} // namespace pictorel::sample
