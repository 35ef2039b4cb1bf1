// A clear gradient with a warm horizon, crossed by two layers of cloud that the low sun lights from the side.
#include "Sky.h"

#include "Noise.h"

namespace pictorel::sample {

namespace {

constexpr Vec3 kZenith{0.075F, 0.17F, 0.42F};
constexpr Vec3 kMiddle{0.30F, 0.40F, 0.64F};
constexpr Vec3 kHorizon{1.25F, 0.80F, 0.50F};
constexpr Vec3 kCloudLit{1.95F, 1.12F, 0.68F};
constexpr Vec3 kCloudShade{0.42F, 0.37F, 0.50F};

Vec3 ClearSky(Vec3 direction) {
    const float height = std::max(direction.y, 0.0F);
    const Vec3 upper = Mix(kMiddle, kZenith, SmoothStep(0.08F, 0.55F, height));
    const Vec3 sky = Mix(upper, kHorizon, std::exp(-height * 8.5F));
    const float towardsSun = Saturate(0.5F + 0.9F * direction.x);
    return sky * Mix(0.86F, 1.16F, towardsSun) +
           Vec3{0.30F, 0.15F, 0.04F} * (towardsSun * std::exp(-height * 5.0F));
}

// Cloud cover at a place of the cloud layer, 0..1. Warping the place by coarser noise curls the edges.
float Density(float x, float y) {
    const float warpX = Fractal(x * 0.9F, y * 0.9F, 2, 41) - 0.5F;
    const float warpY = Fractal(x * 0.9F, y * 0.9F, 2, 42) - 0.5F;
    const float shape = Fractal(x + 1.1F * warpX, y + 1.1F * warpY, 7, 43);
    return SmoothStep(0.47F, 0.70F, shape);
}

} // namespace

Vec3 SunDirection() {
    static const Vec3 kDirection = Normalized({0.90F, 0.27F, -0.20F});
    return kDirection;
}

Vec3 HazeColor(Vec3 direction) {
    const float towardsSun = Saturate(0.5F + 0.9F * direction.x);
    return Mix(Vec3{0.34F, 0.36F, 0.52F}, Vec3{0.86F, 0.58F, 0.44F}, towardsSun);
}

Vec3 SkyColor(Vec3 direction) {
    const Vec3 clear = ClearSky(direction);
    const float height = std::max(direction.y, 0.0F);
    // Seen flat, a layer is compressed towards the horizon; the added constant keeps it from being infinitely
    // fine there.
    const float distance = 1.0F / (height + 0.14F);
    const float x = direction.x * distance * 0.85F + 3.1F;
    const float y = distance * 1.25F + 0.4F;
    const float fade = SmoothStep(0.015F, 0.14F, height);

    const float density = Density(x, y) * fade;
    const float beyond = Density(x + 0.16F, y - 0.10F);
    const float lit = Saturate(0.62F + 0.9F * (density - beyond) - 0.25F * density);
    const Vec3 cloud = Mix(kCloudShade, kCloudLit, lit);

    const float wisps = SmoothStep(0.52F, 0.86F, Fractal(x * 0.9F + 7.0F, y * 3.6F, 6, 47)) * fade * 0.55F;
    const Vec3 veiled = Mix(clear, kCloudLit, wisps * 0.75F);
    return Mix(veiled, Mix(cloud, clear, 0.12F), density * 0.94F);
}

} // namespace pictorel::sample
