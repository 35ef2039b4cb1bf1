// Daisies and leaves as ordered strokes over the vase's mouth, lit by the window on the left.
#include "Bouquet.h"

#include "Noise.h"
#include "Strokes.h"

#include <numbers>

namespace pictorel::sample {

namespace {

constexpr Vec3 kLeafDark{0.010F, 0.024F, 0.010F};
constexpr Vec3 kLeaf{0.050F, 0.105F, 0.030F};
constexpr Vec3 kLeafLit{0.26F, 0.34F, 0.095F};
constexpr Vec3 kDiscDark{0.20F, 0.070F, 0.008F};
constexpr Vec3 kDiscLit{1.15F, 0.62F, 0.060F};

// The colours of a petal from its foot to its tip, in full light.
struct Petals {
    Vec3 foot, tip;
};
constexpr Petals kWhite{{0.62F, 0.62F, 0.50F}, {1.55F, 1.45F, 1.28F}};
constexpr Petals kCoral{{0.50F, 0.06F, 0.045F}, {1.30F, 0.36F, 0.22F}};
constexpr Petals kGold{{0.60F, 0.22F, 0.015F}, {1.45F, 0.78F, 0.10F}};

struct Bloom {
    float across, up; // from the mouth, in units of the bouquet's size
    float radius;
    float tilt; // height of the bloom's ellipse over its width
    const Petals& petals;
};

// Back to front.
const Bloom kBlooms[] = {
    {-0.52F, 0.92F, 0.150F, 0.80F, kCoral}, {0.10F, 1.17F, 0.150F, 0.70F, kGold},
    {0.62F, 0.86F, 0.150F, 0.75F, kWhite},  {-0.20F, 1.08F, 0.165F, 0.80F, kWhite},
    {0.40F, 1.06F, 0.150F, 0.78F, kCoral},  {-0.74F, 0.56F, 0.145F, 0.78F, kGold},
    {0.78F, 0.48F, 0.140F, 0.70F, kGold},   {0.16F, 0.84F, 0.185F, 0.90F, kWhite},
    {-0.40F, 0.66F, 0.180F, 0.88F, kWhite}, {0.48F, 0.60F, 0.175F, 0.86F, kCoral},
    {-0.10F, 0.50F, 0.180F, 0.86F, kGold},  {-0.56F, 0.28F, 0.150F, 0.72F, kCoral},
    {0.30F, 0.32F, 0.170F, 0.80F, kWhite},  {-0.20F, 0.22F, 0.135F, 0.68F, kCoral},
    {0.60F, 0.22F, 0.125F, 0.66F, kWhite},
};

// The window stands to the upper left: how much of its light reaches something that leans in this direction.
float Facing(float across, float up) {
    return Saturate(0.55F - 0.36F * across + 0.26F * up);
}

void GrowLeaf(Strokes& strokes, Randomness& random, float x, float y, float angle, float length) {
    const float across = std::cos(angle);
    const float up = std::sin(angle);
    const float light = Facing(across, up) * random.Between(0.5F, 1.1F);
    const Vec3 tone = Mix(kLeafDark, kLeaf, light);
    const float tipX = x + across * length;
    const float tipY = y - up * length;
    const float bend = random.Between(-0.16F, 0.16F) * length;
    strokes.Add(Stroke{x, y, tipX, tipY, bend, 0.06F * length, 0.004F * length, kLeafDark,
                       Mix(tone, kLeafLit, 0.55F * light), 0.22F * length});
    strokes.Add(
        Stroke{x, y, tipX, tipY, bend, 0.016F * length, 0.002F * length, tone, Mix(tone, kLeafLit, 0.6F)});
}

// The packed florets in the middle of a bloom, higher in the centre.
void FillDisc(Strokes& strokes, Randomness& random, float x, float y, float radius, float tilt) {
    constexpr int kFlorets = 240;
    strokes.Add(Disc{x, y + 0.03F * radius, radius * 1.08F, radius * tilt * 1.08F, kDiscDark * 0.35F});
    for (int i = 0; i < kFlorets; ++i) {
        // Florets stand on a spiral turned by the golden angle.
        const float t = std::sqrt((static_cast<float>(i) + 0.5F) / kFlorets);
        const float angle = static_cast<float>(i) * 2.39996F;
        const float across = t * std::cos(angle);
        const float up = t * std::sin(angle);
        const float light =
            Saturate(Facing(1.5F * across, 1.5F * up) + random.Between(-0.22F, 0.22F) - 0.25F * (1.0F - t));
        const float size = radius * 0.075F;
        strokes.Add(Disc{x + across * radius, y - up * radius * tilt - 0.10F * radius * (1.0F - t * t), size,
                         size, Mix(kDiscDark, kDiscLit, light)});
    }
}

// Where a bloom stands on the picture.
struct Head {
    float x, y;
    float radius;
    float tilt;
};

// One petal: its shadow on those below, itself, and two veins. `reach` and `light` come from its layer.
void GrowPetal(Strokes& strokes, Randomness& random, const Head& head, const Petals& petals, float angle,
               float reach, float light) {
    constexpr Vec3 kShade{0.34F, 0.37F, 0.46F};
    const float across = std::cos(angle);
    const float up = std::sin(angle);
    const float radius = head.radius;
    const float length = reach * random.Between(0.86F, 1.06F);
    const float glow = light * (0.42F + 0.68F * Facing(across, up)) * random.Between(0.88F, 1.08F);
    const float footX = head.x + 0.22F * radius * across;
    const float footY = head.y - 0.22F * radius * up * head.tilt;
    const float tipX = head.x + length * across;
    const float tipY = head.y - length * up * head.tilt + 0.05F * radius;
    const float bend = random.Between(-0.05F, 0.05F) * length;
    const float belly = 0.155F * radius * Mix(head.tilt, 1.0F, std::abs(up));
    strokes.Add(Stroke{footX, footY, tipX, tipY, bend, 0.09F * radius, 0.022F * radius,
                       petals.foot * kShade * glow, petals.tip * kShade * glow, belly});
    strokes.Add(Stroke{footX, footY, tipX - 0.010F * radius, tipY - 0.014F * radius, bend, 0.07F * radius,
                       0.015F * radius, petals.foot * glow, petals.tip * glow, belly * 0.92F});
    for (const float side : {-1.0F, 1.0F}) {
        const float offX = side * 0.030F * radius * up;
        const float offY = side * 0.030F * radius * across * head.tilt;
        strokes.Add(Stroke{footX + offX, footY + offY, Mix(footX, tipX, 0.9F) + offX,
                           Mix(footY, tipY, 0.9F) + offY, bend, 0.012F * radius, 0.004F * radius,
                           petals.foot * (0.62F * glow), petals.tip * (0.84F * glow)});
    }
}

void GrowBloom(Strokes& strokes, Randomness& random, const Head& head, const Petals& petals) {
    constexpr int kPetals = 21;
    constexpr int kLayers = 3;
    constexpr int kStride =
        8; // between petals grown one after the other, so that neighbours overlap irregularly
    const float turn = random.Between(0.0F, 1.0F);
    for (int layer = 0; layer < kLayers; ++layer) {
        const auto level = static_cast<float>(layer);
        for (int i = 0; i < kPetals; ++i) {
            const auto place = static_cast<float>((i * kStride) % kPetals);
            const float angle = (place + turn + 0.37F * level + random.Between(-0.2F, 0.2F)) * 2.0F *
                                std::numbers::pi_v<float> / kPetals;
            GrowPetal(strokes, random, head, petals, angle, head.radius * (1.0F - 0.10F * level),
                      0.52F + 0.24F * level);
        }
    }
    FillDisc(strokes, random, head.x, head.y, 0.29F * head.radius, head.tilt);
}

} // namespace

void ArrangeBouquet(Picture& picture, const VaseMouth& mouth) {
    const float size = mouth.radius * 3.1F;
    Strokes strokes;
    Randomness random(41);
    strokes.Add(
        Disc{mouth.x, mouth.y + 0.004F, mouth.radius * 0.95F, mouth.radius * 0.10F, kLeafDark * 0.3F});
    for (const Bloom& bloom : kBlooms) {
        const float x = mouth.x + bloom.across * size;
        const float y = mouth.y - bloom.up * size;
        const float footX = mouth.x + bloom.across * mouth.radius * 0.7F;
        strokes.Add(
            Stroke{footX, mouth.y + 0.006F, x, y, 0.12F * (x - footX), 0.0060F, 0.0042F, kLeafDark, kLeaf});
    }
    constexpr int kLeaves = 110;
    for (int i = 0; i < kLeaves; ++i) {
        const float angle = random.Between(-0.12F, 1.12F) * std::numbers::pi_v<float>;
        const float out = random.Between(0.05F, 0.72F) * size;
        const float x = mouth.x + std::cos(angle) * out * 0.85F;
        const float y = mouth.y - 0.10F * size - std::abs(std::sin(angle)) * out * 1.15F;
        GrowLeaf(strokes, random, x, y, angle + random.Between(-0.7F, 0.7F),
                 size * random.Between(0.28F, 0.52F));
    }
    for (const Bloom& bloom : kBlooms) {
        GrowBloom(strokes, random,
                  {mouth.x + bloom.across * size, mouth.y - bloom.up * size, bloom.radius * size * 1.7F,
                   bloom.tilt},
                  bloom.petals);
    }
    for (int i = 0; i < 9; ++i) {
        const float angle =
            (i % 2 == 0 ? 1.06F : -0.06F) * std::numbers::pi_v<float> + random.Between(-0.25F, 0.25F);
        GrowLeaf(strokes, random, mouth.x + std::cos(angle) * mouth.radius * 0.7F, mouth.y + 0.004F, angle,
                 size * random.Between(0.22F, 0.36F));
    }
    strokes.Draw(picture);
}

} // namespace pictorel::sample
