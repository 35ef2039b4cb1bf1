// Rotation by any angle, perspective and twirl, see Geometry.h. Each is its inverse map: for a point of
// the result, where it comes from. Points are taken from the centre of the canvas, y downwards.
//
// Rotation by a, counter-clockwise on the screen: the source of (x, y) is (x cos a - y sin a,
// x sin a + y cos a).
//
// Perspective: the picture is a plane in the plane of the screen, seen by a pinhole at distance D before its
// centre, D being twice the longer side. Tilted by d about the horizontal middle line, with positive degrees
// moving the top away, its point (X, Y) comes to (X, Y cos d) at the depth -Y sin d behind the screen and is
// seen at
//     x = X D / (D - Y sin d),    y = Y cos d D / (D - Y sin d).
// Solved for the source, with q = D cos d + y sin d (what is not before the viewer has q <= 0):
//     X = x D cos d / q,    Y = y D / q,
// which is the homography [[D cos d, 0, 0], [0, D, 0], [0, sin d, D cos d]]. The horizontal tilt is the same
// with x and y exchanged: positive degrees move the left side away.
//
// Twirl turns a point at the distance r from the centre as rotation does, by
// degrees (1 - 3 t^2 + 2 t^3), t = r / R, R half the shorter side.
#include "picture/engine/Geometry.h"
#include "picture/engine/kernels/base/Parameters.h"
#include "picture/engine/kernels/base/Sizes.h"
#include "picture/engine/kernels/base/WholePixel.h"
#include "picture/engine/kernels/warp/TwirlKernels.h"
#include "picture/engine/kernels/warp/WarpCanvas.h"
#include "picture/engine/kernels/warp/WarpDriver.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>

namespace pictorel::engine {
namespace {

constexpr double kManyTurns = 360e6; // any angle but infinities

// `turned` in the middle of the source's canvas. Where the difference of the sides is odd there is no middle:
// it lies half a pixel towards the top left, since a shift by half a pixel would blur everything.
PixelArray Centred(const PixelArray& turned, const PixelArray& source, std::uint32_t background) {
    PixelArray result = PixelArray::Like(source);
    std::uint8_t* const rows = result.WritableRows();
    const auto offset = [](int canvas, int size) {
        return static_cast<int>(std::floor((canvas - size) / 2.0));
    };
    const int left = offset(result.Width(), turned.Width());
    const int top = offset(result.Height(), turned.Height());
    const int first = std::max(left, 0);
    const int end = std::min(left + turned.Width(), result.Width());
    ForEachBand(result.Height(), 2 * result.RowBytes(), [&](int firstRow, int endRow) {
        for (int y = firstRow; y < endRow; ++y) {
            std::uint8_t* const to = rows + y * result.Stride();
            if (y < top || y >= top + turned.Height()) {
                FillPixels(to, result.Width(), background);
                continue;
            }
            FillPixels(to, first, background);
            std::memcpy(to + first * kComponents, turned.Row(y - top) + (first - left) * kComponents,
                        static_cast<std::size_t>(end - first) * kComponents);
            FillPixels(to + end * kComponents, result.Width() - end, background);
        }
    });
    return result;
}

struct RotationMap : CanvasMap {
    static constexpr bool kIsAffine = true;
    static constexpr bool kIsEven = true;

    double cosine;
    double sine;
    double shift; // of the turned picture, towards the top left

    RotationMap(const PixelArray& source, double degrees, double towardsTopLeft = 0)
        : CanvasMap(source),
          cosine(std::cos(Radians(degrees))),
          sine(std::sin(Radians(degrees))),
          shift(towardsTopLeft) {}

    WarpPoint Source(WarpPoint p) const {
        const double x = p.x - centre.x + shift;
        const double y = p.y - centre.y + shift;
        return {centre.x + x * cosine - y * sine, centre.y + x * sine + y * cosine};
    }

    LocalScale Scale(WarpPoint /*p*/) const { return {{cosine, sine}, {-sine, cosine}}; }
};

// About the horizontal middle line.
struct PerspectiveMap : CanvasMap {
    static constexpr bool kIsEven = true;
    static constexpr bool kIsHorizontal = true;

    double distance;
    double distanceCosine;
    double sine;

    PerspectiveMap(int canvasWidth, int canvasHeight, double degrees)
        : CanvasMap(canvasWidth, canvasHeight),
          distance(2.0 * std::max(canvasWidth, canvasHeight)),
          distanceCosine(distance * std::cos(Radians(degrees))),
          sine(std::sin(Radians(degrees))) {}

    WarpPoint Source(WarpPoint p) const {
        const double x = p.x - centre.x;
        const double y = p.y - centre.y;
        const double q = distanceCosine + y * sine;
        if (q <= 0) {
            // As far away as just before the horizon, in the same direction: so a run of points that crosses
            // it is seen to lie outside the picture on one side.
            constexpr double kNowhere = 1e9;
            return {centre.x + std::copysign(kNowhere, x), centre.y + std::copysign(kNowhere, y)};
        }
        return {centre.x + x * distanceCosine / q, centre.y + y * distance / q};
    }

    // At the horizon the plane is nowhere.
    LocalScale Scale(WarpPoint p) const {
        constexpr double kNearHorizon = 1e-6;
        const double perQ = 1 / std::max(distanceCosine + (p.y - centre.y) * sine, kNearHorizon);
        const double shrink = distanceCosine * perQ;
        return {{shrink, 0}, {-(p.x - centre.x) * shrink * sine * perQ, distance * shrink * perQ}};
    }
};

struct TwirlMap : CanvasMap {
    // Nothing comes from outside the circle, and that lies inside the canvas.
    static constexpr Outside kOutside = Outside::EdgePixels;
    static constexpr bool kIsMonotonic = false;

    double radius;
    double radians;

    TwirlMap(const PixelArray& source, double degrees)
        : CanvasMap(source), radius(std::min(centre.x, centre.y)), radians(Radians(degrees)) {}

    WarpPoint Source(WarpPoint p) const {
        const double x = p.x - centre.x;
        const double y = p.y - centre.y;
        const double t = std::min(std::sqrt(x * x + y * y) / radius, 1.0);
        const double angle = radians * (1 - t * t * (3 - 2 * t));
        const double cosine = std::cos(angle);
        const double sine = std::sin(angle);
        return {centre.x + x * cosine - y * sine, centre.y + x * sine + y * cosine};
    }

    // A point moves as its circle is turned, and along that circle as the angle falls with the radius: by
    // r d(angle)/dr = -6 radians t^2 (1 - t) for every pixel outwards.
    LocalScale Scale(WarpPoint p) const {
        const double x = p.x - centre.x;
        const double y = p.y - centre.y;
        const double distance = std::max(std::sqrt(x * x + y * y), 1e-9);
        const double t = std::min(distance / radius, 1.0);
        const double shear = -6 * radians * t * t * (1 - t);
        const double across = x / distance;
        const double down = y / distance;
        return {{1 - shear * across * down, shear * across * across},
                {-shear * down * down, 1 + shear * across * down}};
    }

    // The same for many points, in single precision.
    bool LocateRun(WarpPoint first, SampleRun& run) const {
        const auto origin = [](double position) {
            return static_cast<std::int32_t>((position - 0.5) * kPhases);
        };
        TwirlKernels::Best().LocateTwirl(
            {static_cast<float>(first.x - centre.x), static_cast<float>(first.y - centre.y),
             static_cast<float>(1 / radius), static_cast<float>(radians / (2 * std::numbers::pi)), kPhases,
             origin(centre.x), origin(centre.y)},
            run.count, run.x.data(), run.y.data());
        return true;
    }

    // The chord of the circle.
    ColumnSpan Moved(int row) const {
        const double y = row + 0.5 - centre.y;
        const double halfChord = std::sqrt(std::max(radius * radius - y * y, 0.0));
        const int first = static_cast<int>(std::ceil(centre.x - halfChord - 0.5));
        const int end = static_cast<int>(std::floor(centre.x + halfChord - 0.5)) + 1;
        return {std::clamp(first, 0, width), std::clamp(std::max(first, end), 0, width)};
    }
};

// At right angles this is what moving pixels leaves, too: the sampler meets their centres.
PixelArray RotateWindow(const PixelArray& source, double degrees, std::uint32_t background,
                        const Window& window) {
    const bool hasMiddle = (source.Width() - source.Height()) % 2 == 0;
    const bool isQuarter = degrees == 90 || degrees == 270;
    const double shift = isQuarter && !hasMiddle && source.Reduction() == 1 ? 0.5 : 0;
    return Warp(source, RotationMap(source, degrees, shift), background, window);
}

PixelArray PerspectiveWindow(const PixelArray& source, bool vertical, double degrees,
                             std::uint32_t background, const Window& window) {
    if (vertical) {
        return Warp(source, PerspectiveMap(source.Width(), source.Height(), degrees), background, window);
    }
    const PerspectiveMap turned(source.Height(), source.Width(), degrees);
    return Warp(source, TurnedMap<PerspectiveMap>{turned, source.Width(), source.Height()}, background,
                window);
}

} // namespace

PixelArray Rotate(const PixelArray& source, double degrees, std::uint32_t background,
                  const OptionalWindow& window) {
    RequireRange("the angle of rotation", degrees, -kManyTurns, kManyTurns);
    const double turn = std::fmod(degrees, 360.0);
    const double positive = turn < 0 ? turn + 360 : turn;
    if (positive == 0 || positive == 360) {
        return WindowOf(source, window);
    }
    if (window) {
        return RotateWindow(source, positive, background, *window);
    }
    if (positive == 180) {
        return MirrorLeftToRight(MirrorTopToBottom(source));
    }
    // Half a pixel of a reduced copy is many of the picture: such a copy is better blurred than misplaced.
    const bool hasMiddle = (source.Width() - source.Height()) % 2 == 0 || source.Reduction() == 1;
    if (positive == 90 && hasMiddle) {
        return Centred(QuarterTurnLeft(source), source, background);
    }
    if (positive == 270 && hasMiddle) {
        return Centred(QuarterTurnRight(source), source, background);
    }
    return Warp(source, RotationMap(source, positive), background);
}

PixelArray Perspective(const PixelArray& source, bool vertical, double degrees, std::uint32_t background,
                       const OptionalWindow& window) {
    RequireRange("the angle of the perspective", degrees, -90, 90);
    if (degrees == 0) {
        return WindowOf(source, window);
    }
    if (std::abs(degrees) == 90) {
        return BackgroundOnly(source, background, window);
    }
    if (window) {
        return PerspectiveWindow(source, vertical, degrees, background, *window);
    }
    const auto warped = [&](const PixelArray& whole) {
        return Warp(whole, PerspectiveMap(whole.Width(), whole.Height(), degrees), background);
    };
    // Turning twice costs little beside what mixing rows saves.
    return vertical ? warped(source) : QuarterTurnLeft(warped(QuarterTurnRight(source)));
}

PixelArray Twirl(const PixelArray& source, double degrees, std::uint32_t background,
                 const OptionalWindow& window) {
    RequireRange("the angle of the twirl", degrees, -kManyTurns, kManyTurns);
    if (degrees == 0) {
        return WindowOf(source, window);
    }
    return Warp(source, TwirlMap(source, degrees), background, window);
}

} // namespace pictorel::engine
