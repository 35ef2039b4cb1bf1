// Grows plants as ordered strokes, far ones first, each darker at its foot and warm where the sun touches it.
#include "Plants.h"

#include "Noise.h"
#include "Parallel.h"
#include "Strokes.h"

namespace pictorel::sample {

namespace {

constexpr Vec3 kShadow{0.010F, 0.016F, 0.010F};
constexpr Vec3 kNeedles{0.022F, 0.040F, 0.020F};
constexpr Vec3 kNeedlesLit{0.42F, 0.26F, 0.070F};
constexpr Vec3 kBark{0.030F, 0.020F, 0.014F};
constexpr Vec3 kGrassFoot{0.012F, 0.020F, 0.008F};
constexpr Vec3 kGrass{0.060F, 0.085F, 0.022F};
constexpr Vec3 kGrassLit{0.95F, 0.60F, 0.16F};
constexpr Vec3 kLupin{0.10F, 0.035F, 0.26F};
constexpr Vec3 kLupinLit{0.62F, 0.26F, 0.62F};

// The top edge of the bank at x.
float BankEdge(float x, float aspect) {
    const float side = std::abs(2.0F * x / aspect - 0.95F);
    return 0.925F - 0.075F * side * side + 0.022F * (Fractal(x * 3.0F, 0.5F, 4, 101) - 0.5F);
}

void PaintBank(Picture& picture) {
    const auto scale = static_cast<float>(picture.Height());
    std::vector<float> edges(static_cast<std::size_t>(picture.Width()));
    for (std::size_t column = 0; column < edges.size(); ++column) {
        edges[column] = BankEdge((static_cast<float>(column) + 0.5F) / scale, picture.Aspect());
    }
    const int first = static_cast<int>(0.8F * scale);
    ForEachIndex(picture.Height() - first, [&](int i) {
        Vec3* row = picture.Row(first + i);
        const float y = (static_cast<float>(first + i) + 0.5F) / scale;
        for (std::size_t column = 0; column < edges.size(); ++column) {
            const float depth = y - edges[column];
            if (depth > 0.0F) {
                const float soil =
                    Fractal((static_cast<float>(column) + 0.5F) / scale * 60.0F, depth * 90.0F, 3, 102);
                row[column] = Mix(kGrass * (0.35F + soil), kGrassFoot, SmoothStep(0.0F, 0.06F, depth));
            }
        }
    });
}

// One drooping bough with its twigs. `side` is -1 or 1; `sun` says how much of the evening light reaches it.
void GrowBough(Strokes& strokes, Randomness& random, float x, float y, float reach, float side, float sun) {
    const float droop = reach * random.Between(0.18F, 0.42F);
    const float tipX = x + side * reach;
    const float tipY = y + droop;
    const int twigs = 20 + static_cast<int>(reach * 900.0F);
    strokes.Add(Stroke{x, y, tipX, tipY, droop * 0.2F, reach * 0.035F, reach * 0.01F, kBark, kNeedles});
    for (int i = 0; i < twigs; ++i) {
        const float t = (static_cast<float>(i) + random.Next()) / static_cast<float>(twigs);
        const float size = reach * random.Between(0.10F, 0.30F) * (1.1F - 0.60F * t);
        const float footX = Mix(x, tipX, t);
        const float footY = Mix(y, tipY, t) + droop * 0.8F * t * (1.0F - t);
        const float spread = random.Between(-0.5F, 1.0F) * size * side;
        const float fall = random.Between(-0.30F, 1.0F) * size;
        const float lit = sun * (0.25F + 0.75F * t) * random.Next() * (fall < 0.4F * size ? 1.0F : 0.35F);
        const Vec3 tone = Mix(kShadow, kNeedles, random.Next());
        strokes.Add(Stroke{footX, footY, footX + spread, footY + fall, 0.0F, size * 0.10F, size * 0.03F, tone,
                           Mix(tone, kNeedlesLit, lit)});
    }
}

void GrowPine(Strokes& strokes, float x, float foot, float height, std::uint32_t seed) {
    Randomness random(seed);
    const float lean = random.Between(-0.012F, 0.012F) * height;
    strokes.Add(
        Stroke{x, foot, x + lean, foot - height, 0.0F, 0.024F * height, 0.002F * height, kBark, kNeedles});
    const int whorls = 54;
    for (int i = whorls - 1; i >= 0; --i) {
        const float t = (static_cast<float>(i) + random.Next() * 0.7F) / whorls; // 0 at the top
        const float y = foot - height * (1.0F - 0.90F * t);
        const float centre = x + lean * (1.0F - t);
        const float reach = height * (0.012F + 0.185F * std::pow(t, 0.85F));
        for (int bough = 0; bough < 6; ++bough) {
            const float side = (bough & 1) == 0 ? 1.0F : -1.0F;
            const float sun = side > 0.0F ? 1.0F : 0.12F;
            GrowBough(strokes, random, centre, y + random.Between(-0.006F, 0.006F) * height,
                      reach * random.Between(0.35F, 1.1F), side, sun);
        }
    }
}

void GrowGrass(Strokes& strokes, Randomness& random, float aspect, float row) {
    const float x = random.Between(-0.02F, aspect + 0.02F);
    const float near = row * row;
    const float foot = Mix(BankEdge(x, aspect), 1.06F, near) + 0.004F;
    const float tuft = Fractal(x * 7.0F, row * 5.0F, 3, 103);
    const float height = Mix(0.018F, 0.085F, row) * random.Between(0.4F, 1.15F) * (0.45F + 1.1F * tuft);
    const float lean = height * random.Between(-0.38F, 0.30F);
    const float width = Mix(0.0009F, 0.0036F, row) * random.Between(0.6F, 1.2F);
    // Light falls in between the pines in patches; each blade catches it at its tip.
    const float glade = SmoothStep(0.36F, 0.66F, Fractal(x * 2.2F, row * 2.5F, 2, 105));
    const float lit = random.Next() * random.Next() * (0.25F + 0.75F * glade);
    const Vec3 green = kGrass * random.Between(0.35F, 1.0F) * (0.6F + 0.6F * glade);
    strokes.Add(Stroke{x, foot, x + lean, foot - height, -0.14F * lean, width, width * 0.12F,
                       Mix(kGrassFoot, green, 0.35F), Mix(green, kGrassLit, lit)});
}

void GrowLupin(Strokes& strokes, Randomness& random, float aspect, float row, float x) {
    const float foot = Mix(BankEdge(x, aspect), 1.06F, row * row);
    const float height = Mix(0.040F, 0.135F, row) * random.Between(0.75F, 1.15F);
    const float lean = height * random.Between(-0.10F, 0.10F);
    const float size = Mix(0.0015F, 0.0050F, row);
    const float pale = random.Next() * 0.35F;
    strokes.Add(
        Stroke{x, foot, x + lean, foot - height, 0.0F, size * 0.55F, size * 0.25F, kGrassFoot, kGrass});
    const int florets = 110;
    for (int i = 0; i < florets; ++i) {
        const float t = static_cast<float>(i) / florets; // 0 at the lowest whorl, 1 at the tip
        const float spread = size * 1.9F * std::pow(1.0F - t, 0.6F) + size * 0.15F;
        const float across = random.Between(-1.0F, 1.0F);
        const float along = 0.42F + 0.60F * t;
        const float sun = Saturate(0.35F + 0.75F * across + 0.3F * random.Next());
        const float petal = size * random.Between(0.34F, 0.60F) * (1.05F - 0.55F * t);
        const Vec3 color =
            Mix(kLupin * Mix(0.55F, 1.0F, random.Next()), kLupinLit, Saturate(sun * 0.8F + pale));
        const float centreX = x + lean * along + across * spread;
        const float centreY = foot - height * along;
        strokes.Add(Disc{centreX, centreY, petal, petal * 0.85F, color * 0.55F});
        strokes.Add(
            Disc{centreX + 0.18F * petal, centreY - 0.22F * petal, petal * 0.66F, petal * 0.52F, color});
        strokes.Add(Disc{centreX + 0.30F * petal, centreY - 0.34F * petal, petal * 0.26F, petal * 0.20F,
                         Mix(color, kLupinLit * 1.5F, 0.5F * sun)});
    }
}

void GrowMeadow(Strokes& strokes, float aspect) {
    Randomness random(7);
    const int blades = static_cast<int>(9500.0F * aspect);
    const int flowers = static_cast<int>(190.0F * aspect);
    const int bladesPerFlower = blades / std::max(flowers, 1);
    for (int i = 0; i < blades; ++i) {
        const float row = static_cast<float>(i) / static_cast<float>(blades);
        GrowGrass(strokes, random, aspect, row);
        if (i % bladesPerFlower == 0 && row < 0.93F) {
            // Flowers stand in drifts: a place is tried, and kept only where the drift noise is high.
            const float x = random.Next() * aspect;
            if (Fractal(x * 3.0F, row * 2.0F, 2, 104) > 0.52F) {
                GrowLupin(strokes, random, aspect, row, x);
            }
        }
    }
}

} // namespace

void PlantShore(Picture& picture) {
    const float aspect = picture.Aspect();
    PaintBank(picture);
    Strokes strokes;
    GrowPine(strokes, 0.205F * aspect, BankEdge(0.205F * aspect, aspect) + 0.02F, 0.46F, 201);
    GrowPine(strokes, 0.045F * aspect, BankEdge(0.045F * aspect, aspect) + 0.04F, 0.86F, 202);
    GrowPine(strokes, 0.130F * aspect, BankEdge(0.130F * aspect, aspect) + 0.03F, 0.66F, 203);
    GrowPine(strokes, 0.962F * aspect, BankEdge(0.962F * aspect, aspect) + 0.02F, 0.50F, 204);
    GrowMeadow(strokes, aspect);
    strokes.Draw(picture);
}

} // namespace pictorel::sample
