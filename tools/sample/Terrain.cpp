// A worn mountain range beyond a lake: forest below, rock above, snow where it is high and not too steep.
#include "Terrain.h"

#include "Noise.h"
#include "Parallel.h"
#include "Sky.h"

namespace pictorel::sample {

namespace {

constexpr std::uint32_t kSeed = 5;
constexpr float kCell = 0.04F; // side of a grid cell
constexpr float kLeft = -18.0F;
constexpr float kFront = 2.0F;
constexpr int kColumns = 900;
constexpr int kRows = 720;

constexpr float kTreeLine = 0.95F;
constexpr float kSnowLine = 1.55F;

constexpr int kTracedOctaves = 7; // the detail in which shadows are traced

struct Form {
    float floor;
    float relief;
};

struct Peak {
    float x, z, height, radius;
};
constexpr Peak kPeaks[] = {{-2.0F, 16.0F, 3.9F, 2.9F},
                           {2.6F, 19.0F, 3.3F, 2.6F},
                           {7.6F, 15.5F, 3.0F, 3.0F},
                           {-9.0F, 15.0F, 2.6F, 2.8F},
                           {4.6F, 12.5F, 1.1F, 1.8F}};

std::size_t CellIndex(int column, int row) {
    return static_cast<std::size_t>(row) * kColumns + static_cast<std::size_t>(column);
}

float ColumnX(int column) {
    return kLeft + static_cast<float>(column) * kCell;
}

float RowZ(int row) {
    return kFront + static_cast<float>(row) * kCell;
}

// Reads a cell grid at a place, interpolated and clamped to the grid.
float ReadGrid(const std::vector<float>& grid, float x, float z) {
    const float column = std::clamp((x - kLeft) / kCell, 0.0F, kColumns - 1.001F);
    const float row = std::clamp((z - kFront) / kCell, 0.0F, kRows - 1.001F);
    const int i = static_cast<int>(column);
    const int j = static_cast<int>(row);
    const float s = column - static_cast<float>(i);
    const float t = row - static_cast<float>(j);
    return Mix(Mix(grid[CellIndex(i, j)], grid[CellIndex(i + 1, j)], s),
               Mix(grid[CellIndex(i, j + 1)], grid[CellIndex(i + 1, j + 1)], s), t);
}

// Crowns of conifers as bumps, so that shores and ridges of the forest are jagged.
float Crowns(float x, float z, float ground) {
    const float forest = SmoothStep(0.0F, 0.02F, ground) * (1.0F - SmoothStep(0.7F, kTreeLine, ground));
    if (forest <= 0.0F) {
        return 0.0F;
    }
    const float crown = ValueNoise(x * 34.0F, z * 34.0F, 71).value;
    const float stand = ValueNoise(x * 5.0F, z * 5.0F, 72).value;
    return forest * (0.25F + stand) * 0.075F * crown * crown;
}

// The coarse form of the land at a place: height = floor + relief * (detail noise).
Form FormAt(float x, float z) {
    const float bay = 3.4F * (Fractal(x * 0.42F + 3.0F, z * 0.30F, 3, kSeed + 1) - 0.5F);
    const float shore = 6.2F - 0.42F * std::abs(x - 0.3F) + bay;
    const float inland = z - shore;
    const float rise = SmoothStep(0.3F, 8.5F, inland);
    const float hills = SmoothStep(0.42F, 0.85F, Fractal(x * 0.30F + 8.3F, z * 0.24F, 3, kSeed + 4));
    const float foothills =
        0.22F * SmoothStep(-0.2F, 1.8F, inland) + 1.1F * SmoothStep(0.3F, 5.0F, inland) * hills;
    // Peaks stand on a warped plane, which breaks the cones into spurs and ridges.
    const float warpX = x + 2.6F * (Fractal(x * 0.40F, z * 0.40F, 3, kSeed + 2) - 0.5F);
    const float warpZ = z + 2.6F * (Fractal(x * 0.40F, z * 0.40F, 3, kSeed + 3) - 0.5F);
    float massif = 0.0F;
    for (const Peak& peak : kPeaks) {
        const float dx = (warpX - peak.x) / peak.radius;
        const float dz = (warpZ - peak.z) / peak.radius;
        massif = std::max(massif, peak.height * std::exp(-std::sqrt(dx * dx + dz * dz + 0.015F)));
    }
    return {-0.06F + 0.15F * foothills + 0.55F * rise * massif,
            1.9F * foothills + rise * (0.55F + 1.15F * massif)};
}

} // namespace

float Terrain::Height(float x, float z, int octaves) const {
    const float relief = Eroded(x * 0.42F + 4.2F, z * 0.42F + 1.7F, octaves, kSeed);
    const float ground = ReadGrid(floor_, x, z) + ReadGrid(relief_, x, z) * relief;
    return octaves > kTracedOctaves ? ground + Crowns(x, z, ground) : ground;
}

Terrain::Terrain()
    : floor_(static_cast<std::size_t>(kColumns) * kRows), relief_(floor_.size()), sun_(floor_.size()) {
    ForEachIndex(kRows, [&](int row) {
        for (int column = 0; column < kColumns; ++column) {
            const Form form = FormAt(ColumnX(column), RowZ(row));
            floor_[CellIndex(column, row)] = form.floor;
            relief_[CellIndex(column, row)] = form.relief;
        }
    });
    TraceShadows();
}

void Terrain::TraceShadows() {
    std::vector<float> heights(sun_.size());
    ForEachIndex(kRows, [&](int row) {
        for (int column = 0; column < kColumns; ++column) {
            heights[CellIndex(column, row)] = Height(ColumnX(column), RowZ(row), kTracedOctaves);
        }
    });
    const Vec3 sun = SunDirection();
    ForEachIndex(kRows, [&](int row) {
        for (int column = 0; column < kColumns; ++column) {
            const float x = ColumnX(column);
            const float z = RowZ(row);
            const float ground = heights[CellIndex(column, row)];
            float seen = 1.0F;
            for (float way = 0.08F; way < 7.0F && seen > 0.0F; way *= 1.05F) {
                const float clearance =
                    ground + sun.y * way + 0.015F - ReadGrid(heights, x + sun.x * way, z + sun.z * way);
                // The sun is a disc: the shadow's edge is as wide as the way it has come.
                seen = std::min(seen, Saturate(0.5F + 9.0F * clearance / way));
            }
            sun_[CellIndex(column, row)] = seen;
        }
    });
}

Vec3 Terrain::Shade(float x, float z, float detail) const {
    const int octaves = std::clamp(static_cast<int>(std::log2(3.0F / detail)), 8, 12);
    const float step = std::max(detail, 0.002F);
    const float height = Height(x, z, octaves);
    const Vec3 normal =
        Normalized({height - Height(x + step, z, octaves), step, height - Height(x, z + step, octaves)});
    const float grain = Fractal(x * 26.0F, z * 26.0F, 4, 81);
    const float stone = Fractal(x * 150.0F, z * 150.0F, 2, 84);
    const float strata = ValueNoise(height * 16.0F + 3.0F * (grain - 0.5F), x * 0.7F, 83).value;
    const float patches = Fractal(x * 2.6F, z * 2.6F, 3, 82);

    const Vec3 rock = Mix(Vec3{0.085F, 0.078F, 0.078F}, Vec3{0.33F, 0.27F, 0.22F},
                          SmoothStep(0.15F, 0.85F, 0.35F * grain + 0.30F * strata + 0.35F * stone));
    const Vec3 meadow = Mix(Vec3{0.065F, 0.070F, 0.026F}, Vec3{0.15F, 0.12F, 0.045F}, patches);
    const Vec3 forest = Mix(Vec3{0.008F, 0.016F, 0.011F}, Vec3{0.050F, 0.058F, 0.024F}, grain * grain);
    const Vec3 snow{0.86F, 0.88F, 0.92F};

    const float line = height + 0.8F * (patches - 0.5F) + 0.25F * (grain - 0.5F);
    Vec3 ground =
        Mix(meadow, rock, SmoothStep(kTreeLine * 0.85F, kTreeLine * 1.25F, line + 0.9F * (0.75F - normal.y)));
    const float wooded =
        (1.0F - SmoothStep(kTreeLine * 0.55F, kTreeLine, line)) * SmoothStep(0.22F, 0.36F, patches);
    ground = Mix(ground, forest, wooded);
    const float snowy =
        SmoothStep(kSnowLine - 0.35F, kSnowLine + 0.55F, line) * SmoothStep(0.42F, 0.68F, normal.y);
    ground = Mix(ground, snow, snowy);
    // A strip of pale stones where the lake ends.
    ground = Mix(Vec3{0.13F, 0.115F, 0.10F}, ground, SmoothStep(0.0F, 0.008F, height));

    const float facing = std::max(0.0F, Dot(normal, SunDirection()));
    const float open = 0.55F + 0.45F * normal.y;
    const Vec3 bounce = Vec3{0.16F, 0.10F, 0.06F} * (0.5F - 0.5F * normal.y);
    return ground * (kSunLight * (facing * ReadGrid(sun_, x, z)) + kSkyLight * open + bounce);
}

} // namespace pictorel::sample
