// The scene "landscape": a mountain lake in the last hour of sun, with pines and a flowering bank in front.
#include "Noise.h"
#include "Parallel.h"
#include "Plants.h"
#include "Scenes.h"
#include "Sky.h"
#include "Terrain.h"

#include <limits>

namespace pictorel::sample {

namespace {

constexpr float kHorizon = 0.555F; // where the horizon lies, in picture heights from the top
constexpr float kFocal = 1.30F;    // focal length in picture heights
constexpr float kEye = 0.20F;      // the camera's height over the lake
constexpr float kStepGrowth = 1.0035F;

// What one picture column sees: the distance of the ground at each row, infinite where it sees the sky.
// Going outward, ground that rises over everything nearer fills the rows between.
class ColumnView {
  public:
    ColumnView(const Terrain& terrain, int rows, float eye)
        : terrain_(terrain), depth_(static_cast<std::size_t>(rows)), eye_(eye) {}

    void Trace(float u) {
        const auto rows = static_cast<float>(depth_.size());
        std::fill(depth_.begin(), depth_.end(), std::numeric_limits<float>::infinity());
        float top = rows;
        float previousRow = rows;
        float previousDepth = Terrain::kNear;
        bool overLake = true;
        for (float z = Terrain::kNear; z < Terrain::kFar && top > 0.0F; z *= kStepGrowth) {
            const float height = terrain_.Height(u * z / kFocal, z, 10);
            const float row = (kHorizon - kFocal * (height - eye_) / z) * rows;
            if (overLake && height > 0.0F) {
                previousRow = (kHorizon + kFocal * eye_ / z) * rows; // the shore
                // Nearer rows show the lake. A mirrored view has none: its shore goes on, for ripples to
                // reach into.
                top = eye_ > 0.0F ? std::min(top, previousRow) : top;
            }
            overLake = height <= 0.0F;
            if (!overLake && row < top) {
                Fill(row, top, previousRow, previousDepth, z);
                top = row;
            }
            previousRow = row;
            previousDepth = z;
        }
    }

    float Depth(int row) const { return depth_[static_cast<std::size_t>(row)]; }

  private:
    void Fill(float row, float top, float previousRow, float previousDepth, float z) {
        const int first = std::max(0, static_cast<int>(std::ceil(row - 0.5F)));
        const int last = std::min(static_cast<int>(depth_.size()), static_cast<int>(std::ceil(top - 0.5F)));
        for (int i = first; i < last; ++i) {
            const float part =
                Saturate((previousRow - static_cast<float>(i) - 0.5F) / std::max(previousRow - row, 1e-3F));
            depth_[static_cast<std::size_t>(i)] = Mix(previousDepth, z, part);
        }
    }

    const Terrain& terrain_;
    std::vector<float> depth_;
    float eye_;
};

Vec3 RayDirection(float u, float y) {
    return Normalized({u, kHorizon - y, kFocal});
}

Vec3 GroundColor(const Terrain& terrain, float u, float y, float z, float eye, float rows) {
    const float height = eye + (kHorizon - y) * z / kFocal;
    const Vec3 lit = terrain.Shade(u * z / kFocal, z, z / (kFocal * rows));
    const Vec3 haze = HazeColor(RayDirection(u, y));
    const float clear = std::exp(-z * 0.0155F) * (1.0F - 0.40F * std::exp(-std::max(height, 0.0F) * 11.0F) *
                                                             SmoothStep(4.5F, 9.0F, z));
    return Mix(haze, lit, clear);
}

// The sky above the horizon. It is soft, so a quarter of the picture's fineness holds all of it.
Picture PaintSky(int width, int height) {
    Picture sky(std::max(2, width / 4), std::max(2, height / 4));
    const auto rows = static_cast<float>(sky.Height());
    const int horizonRow = std::min(sky.Height(), static_cast<int>(std::ceil(kHorizon * rows)) + 1);
    ForEachIndex(horizonRow, [&](int i) {
        const float y = (static_cast<float>(i) + 0.5F) / rows;
        for (int column = 0; column < sky.Width(); ++column) {
            const float u = (static_cast<float>(column) + 0.5F) / rows - 0.5F * sky.Aspect();
            sky.Row(i)[column] = SkyColor(RayDirection(u, y));
        }
    });
    return sky;
}

// Sky and mountains as seen from height `eye` over the lake; rows where the lake itself shows are left black.
Picture PaintView(const Terrain& terrain, const Picture& sky, int width, int height, float eye) {
    Picture view(width, height);
    const auto rows = static_cast<float>(height);
    ForEachIndex(width, [&](int column) {
        const float u = (static_cast<float>(column) + 0.5F) / rows - 0.5F * view.Aspect();
        ColumnView ground(terrain, height, eye);
        ground.Trace(u);
        for (int i = 0; i < height; ++i) {
            const float y = (static_cast<float>(i) + 0.5F) / rows;
            const float z = ground.Depth(i);
            if (z < Terrain::kFar) {
                view.Row(i)[column] = GroundColor(terrain, u, y, z, eye, rows);
            } else if (y < kHorizon) {
                view.Row(i)[column] = sky.Sample(u + 0.5F * sky.Aspect(), y);
            } else {
                view.Row(i)[column] = Vec3{-1.0F, 0.0F, 0.0F};
            }
        }
    });
    return view;
}

bool IsLake(Vec3 color) {
    return color.x < 0.0F;
}

// Slope of the water towards the viewer and sideways: a slow swell, wind ripples in patches.
NoiseValue Ripples(float x, float z) {
    const NoiseValue swell = ValueNoise(x * 9.0F, z * 26.0F, 91);
    const NoiseValue ripple = ValueNoise(x * 38.0F + 3.0F, z * 120.0F, 92);
    const NoiseValue fine = ValueNoise(x * 110.0F, z * 330.0F + 5.0F, 93);
    const float wind = 0.35F + 0.9F * SmoothStep(0.42F, 0.72F, Fractal(x * 0.8F, z * 1.6F, 3, 94));
    return {0.0F, 0.30F * swell.dx + wind * (0.35F * ripple.dx + 0.25F * fine.dx),
            0.45F * swell.dy + wind * (0.60F * ripple.dy + 0.45F * fine.dy)};
}

// The lake at a place below the horizon: the mirrored view, shaken by ripples, over deep water.
Vec3 WaterColor(const Picture& mirrored, float u, float y) {
    const float below = std::max(y - kHorizon, 1e-4F);
    const float z = kFocal * kEye / below;
    const NoiseValue slope = Ripples(u * z / kFocal, z);
    const float calm = 0.0075F * SmoothStep(0.0F, 0.05F, below) * (1.0F + 2.2F * below);
    const float half = 0.5F * mirrored.Aspect();
    Vec3 reflected;
    constexpr int kSpread = 5;
    for (int i = 0; i < kSpread; ++i) {
        const float stretch = 0.6F + 0.25F * static_cast<float>(i);
        const float mirrorY = kHorizon - below + calm * stretch * slope.dy - 0.0012F * static_cast<float>(i);
        reflected = reflected + mirrored.Sample(u + half + 0.5F * calm * stretch * slope.dx,
                                                std::min(mirrorY, kHorizon - 0.001F));
    }
    reflected = reflected * (1.0F / kSpread);
    const float cosine = below / std::sqrt(below * below + kFocal * kFocal);
    const float mirror = 0.06F + 0.94F * std::pow(1.0F - cosine, 4.0F);
    const Vec3 deep{0.012F, 0.040F, 0.055F};
    return Mix(deep, reflected * Vec3{0.92F, 0.95F, 1.0F}, mirror);
}

} // namespace

Picture PaintLandscape(int width, int height) {
    const Terrain terrain;
    const Picture sky = PaintSky(width, height);
    Picture picture = PaintView(terrain, sky, width, height, kEye);
    {
        const Picture mirrored =
            PaintView(terrain, sky, std::max(1, width / 2), std::max(1, height / 2), -kEye);
        ForEachIndex(height, [&](int i) {
            const float y = (static_cast<float>(i) + 0.5F) / static_cast<float>(height);
            Vec3* row = picture.Row(i);
            for (int column = 0; column < width; ++column) {
                if (IsLake(row[column])) {
                    const float u = (static_cast<float>(column) + 0.5F) / static_cast<float>(height);
                    row[column] = WaterColor(mirrored, u - 0.5F * picture.Aspect(), y);
                }
            }
        });
    }
    PlantShore(picture);
    return picture;
}

} // namespace pictorel::sample
