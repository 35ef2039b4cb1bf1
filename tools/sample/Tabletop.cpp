// Geometry of the still life: spheres in closed form, the vase by walking its distance field.
#include "Tabletop.h"

namespace pictorel::sample {

namespace {

constexpr Ball kFruit[] = {
    {{0.60F, 0.30F, -0.46F}, 0.30F, Skin::kOrange}, {{1.00F, 0.28F, 0.02F}, 0.28F, Skin::kApple},
    {{-0.72F, 0.29F, -0.30F}, 0.29F, Skin::kApple}, {{-0.42F, 0.17F, -0.92F}, 0.17F, Skin::kPlum},
    {{0.18F, 0.16F, -1.08F}, 0.16F, Skin::kPlum},
};

// Stand-ins for the vase where only its bulk matters: in shadows and contact shade.
constexpr Ball kVaseBulk[] = {{{0.0F, 0.46F, 0.25F}, 0.47F, Skin::kPlum},
                              {{0.0F, 1.05F, 0.25F}, 0.27F, Skin::kPlum}};
// Distance along a ray to a ball, or kNoHit.
float HitBall(Vec3 from, Vec3 direction, const Ball& ball) {
    const Vec3 way = from - ball.centre;
    const float b = Dot(way, direction);
    const float c = Dot(way, way) - ball.radius * ball.radius;
    const float root = b * b - c;
    return root > 0.0F && -b > std::sqrt(root) ? -b - std::sqrt(root) : kNoHit;
}

float VaseDistance(Vec3 p) {
    const float side = std::hypot(p.x, p.z - kVaseZ) - VaseRadius(std::clamp(p.y, 0.0F, kVaseHeight));
    return std::max(0.75F * side, p.y - kVaseHeight);
}

float HitVase(Vec3 from, Vec3 direction) {
    constexpr Ball kBounds{{0.0F, 0.72F, kVaseZ}, 0.92F, Skin::kPlum};
    float along = HitBall(from, direction, kBounds);
    if (!std::isfinite(along)) {
        return along;
    }
    const float end = along + 2.0F * kBounds.radius;
    while (along < end) {
        const float distance = VaseDistance(from + direction * along);
        if (distance < 0.0006F) {
            return along;
        }
        along += distance;
    }
    return kNoHit;
}

// How much of the window a place sees past one ball, with the half-shade of a wide light.
float PastBall(Vec3 place, const Ball& ball) {
    const Vec3 way = ball.centre - place;
    const float along = Dot(way, ToWindow());
    if (along <= 0.0F) {
        return 1.0F;
    }
    const float miss = std::sqrt(std::max(0.0F, Dot(way, way) - along * along)) - ball.radius;
    return SmoothStep(-0.24F, 0.26F, miss / std::max(along, 0.05F));
}

// How much of the half-space over a surface one ball leaves open.
float OpenPast(Vec3 place, Vec3 normal, const Ball& ball) {
    const Vec3 way = ball.centre - place;
    const float squared = Dot(way, way);
    const float cosine = Dot(normal, way) / std::sqrt(squared);
    return 1.0F - Saturate(0.5F + 0.5F * cosine) * std::min(1.0F, ball.radius * ball.radius / squared);
}

} // namespace

std::span<const Ball> Fruit() {
    return kFruit;
}

Vec3 ToWindow() {
    static const Vec3 kDirection = Normalized({-0.78F, 0.62F, -0.42F});
    return kDirection;
}

float VaseRadius(float y) {
    const float t = y / kVaseHeight;
    const float belly = 0.27F * Bell((t - 0.34F) / 0.30F);
    const float lip = 0.10F * SmoothStep(0.80F, 1.0F, t);
    return 0.215F + belly + lip - 0.03F * SmoothStep(0.05F, 0.0F, t);
}

Hit NearestThing(Vec3 from, Vec3 direction) {
    Hit hit{HitVase(from, direction), nullptr};
    for (const Ball& ball : kFruit) {
        const float along = HitBall(from, direction, ball);
        if (along < hit.distance) {
            hit = {along, &ball};
        }
    }
    return hit;
}

Light LightAt(Vec3 place, Vec3 normal, Owner owner, const Ball* self) {
    Light light;
    const auto shade = [&](const Ball& ball) {
        light.window *= PastBall(place, ball);
        light.room *= OpenPast(place, normal, ball);
    };
    for (const Ball& ball : kFruit) {
        if (&ball != self) {
            shade(ball);
        }
    }
    if (owner != Owner::kVase) {
        for (const Ball& ball : kVaseBulk) {
            shade(ball);
        }
    }
    return light;
}

} // namespace pictorel::sample
