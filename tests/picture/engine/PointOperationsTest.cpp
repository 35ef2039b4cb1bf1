// The operations on single pixels: known values, exact formulas in double precision, neutral values,
// carriage.
#include "picture/ImagingError.h"
#include "picture/engine/Geometry.h"
#include "picture/engine/PointOperations.h"
#include "support/Pictures.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>

namespace pictorel::engine {
namespace {

using test::Alpha;
using test::At;
using test::Constant;
using test::Draw;
using test::Pixel;
using test::Random;
using test::SamePixels;
using test::Size;

using Operation = std::function<PixelArray(const PixelArray&)>;
using Exact = std::array<double, 3>;                // blue, green, red before rounding
using Formula = std::function<Exact(const Exact&)>; // on 0..255

constexpr std::array<Size, 5> kSizes{{{1, 1}, {2, 2}, {7, 5}, {33, 17}, {257, 3}}};

struct Known {
    const char* name;
    Operation operation;
    Pixel before; // blue, green, red, alpha
    Pixel after;
};

TEST(PointOperations, KnownValues) {
    const std::vector<Known> table = {
        {"brightness up", [](auto& p) { return Brightness(p, 20); }, {0, 100, 250, 9}, {20, 120, 255, 9}},
        {"brightness down", [](auto& p) { return Brightness(p, -20); }, {0, 100, 20, 9}, {0, 80, 0, 9}},
        {"brightness most", [](auto& p) { return Brightness(p, 255); }, {0, 1, 255, 0}, {255, 255, 255, 0}},
        {"brightness beyond", [](auto& p) { return Brightness(p, -99999); }, {0, 1, 255, 7}, {0, 0, 0, 7}},
        {"contrast 0.5", [](auto& p) { return Contrast(p, 0.5); }, {0, 127, 255, 9}, {64, 127, 191, 9}},
        {"contrast 1.9", [](auto& p) { return Contrast(p, 1.9); }, {60, 128, 195, 9}, {0, 128, 255, 9}},
        {"gamma 2", [](auto& p) { return Gamma(p, 2); }, {0, 64, 255, 9}, {0, 128, 255, 9}},
        {"gamma 0.5", [](auto& p) { return Gamma(p, 0.5); }, {128, 64, 254, 9}, {64, 16, 253, 9}},
        {"gamma 0", [](auto& p) { return Gamma(p, 0); }, {0, 254, 255, 9}, {0, 0, 255, 9}},
        {"gamma nearly 0", [](auto& p) { return Gamma(p, 1e-9); }, {0, 254, 255, 9}, {0, 0, 255, 9}},
        {"channels", [](auto& p) { return AddToChannels(p, 10, -20, 30); }, {1, 2, 3, 9}, {31, 0, 13, 9}},
        {"colorize", [](auto& p) { return Colorize(p, 255, 128, 0); }, {200, 200, 200, 9}, {0, 100, 200, 9}},
        {"invert", Invert, {0, 100, 255, 9}, {255, 155, 0, 9}},
        {"posterize 2", [](auto& p) { return Posterize(p, 2); }, {127, 128, 255, 9}, {0, 255, 255, 9}},
        {"posterize 4", [](auto& p) { return Posterize(p, 4); }, {42, 43, 128, 9}, {0, 85, 170, 9}},
        {"threshold at", [](auto& p) { return Threshold(p, 54); }, {0, 0, 255, 9}, {255, 255, 255, 9}},
        {"threshold above", [](auto& p) { return Threshold(p, 55); }, {0, 0, 255, 9}, {0, 0, 0, 9}},
        {"threshold of white",
         [](auto& p) { return Threshold(p, 255); },
         {255, 255, 255, 9},
         {255, 255, 255, 9}},
        {"threshold of black", [](auto& p) { return Threshold(p, 0); }, {0, 0, 0, 9}, {255, 255, 255, 9}},
        {"saturation gone", [](auto& p) { return Saturation(p, -1); }, {255, 0, 0, 9}, {18, 18, 18, 9}},
        {"saturation twice", [](auto& p) { return Saturation(p, 1); }, {100, 120, 140, 9}, {77, 117, 157, 9}},
        {"hue, red to green", [](auto& p) { return Hue(p, 120); }, {0, 0, 255, 9}, {0, 255, 0, 9}},
        {"hue, red to blue", [](auto& p) { return Hue(p, -120); }, {0, 0, 255, 9}, {255, 0, 0, 9}},
        {"hue, red to orange", [](auto& p) { return Hue(p, 30); }, {55, 55, 255, 9}, {55, 155, 255, 9}},
        {"hue of grey", [](auto& p) { return Hue(p, 77); }, {90, 90, 90, 9}, {90, 90, 90, 9}},
        {"lightness halfway to white",
         [](auto& p) { return Lightness(p, 0.5); },
         {0, 0, 255, 9},
         {128, 128, 255, 9}},
        {"lightness halfway to black",
         [](auto& p) { return Lightness(p, -0.5); },
         {0, 0, 255, 9},
         {0, 0, 128, 9}},
        {"lightness to white", [](auto& p) { return Lightness(p, 1); }, {1, 70, 3, 9}, {255, 255, 255, 9}},
        {"lightness to black", [](auto& p) { return Lightness(p, -1); }, {1, 70, 255, 9}, {0, 0, 0, 9}},
    };
    for (const Known& row : table) {
        // A row of many equal pixels, so that wide and narrow code paths both run.
        const PixelArray result = row.operation(Constant({37, 2}, row.before));
        EXPECT_EQ(At(result, 0, 0), row.after) << row.name;
        EXPECT_TRUE(SamePixels(result, Constant({37, 2}, row.after))) << row.name;
    }
}

Exact EachOf(const Exact& c, const std::function<double(double)>& formula) {
    return {formula(c[0]), formula(c[1]), formula(c[2])};
}

double LumaOf(const Exact& c) {
    return 0.2126 * c[2] + 0.7152 * c[1] + 0.0722 * c[0];
}

// The textbook way over hue, saturation and lightness and back; change(h in degrees, s, l) alters them.
Exact ThroughHsl(const Exact& c, const std::function<void(double&, double&, double&)>& change) {
    const double b = c[0] / 255;
    const double g = c[1] / 255;
    const double r = c[2] / 255;
    const double most = std::max({r, g, b});
    const double least = std::min({r, g, b});
    const double chroma = most - least;
    double l = (most + least) / 2;
    double s = chroma == 0 ? 0 : chroma / (1 - std::abs(2 * l - 1));
    double h = 0;
    if (chroma > 0) {
        h = most == r ? 60 * (g - b) / chroma
                      : (most == g ? 60 * (b - r) / chroma + 120 : 60 * (r - g) / chroma + 240);
    }
    change(h, s, l);
    const double q = l < 0.5 ? l * (1 + s) : l + s - l * s;
    const double p = 2 * l - q;
    const auto component = [&](double angle) {
        double t = std::fmod(angle / 360, 1.0);
        t = t < 0 ? t + 1 : t;
        const double value = t < 1.0 / 6   ? p + (q - p) * 6 * t
                             : t < 1.0 / 2 ? q
                             : t < 2.0 / 3 ? p + (q - p) * (2.0 / 3 - t) * 6
                                           : p;
        return 255 * value;
    };
    return {component(h - 120), component(h), component(h + 120)};
}

Exact Turned(const Exact& c, double degrees) {
    return ThroughHsl(c, [=](double& h, double&, double&) { h += degrees; });
}

Exact Lightened(const Exact& c, double amount) {
    return ThroughHsl(c,
                      [=](double&, double&, double& l) { l += amount > 0 ? (1 - l) * amount : l * amount; });
}

struct AgainstFormula {
    std::string name;
    Operation operation;
    Formula formula;
};

std::vector<AgainstFormula> FormulaTable() {
    std::vector<AgainstFormula> table;
    for (const int v : {-255, -100, 1, 255}) {
        table.push_back({"brightness " + std::to_string(v), [=](auto& p) { return Brightness(p, v); },
                         [=](auto& c) { return EachOf(c, [=](double x) { return x + v; }); }});
        table.push_back({"channels " + std::to_string(v), [=](auto& p) { return AddToChannels(p, v, 0, -v); },
                         [=](auto& c) {
                             return Exact{c[0] - v, c[1], c[2] + v};
                         }});
    }
    for (const double k : {0.10, 0.73, 1.31, 1.90}) {
        table.push_back(
            {"contrast " + std::to_string(k), [=](auto& p) { return Contrast(p, k); },
             [=](auto& c) { return EachOf(c, [=](double x) { return 127.5 + (x - 127.5) * k; }); }});
    }
    for (const double g : {0.01, 0.4, 2.0}) {
        table.push_back(
            {"gamma " + std::to_string(g), [=](auto& p) { return Gamma(p, g); },
             [=](auto& c) { return EachOf(c, [=](double x) { return 255 * std::pow(x / 255, 1 / g); }); }});
    }
    for (const int t : {0, 77, 254}) {
        table.push_back({"colorize " + std::to_string(t),
                         [=](auto& p) { return Colorize(p, static_cast<std::uint8_t>(t), 255, 128); },
                         [=](auto& c) {
                             return Exact{c[0] * 128 / 255, c[1], c[2] * t / 255};
                         }});
    }
    for (const double s : {-1.0, -0.37, 0.5, 1.0}) {
        table.push_back({"saturation " + std::to_string(s), [=](auto& p) { return Saturation(p, s); },
                         [=](auto& c) {
                             const double y = LumaOf(c);
                             return EachOf(c, [=](double x) { return y + (x - y) * (1 + s); });
                         }});
        table.push_back({"lightness " + std::to_string(s), [=](auto& p) { return Lightness(p, s); },
                         [=](auto& c) { return Lightened(c, s); }});
    }
    for (const double d : {-359.0, -120.0, -60.5, 1.0, 59.0, 180.0, 240.0, 300.25, 400.0}) {
        table.push_back({"hue " + std::to_string(d), [=](auto& p) { return Hue(p, d); },
                         [=](auto& c) { return Turned(c, d); }});
    }
    return table;
}

TEST(PointOperations, RoundTheExactFormulaToNearest) {
    for (const AgainstFormula& row : FormulaTable()) {
        for (const Size size : kSizes) {
            const PixelArray source = Random(size, Alpha::Random);
            const PixelArray result = row.operation(source);
            for (int y = 0; y < size.height; ++y) {
                for (int x = 0; x < size.width; ++x) {
                    const Pixel before = At(source, x, y);
                    const Pixel after = At(result, x, y);
                    const Exact exact =
                        row.formula({double(before[0]), double(before[1]), double(before[2])});
                    for (std::size_t k = 0; k < 3; ++k) {
                        ASSERT_NEAR(after[k], std::clamp(exact[k], 0.0, 255.0), 0.501)
                            << row.name << " at " << x << ", " << y << " component " << k;
                    }
                    ASSERT_EQ(after[3], before[3]) << row.name;
                }
            }
        }
    }
}

TEST(PointOperations, PosterizeGivesEvenlySpacedLevels) {
    const PixelArray ramp = Draw({256, 1}, [](int x, int) {
        const auto c = static_cast<std::uint8_t>(x);
        return Pixel{c, c, c, 255};
    });
    for (int levels = 2; levels <= 32; ++levels) {
        const PixelArray result = Posterize(ramp, levels);
        std::vector<int> values;
        for (int x = 0; x < 256; ++x) {
            const int value = At(result, x, 0)[1];
            EXPECT_NEAR(value, x, 255.0 / (levels - 1) / 2 + 0.5);
            if (values.empty() || value != values.back()) {
                values.push_back(value);
            }
        }
        ASSERT_EQ(values.size(), static_cast<std::size_t>(levels));
        for (int i = 0; i < levels; ++i) {
            EXPECT_NEAR(values[static_cast<std::size_t>(i)], 255.0 * i / (levels - 1), 0.5);
        }
    }
}

TEST(PointOperations, NeutralValuesGiveTheSourceItself) {
    const PixelArray source = Random({33, 17}, Alpha::Random);
    const std::vector<Operation> neutral = {
        [](auto& p) { return Brightness(p, 0); },
        [](auto& p) { return Contrast(p, 1); },
        [](auto& p) { return Gamma(p, 1); },
        [](auto& p) { return AddToChannels(p, 0, 0, 0); },
        [](auto& p) { return Colorize(p, 255, 255, 255); },
        [](auto& p) { return Saturation(p, 0); },
        [](auto& p) { return Hue(p, 0); },
        [](auto& p) { return Hue(p, 360); },
        [](auto& p) { return Hue(p, -720); },
        [](auto& p) { return Lightness(p, 0); },
        [](auto& p) { return Posterize(p, 256); },
    };
    for (std::size_t i = 0; i < neutral.size(); ++i) {
        EXPECT_TRUE(neutral[i](source).SharesPixelsWith(source)) << "row " << i;
    }
}

TEST(PointOperations, CarryWhatIsNotPixels) {
    PixelArray source = Random({7, 5}, Alpha::Random);
    source.SetReduction(0.25);
    source.SetDetails({{1, 2}, {3}, {4}, 300, 300});
    const PixelArray before = Crop(source, {0, 0, 7, 5});
    for (const PixelArray& result : {Invert(source), Contrast(source, 0.5), Hue(source, 10)}) {
        EXPECT_EQ(result.Reduction(), 0.25);
        EXPECT_TRUE(result.HasAlpha());
        EXPECT_EQ(result.Details(), source.Details());
    }
    EXPECT_TRUE(SamePixels(source, before)) << "an operation wrote into its source";
}

TEST(PointOperations, BandsJoinWithoutTrace) {
    const PixelArray large = Random({1501, 901}, Alpha::Random); // several bands
    const Size size{61, 901};
    const PixelArray crop = Crop(large, {700, 0, size.width, size.height});
    const std::vector<Operation> operations = {
        Invert,
        [](auto& p) { return Brightness(p, 17); },
        [](auto& p) { return Gamma(p, 1.7); },
        [](auto& p) { return Threshold(p, 120); },
        [](auto& p) { return Saturation(p, 0.6); },
        [](auto& p) { return Hue(p, 33); },
        [](auto& p) { return Lightness(p, -0.2); },
    };
    for (std::size_t i = 0; i < operations.size(); ++i) {
        EXPECT_TRUE(
            SamePixels(Crop(operations[i](large), {700, 0, size.width, size.height}), operations[i](crop)))
            << "row " << i;
    }
}

TEST(PointOperations, RefuseWhatTheFormulasCannotTake) {
    const PixelArray source = Random({7, 5});
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_THROW(Contrast(source, nan), ImagingError);
    EXPECT_THROW(Gamma(source, -0.5), ImagingError);
    EXPECT_THROW(Hue(source, std::numeric_limits<double>::infinity()), ImagingError);
    EXPECT_THROW(Posterize(source, 1), ImagingError);
    EXPECT_THROW(Saturation(source, -1.5), ImagingError);
    EXPECT_THROW(Lightness(source, 1.5), ImagingError);
    EXPECT_THROW(Invert(PixelArray()), ImagingError);
}

} // namespace
} // namespace pictorel::engine
