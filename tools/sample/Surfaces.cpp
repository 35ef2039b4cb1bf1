// Colours, dents and gloss of the still life under one window and a dim room.
#include "Surfaces.h"

#include "Noise.h"

#include <cstdint>
#include <numbers>

namespace pictorel::sample {

namespace {

// What a glossy surface mirrors: a window of four panes, the bright garden below the table's far edge, a dim
// room. `softness` is how far a rough surface smears the panes.
Vec3 Surroundings(Vec3 direction, float softness) {
    const Vec3 window = ToWindow();
    const Vec3 right = Normalized({window.z, 0.0F, -window.x});
    const float across = Dot(direction, right);
    const float up = direction.y - window.y;
    const float ahead = Dot(direction, window);
    Vec3 light =
        Mix(Vec3{0.10F, 0.08F, 0.06F}, Vec3{0.20F, 0.22F, 0.25F}, Saturate(0.5F + 0.5F * direction.y));
    if (ahead > 0.0F) {
        const float frame = SmoothStep(0.33F + softness, 0.33F - softness, std::abs(across)) *
                            SmoothStep(0.35F + softness, 0.35F - softness, std::abs(up));
        const float bars =
            SmoothStep(0.012F, 0.028F, std::abs(across)) * SmoothStep(0.012F, 0.028F, std::abs(up - 0.05F));
        light = light + kWindowLight * (1.9F * frame * Mix(bars, 1.0F, Saturate(softness * 8.0F)));
    }
    return light;
}

Vec3 Reflect(Vec3 direction, Vec3 normal) {
    return direction - normal * (2.0F * Dot(direction, normal));
}

struct Coat {
    float gloss;
    float softness;
};

// Matt colour under the window and the room, plus a glossy coat.
Vec3 Lit(Vec3 place, Vec3 normal, Vec3 direction, Vec3 color, Coat coat, Owner owner,
         const Ball* self = nullptr) {
    const Light light = LightAt(place, normal, owner, self);
    const float facing = Dot(normal, ToWindow());
    const float wrapped = Saturate((facing + 0.18F) / 1.18F);
    const float table = Saturate(0.5F - 0.5F * normal.y) * std::exp(-place.y * 1.6F);
    const Vec3 bounce = Vec3{0.30F, 0.17F, 0.08F} * table;
    const Vec3 matt =
        color * (kWindowLight * (wrapped * wrapped * light.window) + kRoomLight * light.room + bounce);
    const float edge = std::pow(1.0F - Saturate(-Dot(normal, direction)), 5.0F);
    return matt + Surroundings(Reflect(direction, normal), coat.softness) *
                      (coat.gloss * (0.045F + 0.7F * edge) * (0.35F + 0.65F * light.room));
}

// A field of small dents, from the slope of noise on the surface.
Vec3 Dented(Vec3 normal, Vec3 local, float fineness, float depth) {
    const NoiseValue n = ValueNoise(local.x * fineness + local.z * 0.6F * fineness,
                                    local.y * fineness - local.z * 0.5F * fineness, 311);
    return Normalized(normal + Vec3{n.dx, n.dy, -0.4F * (n.dx + n.dy)} * depth);
}

Vec3 FruitColor(const Ball& ball, Vec3 place, Vec3 direction) {
    const Vec3 local = (place - ball.centre) * (1.0F / ball.radius);
    Vec3 normal = local;
    Vec3 color;
    Coat coat{0.6F, 0.10F};
    const float turn = std::atan2(local.z, local.x);
    switch (ball.skin) {
        case Skin::kOrange:
            normal = Dented(local, local, 34.0F, 0.045F);
            color = Mix(Vec3{0.66F, 0.150F, 0.008F}, Vec3{0.70F, 0.205F, 0.012F},
                        Fractal(local.x * 3.0F, local.y * 3.0F, 3, 312));
            color = Mix(color, Vec3{0.07F, 0.09F, 0.02F}, SmoothStep(0.988F, 0.996F, local.y));
            coat = {0.5F, 0.14F};
            break;
        case Skin::kApple: {
            const float streaks = Fractal(turn * 9.0F, local.y * 1.3F, 4, 313);
            const float blush = SmoothStep(
                0.16F, 0.62F,
                0.34F * streaks + 0.40F * Fractal(local.x * 1.4F + ball.centre.x, local.y * 1.4F, 2, 314) +
                    0.20F - 0.16F * local.y);
            color = Mix(Vec3{0.46F, 0.27F, 0.035F}, Vec3{0.36F, 0.020F, 0.016F}, blush);
            // Towards the stem the surface turns inwards.
            const float inwards = Mix(1.0F, -1.6F, SmoothStep(0.80F, 0.975F, local.y));
            normal = Normalized({local.x * inwards, local.y, local.z * inwards});
            color = Mix(color, Vec3{0.16F, 0.15F, 0.035F}, 0.85F * SmoothStep(0.90F, 0.99F, local.y));
            break;
        }
        case Skin::kPlum: {
            const float bloom = Fractal(local.x * 2.6F, local.y * 2.6F + local.z, 4, 315);
            color = Mix(Vec3{0.045F, 0.012F, 0.050F}, Vec3{0.105F, 0.075F, 0.155F},
                        SmoothStep(0.30F, 0.80F, bloom));
            coat = {0.45F, 0.20F};
            break;
        }
    }
    return Lit(place, normal, direction, color, coat, Owner::kFruit, &ball);
}

Vec3 VaseColor(Vec3 place, Vec3 direction) {
    constexpr float kStep = 0.002F;
    const float slope = (VaseRadius(place.y + kStep) - VaseRadius(place.y - kStep)) / (2.0F * kStep);
    const float radius = std::max(std::hypot(place.x, place.z - kVaseZ), 1e-4F);
    const Vec3 normal = Normalized({place.x / radius, -slope, (place.z - kVaseZ) / radius});
    const float turn = std::atan2(place.z - kVaseZ, place.x);
    // Glaze runs thin over the shoulder and pools below it; a dark speckle comes through.
    const float run = Fractal(turn * 5.0F, place.y * 2.2F, 4, 321);
    const float dip = SmoothStep(0.40F, 0.66F, place.y + 0.30F * (run - 0.5F));
    const Vec3 cobalt = Mix(Vec3{0.010F, 0.055F, 0.120F}, Vec3{0.035F, 0.190F, 0.270F}, run);
    const Vec3 cream = Mix(Vec3{0.46F, 0.40F, 0.32F}, Vec3{0.60F, 0.55F, 0.46F},
                           Fractal(turn * 3.0F, place.y * 3.0F, 3, 322));
    const float speckle = SmoothStep(0.70F, 0.76F, Fractal(turn * 26.0F, place.y * 60.0F, 2, 323));
    const Vec3 color = Mix(Mix(cobalt, cream, dip), Vec3{0.07F, 0.05F, 0.035F}, 0.6F * speckle * dip);
    return Lit(place, normal, direction, color, {1.25F, 0.03F}, Owner::kVase);
}

Vec3 Wood(float x, float z) {
    constexpr float kBoard = 0.92F;
    const float board = std::floor(z / kBoard + 0.35F);
    const float within = z / kBoard + 0.35F - board;
    const float offset = Hash01(static_cast<std::int32_t>(board), 3, 331) * 40.0F;
    const float figure = Fractal(x * 0.55F + offset, z * 3.4F, 4, 332);
    const float rings = 0.5F + 0.5F * std::sin((figure * 11.0F + z * 5.0F) * std::numbers::pi_v<float>);
    const float pores = Fractal(x * 6.0F + offset, z * 110.0F, 3, 333);
    Vec3 color =
        Mix(Vec3{0.165F, 0.082F, 0.038F}, Vec3{0.330F, 0.180F, 0.085F}, 0.55F * rings + 0.35F * figure);
    color =
        color * (0.70F + 0.50F * pores) * (0.86F + 0.28F * Hash01(static_cast<std::int32_t>(board), 7, 334));
    const float gap = std::min(within, 1.0F - within) * kBoard;
    return color * Mix(0.25F, 1.0F, SmoothStep(0.002F, 0.012F, gap));
}

} // namespace

Vec3 ThingColor(const Hit& hit, Vec3 from, Vec3 direction) {
    const Vec3 place = from + direction * hit.distance;
    return hit.fruit != nullptr ? FruitColor(*hit.fruit, place, direction) : VaseColor(place, direction);
}

Vec3 TableColor(const Garden& garden, Vec3 place, Vec3 direction) {
    const Vec3 up{0.0F, 1.0F, 0.0F};
    const Light light = LightAt(place, up, Owner::kTable);
    const Vec3 wood = Wood(place.x, place.z);
    const Vec3 matt = wood * (kWindowLight * (0.62F * light.window) + kRoomLight * light.room);
    // Varnish mirrors what stands on it, unevenly along the grain.
    const float uneven = 0.02F * (Fractal(place.x * 3.0F, place.z * 40.0F, 2, 335) - 0.5F);
    const Vec3 mirrorWay = Normalized({direction.x, -direction.y + uneven, direction.z});
    const Hit hit = NearestThing(place, mirrorWay);
    const Vec3 mirrored = std::isfinite(hit.distance)
                              ? ThingColor(hit, place, mirrorWay)
                              : garden.Color(0.35F + 2.0F * mirrorWay.x, 0.60F - 1.2F * mirrorWay.y);
    const float fresnel = 0.02F + 0.50F * std::pow(1.0F + direction.y, 5.0F);
    // The farther what it mirrors, the more the rough varnish scatters it.
    const float clearness = std::isfinite(hit.distance) ? std::exp(-1.4F * hit.distance) : 0.5F;
    return matt * (1.0F - 0.6F * fresnel) + Mix(kRoomLight, mirrored, clearness) * (0.6F * fresnel);
}

} // namespace pictorel::sample
