// The scene "portrait": a glazed vase of daisies and some fruit on a table beside a window, before a blurred
// garden.
#include "Bouquet.h"
#include "Garden.h"
#include "Parallel.h"
#include "Scenes.h"
#include "Strokes.h"
#include "Surfaces.h"
#include "Tabletop.h"

#include <vector>

namespace pictorel::sample {

namespace {

constexpr Vec3 kEye{0.0F, 1.95F, -8.2F};
constexpr float kFocal = 2.05F;    // in picture heights
constexpr float kEyeLevel = 0.33F; // the picture height that lies level with the eye
constexpr float kTableEnd = 2.3F;
constexpr float kTableBlur = 0.7F; // the far edge is out of focus by this much
constexpr float kDesignAspect = 2.0F / 3.0F;
constexpr int kFineSide = 3; // samples along each side of a pixel that an outline crosses

class Camera {
  public:
    explicit Camera(const Picture& picture) : aspect_(picture.Aspect()) {}

    // What a place of the picture shows: a thing, the table, or the garden.
    Vec3 Color(float x, float y) const {
        const Vec3 direction = Direction(x, y);
        const Hit hit = NearestThing(kEye, direction);
        const float toTable = TableDistance(direction);
        if (hit.distance < toTable) {
            return ThingColor(hit, kEye, direction);
        }
        const Vec3 behind = garden_.Color(x + 0.5F * (kDesignAspect - aspect_), y);
        if (!std::isfinite(toTable)) {
            return behind;
        }
        const Vec3 place = kEye + direction * toTable;
        const float table = SmoothStep(kTableEnd + kTableBlur, kTableEnd - kTableBlur, place.z);
        return table > 0.0F ? Mix(behind, TableColor(garden_, place, direction), table) : behind;
    }

    // A name for what a place shows; where neighbours differ there is an outline.
    const void* Subject(float x, float y) const {
        const Vec3 direction = Direction(x, y);
        const Hit hit = NearestThing(kEye, direction);
        if (hit.distance < TableDistance(direction)) {
            return hit.fruit != nullptr ? static_cast<const void*>(hit.fruit) : this;
        }
        return nullptr;
    }

    struct Spot {
        float x, y;
        float scale; // picture heights a unit of the room there
    };

    // Where a point of the room appears.
    Spot Project(Vec3 place) const {
        const float scale = kFocal / (place.z - kEye.z);
        return {0.5F * aspect_ + place.x * scale, kEyeLevel + (kEye.y - place.y) * scale, scale};
    }

  private:
    Vec3 Direction(float x, float y) const { return Normalized({x - 0.5F * aspect_, kEyeLevel - y, kFocal}); }

    static float TableDistance(Vec3 direction) { return direction.y < 0.0F ? -kEye.y / direction.y : kNoHit; }

    float aspect_;
    Garden garden_;
};

Vec3 FineColor(const Camera& camera, float left, float top, float side) {
    Vec3 sum;
    for (int i = 0; i < kFineSide * kFineSide; ++i) {
        const int column = i % kFineSide;
        const int row = i / kFineSide;
        const float s = (static_cast<float>(column) + 0.5F) / kFineSide;
        const float t = (static_cast<float>(row) + 0.5F) / kFineSide;
        sum = sum + camera.Color(left + s * side, top + t * side);
    }
    return sum * (1.0F / (kFineSide * kFineSide));
}

// The stalk of each apple; it stands in the hollow at its top.
void AddStems(Picture& picture, const Camera& camera) {
    Strokes strokes;
    for (const Ball& ball : Fruit()) {
        if (ball.skin == Skin::kApple) {
            const Camera::Spot foot = camera.Project(ball.centre + Vec3{0.0F, 0.93F * ball.radius, -0.02F});
            const float length = 0.40F * ball.radius * foot.scale;
            strokes.Add(Stroke{foot.x,
                               foot.y,
                               foot.x + 0.35F * length,
                               foot.y - length,
                               -0.06F * length,
                               0.10F * length,
                               0.17F * length,
                               {0.020F, 0.012F, 0.006F},
                               {0.130F, 0.075F, 0.035F}});
        }
    }
    strokes.Draw(picture);
}

} // namespace

Picture PaintStillLife(int width, int height) {
    Picture picture(width, height);
    const Camera camera(picture);
    const float side = 1.0F / static_cast<float>(height);
    ForEachIndex(height, [&](int i) {
        const float top = static_cast<float>(i) * side;
        std::vector<const void*> above(static_cast<std::size_t>(width) + 1);
        std::vector<const void*> below(above.size());
        for (std::size_t corner = 0; corner < above.size(); ++corner) {
            above[corner] = camera.Subject(static_cast<float>(corner) * side, top);
            below[corner] = camera.Subject(static_cast<float>(corner) * side, top + side);
        }
        for (int column = 0; column < width; ++column) {
            const auto corner = static_cast<std::size_t>(column);
            const float left = static_cast<float>(column) * side;
            const bool isInside = above[corner] == above[corner + 1] && above[corner] == below[corner] &&
                                  above[corner] == below[corner + 1];
            picture.Row(i)[column] = isInside ? camera.Color(left + 0.5F * side, top + 0.5F * side)
                                              : FineColor(camera, left, top, side);
        }
    });
    const Camera::Spot mouth = camera.Project({0.0F, kVaseHeight, kVaseZ});
    ArrangeBouquet(picture, {mouth.x, mouth.y, VaseRadius(kVaseHeight) * mouth.scale});
    AddStems(picture, camera);
    return picture;
}

} // namespace pictorel::sample
