// A green dusk with discs of light between the leaves.
#include "Garden.h"

#include "Noise.h"

namespace pictorel::sample {

Garden::Garden() {
    Randomness random(302);
    for (Blur& blur : blurs_) {
        blur.x = random.Between(-0.1F, 1.6F);
        blur.y = random.Between(-0.05F, 0.66F);
        blur.radius = random.Between(0.020F, 0.050F);
        const float strength = 0.05F + 0.34F * random.Next() * random.Next();
        blur.light = Mix(Vec3{0.40F, 0.75F, 0.40F}, Vec3{1.5F, 0.90F, 0.38F}, random.Next()) * strength;
    }
}

Vec3 Garden::Color(float x, float y) const {
    const float haze = Fractal(x * 1.6F, y * 1.6F, 3, 301);
    Vec3 color =
        Mix(Vec3{0.014F, 0.026F, 0.024F}, Vec3{0.115F, 0.130F, 0.070F}, SmoothStep(0.25F, 0.8F, haze));
    color = color + Vec3{0.38F, 0.25F, 0.11F} * (0.8F * Bell(std::hypot(x - 0.02F, y - 0.14F) / 0.34F));
    for (const Blur& blur : blurs_) {
        const float dx = x - blur.x;
        const float dy = y - blur.y;
        const float squared = dx * dx + dy * dy;
        if (squared < (blur.radius + 0.004F) * (blur.radius + 0.004F)) {
            const float away = std::sqrt(squared);
            const float disc = SmoothStep(blur.radius + 0.004F, blur.radius - 0.004F, away);
            color =
                color + blur.light * (disc * (0.75F + 0.35F * SmoothStep(0.5F, 1.0F, away / blur.radius)));
        }
    }
    return color;
}

} // namespace pictorel::sample
