// The few colours that serve a picture best, see PaletteChoice.h.
#include "picture/codecs/gif/PaletteChoice.h"

#include "picture/ForEachBand.h"
#include "picture/codecs/gif/NearestSearch.h"

#include <algorithm>
#include <cmath>

namespace pictorel::codecs {
namespace {

// Where distances between colours are weighed: CIELAB (CIE 15) and the encoded values side by side. By CIELAB
// alone saturated gradients get too few colours, by the values alone dim and pale ones do.
constexpr std::size_t kAxes = 6;
using Place = std::array<float, kAxes>;
using Vector = std::array<double, kAxes>;

// A cell of the histogram.
struct Sample {
    Place place{};
    std::array<float, 3> bgr{};
    float weight = 0;
    float along = 0; // where it lies on the axis being cut
};

struct Box {
    std::size_t begin = 0;
    std::size_t end = 0;
    double error = 0; // sum of weighted squared distances from the mean
    Vector axis{};    // along which the samples lie widest apart
};

float ToLinear(float encoded) noexcept { // IEC 61966-2-1, 0..255 to 0..1
    const float c = encoded / 255.0F;
    return c <= 0.04045F ? c / 12.92F : std::pow((c + 0.055F) / 1.055F, 2.4F);
}

float LabCurve(float t) noexcept {
    return t > 0.008856F ? std::cbrt(t) : 7.787F * t + 16.0F / 116.0F;
}

Place PlaceOf(const std::array<float, 3>& bgr) noexcept {
    constexpr float kLightness = 2.55F; // as wide a range as the values have
    constexpr float kChroma = 3.06F;
    const float b = ToLinear(bgr[0]);
    const float g = ToLinear(bgr[1]);
    const float r = ToLinear(bgr[2]);
    const float x = LabCurve((0.4124F * r + 0.3576F * g + 0.1805F * b) / 0.9505F);
    const float y = LabCurve(0.2126F * r + 0.7152F * g + 0.0722F * b);
    const float z = LabCurve((0.0193F * r + 0.1192F * g + 0.9505F * b) / 1.089F);
    return {kLightness * (116 * y - 16),
            kChroma * 500 * (x - y),
            kChroma * 200 * (y - z),
            bgr[0],
            bgr[1],
            bgr[2]};
}

std::vector<Sample> CollectSamples(const ColourHistogram& histogram) {
    // Less than the count itself, so that small things keep colours of their own.
    constexpr float kWeightOfCount = 0.75F;
    std::vector<Sample> samples;
    for (std::size_t cell = 0; cell < ColourHistogram::kCells; ++cell) {
        if (const std::uint32_t count = histogram.Count(cell); count > 0) {
            const auto mean = histogram.Mean(cell);
            const float weight = std::pow(static_cast<float>(count), kWeightOfCount);
            samples.push_back({PlaceOf(mean), mean, weight, 0});
        }
    }
    return samples;
}

using Covariance = std::array<Vector, kAxes>;

// The direction of largest spread: power iteration on the covariance matrix.
Vector LongestAxis(const Covariance& covariance) {
    constexpr int kIterations = 12;
    Vector axis{1, 0.7, 0.4, 0.9, 0.6, 0.5}; // at right angles to no axis that matters
    for (int i = 0; i < kIterations; ++i) {
        Vector next{};
        double length = 0;
        for (std::size_t row = 0; row < kAxes; ++row) {
            for (std::size_t column = 0; column < kAxes; ++column) {
                next[row] += covariance[row][column] * axis[column];
            }
            length = std::max(length, std::abs(next[row]));
        }
        if (length <= 0) {
            return axis;
        }
        for (std::size_t row = 0; row < kAxes; ++row) {
            axis[row] = next[row] / length;
        }
    }
    return axis;
}

Box MeasureBox(const std::vector<Sample>& samples, std::size_t begin, std::size_t end) {
    Box box{begin, end, 0, {}};
    double weight = 0;
    Vector mean{};
    for (std::size_t i = begin; i < end; ++i) {
        weight += samples[i].weight;
        for (std::size_t k = 0; k < kAxes; ++k) {
            mean[k] += double{samples[i].place[k]} * samples[i].weight;
        }
    }
    for (double& component : mean) {
        component /= weight;
    }
    Covariance covariance{};
    for (std::size_t i = begin; i < end; ++i) {
        for (std::size_t row = 0; row < kAxes; ++row) {
            const double apart = samples[i].weight * (samples[i].place[row] - mean[row]);
            for (std::size_t column = 0; column < kAxes; ++column) {
                covariance[row][column] += apart * (samples[i].place[column] - mean[column]);
            }
        }
    }
    for (std::size_t k = 0; end - begin > 1 && k < kAxes; ++k) {
        box.error += covariance[k][k];
    }
    box.axis = LongestAxis(covariance);
    return box;
}

// Orders the box's samples along its axis and returns where to cut for the least squared error of the halves.
std::size_t FindCut(std::vector<Sample>& samples, const Box& box) {
    const auto first = samples.begin() + static_cast<std::ptrdiff_t>(box.begin);
    const auto last = samples.begin() + static_cast<std::ptrdiff_t>(box.end);
    double weight = 0;
    double moment = 0;
    std::for_each(first, last, [&](Sample& sample) {
        double along = 0;
        for (std::size_t k = 0; k < kAxes; ++k) {
            along += sample.place[k] * box.axis[k];
        }
        sample.along = static_cast<float>(along);
        weight += sample.weight;
        moment += double{sample.weight} * sample.along;
    });
    std::sort(first, last, [](const Sample& a, const Sample& b) { return a.along < b.along; });
    double lowWeight = 0;
    double lowMoment = 0;
    double bestGain = -1;
    std::size_t cut = box.begin + 1;
    for (std::size_t i = box.begin; i + 1 < box.end; ++i) {
        lowWeight += samples[i].weight;
        lowMoment += double{samples[i].weight} * samples[i].along;
        const double apart = lowMoment / lowWeight - (moment - lowMoment) / (weight - lowWeight);
        const double gain = lowWeight * (weight - lowWeight) * apart * apart;
        if (gain > bestGain) {
            bestGain = gain;
            cut = i + 1;
        }
    }
    return cut;
}

std::vector<Box> CutIntoBoxes(std::vector<Sample>& samples, std::size_t count) {
    std::vector<Box> boxes{MeasureBox(samples, 0, samples.size())};
    while (boxes.size() < count) {
        const auto worst = std::max_element(boxes.begin(), boxes.end(),
                                            [](const Box& a, const Box& b) { return a.error < b.error; });
        if (worst->error <= 0) {
            break;
        }
        const std::size_t cut = FindCut(samples, *worst);
        const Box low = MeasureBox(samples, worst->begin, cut);
        const Box high = MeasureBox(samples, cut, worst->end);
        *worst = low;
        boxes.push_back(high);
    }
    return boxes;
}

// The weighted sum of the samples of a cluster.
struct Cluster {
    Vector place{};
    std::array<double, 3> bgr{};
    double weight = 0;

    void Add(const Sample& sample) {
        weight += sample.weight;
        for (std::size_t k = 0; k < kAxes; ++k) {
            place[k] += double{sample.place[k]} * sample.weight;
        }
        for (std::size_t k = 0; k < 3; ++k) {
            bgr[k] += double{sample.bgr[k]} * sample.weight;
        }
    }
};

using Search = NearestSearch<kAxes>;

template <typename Number>
Search::Point SearchPoint(const std::array<Number, kAxes>& place, double divisor) {
    constexpr double kSteps = 4; // a level: all there are lie less than 1000 levels apart
    Search::Point point{};
    for (std::size_t k = 0; k < kAxes; ++k) {
        point[k] = static_cast<int>(std::lround(place[k] / divisor * kSteps));
    }
    return point;
}

// Moves every sample to the cluster whose mean is nearest; one that no sample comes to keeps its place.
std::vector<Cluster> Regroup(const std::vector<Sample>& samples, const std::vector<Cluster>& clusters) {
    Search search;
    for (const Cluster& cluster : clusters) {
        search.Add(SearchPoint(cluster.place, cluster.weight));
    }
    std::vector<std::uint8_t> nearest(samples.size());
    constexpr std::size_t kWorkPerSample = 1024; // as much as moving so many bytes
    ForEachBand(static_cast<int>(samples.size()), kWorkPerSample, [&](int first, int end) {
        for (auto i = static_cast<std::size_t>(first); i < static_cast<std::size_t>(end); ++i) {
            nearest[i] = static_cast<std::uint8_t>(search.Nearest(SearchPoint(samples[i].place, 1)));
        }
    });
    std::vector<Cluster> moved(clusters.size());
    for (std::size_t i = 0; i < samples.size(); ++i) {
        moved[nearest[i]].Add(samples[i]);
    }
    for (std::size_t i = 0; i < moved.size(); ++i) {
        if (moved[i].weight <= 0) {
            moved[i] = clusters[i];
        }
    }
    return moved;
}

} // namespace

std::vector<Bgr> ChoosePalette(const ColourHistogram& histogram, int count) {
    constexpr int kRegroupings = 6; // further ones move nothing that is seen
    std::vector<Sample> samples = CollectSamples(histogram);
    if (samples.empty()) {
        return {Bgr{0, 0, 0}};
    }
    std::vector<Cluster> clusters;
    for (const Box& box : CutIntoBoxes(samples, static_cast<std::size_t>(count))) {
        Cluster& cluster = clusters.emplace_back();
        for (std::size_t i = box.begin; i < box.end; ++i) {
            cluster.Add(samples[i]);
        }
    }
    for (int i = 0; i < kRegroupings; ++i) {
        clusters = Regroup(samples, clusters);
    }
    std::vector<Bgr> palette;
    palette.reserve(clusters.size());
    for (const Cluster& cluster : clusters) {
        Bgr& colour = palette.emplace_back();
        for (std::size_t k = 0; k < 3; ++k) {
            colour[k] = static_cast<std::uint8_t>(std::lround(cluster.bgr[k] / cluster.weight));
        }
    }
    return palette;
}

} // namespace pictorel::codecs
