// How alike two pictures look, see StructuralSimilarity.h.
#include "measure/StructuralSimilarity.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <stdexcept>
#include <vector>

namespace pictorel::measure {
namespace {

constexpr int kReach = 5; // pixels on either side of the window's middle
constexpr double kSigma = 1.5;
constexpr double kC1 = (0.01 * 255) * (0.01 * 255);
constexpr double kC2 = (0.03 * 255) * (0.03 * 255);

// One number a pixel, row after row.
struct Plane {
    int width;
    int height;
    std::vector<double> values;

    Plane(int w, int h)
        : width(w), height(h), values(static_cast<std::size_t>(w) * static_cast<std::size_t>(h)) {}

    double& At(int x, int y) {
        return values[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                      static_cast<std::size_t>(x)];
    }
    double At(int x, int y) const {
        return values[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                      static_cast<std::size_t>(x)];
    }
};

std::array<double, kReach + 1> Weights() {
    std::array<double, kReach + 1> weights{};
    for (int i = 0; i <= kReach; ++i) {
        weights[static_cast<std::size_t>(i)] = std::exp(-i * i / (2 * kSigma * kSigma));
    }
    return weights;
}

// The weighted mean of the window around each pixel, along one axis.
template <typename Sample>
double WindowMean(int middle, int length, const Sample& sample) {
    static const auto weights = Weights();
    double sum = 0;
    double weight = 0;
    for (int i = std::max(0, middle - kReach); i <= std::min(length - 1, middle + kReach); ++i) {
        const double w = weights[static_cast<std::size_t>(std::abs(i - middle))];
        sum += w * sample(i);
        weight += w;
    }
    return sum / weight;
}

Plane Smoothed(const Plane& plane) {
    Plane across(plane.width, plane.height);
    Plane result(plane.width, plane.height);
    for (int y = 0; y < plane.height; ++y) {
        for (int x = 0; x < plane.width; ++x) {
            across.At(x, y) = WindowMean(x, plane.width, [&](int i) { return plane.At(i, y); });
        }
    }
    for (int y = 0; y < plane.height; ++y) {
        for (int x = 0; x < plane.width; ++x) {
            result.At(x, y) = WindowMean(y, plane.height, [&](int i) { return across.At(x, i); });
        }
    }
    return result;
}

// The product of one component of two pictures, pixel by pixel; of one with nothing, the component itself.
Plane Component(const PixelArray& a, int component, const PixelArray* b = nullptr) {
    Plane plane(a.Width(), a.Height());
    for (int y = 0; y < a.Height(); ++y) {
        for (int x = 0; x < a.Width(); ++x) {
            const auto offset = static_cast<std::ptrdiff_t>(x) * PixelArray::kComponents + component;
            plane.At(x, y) = a.Row(y)[offset] * (b != nullptr ? static_cast<double>(b->Row(y)[offset]) : 1.0);
        }
    }
    return plane;
}

double SimilarityOf(const PixelArray& a, const PixelArray& b, int component) {
    const Plane meanA = Smoothed(Component(a, component));
    const Plane meanB = Smoothed(Component(b, component));
    const Plane squareA = Smoothed(Component(a, component, &a));
    const Plane squareB = Smoothed(Component(b, component, &b));
    const Plane product = Smoothed(Component(a, component, &b));
    double sum = 0;
    for (std::size_t i = 0; i < meanA.values.size(); ++i) {
        const double ma = meanA.values[i];
        const double mb = meanB.values[i];
        const double varianceA = squareA.values[i] - ma * ma;
        const double varianceB = squareB.values[i] - mb * mb;
        const double covariance = product.values[i] - ma * mb;
        sum += (2 * ma * mb + kC1) * (2 * covariance + kC2) /
               ((ma * ma + mb * mb + kC1) * (varianceA + varianceB + kC2));
    }
    return sum / static_cast<double>(meanA.values.size());
}

} // namespace

double StructuralSimilarity(const PixelArray& a, const PixelArray& b) {
    if (a.IsEmpty() || a.Width() != b.Width() || a.Height() != b.Height()) {
        throw std::invalid_argument("Only pictures of one size can be compared.");
    }
    return (SimilarityOf(a, b, 0) + SimilarityOf(a, b, 1) + SimilarityOf(a, b, 2)) / 3;
}

} // namespace pictorel::measure
