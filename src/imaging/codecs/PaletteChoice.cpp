// The few colours that serve a picture best, see PaletteChoice.h.
#include "imaging/codecs/PaletteChoice.h"

#include "imaging/ForEachBand.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace pictorel::codecs {
namespace {

using Vector = std::array<double, 3>;

// A cell of the histogram as k-means sees it.
struct Sample {
    std::array<float, 3> seen{}; // lightness, green-red, blue-yellow
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

std::vector<Sample> CollectSamples(const ColourHistogram& histogram) {
    std::vector<Sample> samples;
    for (std::size_t cell = 0; cell < ColourHistogram::kCells; ++cell) {
        if (const std::uint32_t count = histogram.Count(cell); count > 0) {
            const auto mean = histogram.Mean(cell);
            const SeenColour seen = See(mean);
            samples.push_back(
                {{seen.lightness, seen.greenRed, seen.blueYellow}, mean, static_cast<float>(count), 0});
        }
    }
    return samples;
}

// The direction of largest spread: power iteration on the covariance matrix.
Vector LongestAxis(const std::array<Vector, 3>& covariance) {
    constexpr int kIterations = 12;
    Vector axis{1, 0.7, 0.4}; // at right angles to no axis that matters
    for (int i = 0; i < kIterations; ++i) {
        Vector next{};
        double length = 0;
        for (std::size_t row = 0; row < 3; ++row) {
            for (std::size_t column = 0; column < 3; ++column) {
                next[row] += covariance[row][column] * axis[column];
            }
            length = std::max(length, std::abs(next[row]));
        }
        if (length <= 0) {
            return axis;
        }
        for (std::size_t row = 0; row < 3; ++row) {
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
        for (std::size_t k = 0; k < 3; ++k) {
            mean[k] += double{samples[i].seen[k]} * samples[i].weight;
        }
    }
    for (double& component : mean) {
        component /= weight;
    }
    std::array<Vector, 3> covariance{};
    for (std::size_t i = begin; i < end; ++i) {
        for (std::size_t row = 0; row < 3; ++row) {
            for (std::size_t column = 0; column < 3; ++column) {
                covariance[row][column] += samples[i].weight * (samples[i].seen[row] - mean[row]) *
                                           (samples[i].seen[column] - mean[column]);
            }
        }
    }
    box.error = end - begin > 1 ? covariance[0][0] + covariance[1][1] + covariance[2][2] : 0;
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
        sample.along = static_cast<float>(sample.seen[0] * box.axis[0] + sample.seen[1] * box.axis[1] +
                                          sample.seen[2] * box.axis[2]);
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

// Means of the samples that belong to each of the clusters; a cluster without samples keeps its place.
struct Centre {
    Vector seen{};
    Vector bgr{};
    double weight = 0;

    void Add(const Sample& sample) {
        weight += sample.weight;
        for (std::size_t k = 0; k < 3; ++k) {
            seen[k] += double{sample.seen[k]} * sample.weight;
            bgr[k] += double{sample.bgr[k]} * sample.weight;
        }
    }
    SeenColour Seen() const {
        return {static_cast<float>(seen[0] / weight), static_cast<float>(seen[1] / weight),
                static_cast<float>(seen[2] / weight)};
    }
};

std::vector<Centre> Regroup(const std::vector<Sample>& samples, const std::vector<Centre>& centres) {
    std::vector<SeenColour> places;
    places.reserve(centres.size());
    for (const Centre& centre : centres) {
        places.push_back(centre.Seen());
    }
    const PaletteSearch search(places);
    std::vector<std::uint16_t> nearest(samples.size());
    constexpr std::size_t kWorkPerSample = 1024; // as much as moving so many bytes
    ForEachBand(static_cast<int>(samples.size()), kWorkPerSample, [&](int first, int end) {
        for (auto i = static_cast<std::size_t>(first); i < static_cast<std::size_t>(end); ++i) {
            const auto& seen = samples[i].seen;
            nearest[i] = static_cast<std::uint16_t>(search.Nearest({seen[0], seen[1], seen[2]}));
        }
    });
    std::vector<Centre> moved(centres.size());
    for (std::size_t i = 0; i < samples.size(); ++i) {
        moved[nearest[i]].Add(samples[i]);
    }
    for (std::size_t i = 0; i < moved.size(); ++i) {
        if (moved[i].weight <= 0) {
            moved[i] = centres[i];
        }
    }
    return moved;
}

} // namespace

ColourHistogram::ColourHistogram(const PixelArray& picture) : cells_(kCells) {
    constexpr unsigned kLowBits = (1U << (8 - kBits)) - 1;
    for (int y = 0; y < picture.Height(); ++y) {
        const std::uint8_t* pixel = picture.Row(y);
        for (int x = 0; x < picture.Width(); ++x, pixel += PixelArray::kComponents) {
            if (pixel[3] < kOpaqueFrom) {
                continue;
            }
            Cell& cell = cells_[CellOf(pixel[0], pixel[1], pixel[2])];
            ++cell.count;
            for (std::size_t k = 0; k < 3; ++k) {
                cell.sum[k] += pixel[k] & kLowBits;
            }
        }
    }
}

std::array<float, 3> ColourHistogram::Mean(std::size_t cell) const noexcept {
    constexpr int kDrop = 8 - kBits;
    constexpr std::size_t kMask = (std::size_t{1} << kBits) - 1;
    constexpr float kMiddle = ((1 << kDrop) - 1) / 2.0F;
    std::array<float, 3> mean{};
    for (std::size_t k = 0; k < 3; ++k) {
        const auto base = static_cast<float>((cell >> (2 * kBits - k * kBits) & kMask) << kDrop);
        const auto count = static_cast<float>(cells_[cell].count);
        mean[k] =
            base + (cells_[cell].count == 0 ? kMiddle : static_cast<float>(cells_[cell].sum[k]) / count);
    }
    return mean;
}

SeenColour See(const std::array<float, 3>& bgr) noexcept {
    const float b = ToLinear(bgr[0]);
    const float g = ToLinear(bgr[1]);
    const float r = ToLinear(bgr[2]);
    const float l = std::cbrt(0.4122214708F * r + 0.5363325363F * g + 0.0514459929F * b);
    const float m = std::cbrt(0.2119034982F * r + 0.6806995451F * g + 0.1073969566F * b);
    const float s = std::cbrt(0.0883024619F * r + 0.2817188376F * g + 0.6299787005F * b);
    return {0.2104542553F * l + 0.7936177850F * m - 0.0040720468F * s,
            1.9779984951F * l - 2.4285922050F * m + 0.4505937099F * s,
            0.0259040371F * l + 0.7827717662F * m - 0.8086757660F * s};
}

PaletteSearch::PaletteSearch(const std::vector<SeenColour>& colours) {
    for (const SeenColour& colour : colours) {
        lightness_.push_back(colour.lightness);
        greenRed_.push_back(colour.greenRed);
        blueYellow_.push_back(colour.blueYellow);
    }
}

int PaletteSearch::Nearest(const SeenColour& colour) const noexcept {
    float least = std::numeric_limits<float>::max();
    std::size_t nearest = 0;
    for (std::size_t i = 0; i < lightness_.size(); ++i) {
        const float dl = lightness_[i] - colour.lightness;
        const float da = greenRed_[i] - colour.greenRed;
        const float db = blueYellow_[i] - colour.blueYellow;
        const float distance = dl * dl + da * da + db * db;
        if (distance < least) {
            least = distance;
            nearest = i;
        }
    }
    return static_cast<int>(nearest);
}

std::vector<Bgr> ChoosePalette(const ColourHistogram& histogram, int count) {
    constexpr int kRegroupings = 6; // further ones move nothing that is seen
    std::vector<Sample> samples = CollectSamples(histogram);
    if (samples.empty()) {
        return {Bgr{0, 0, 0}};
    }
    std::vector<Centre> centres;
    for (const Box& box : CutIntoBoxes(samples, static_cast<std::size_t>(count))) {
        Centre& centre = centres.emplace_back();
        for (std::size_t i = box.begin; i < box.end; ++i) {
            centre.Add(samples[i]);
        }
    }
    for (int i = 0; i < kRegroupings; ++i) {
        centres = Regroup(samples, centres);
    }
    std::vector<Bgr> palette;
    palette.reserve(centres.size());
    for (const Centre& centre : centres) {
        Bgr& colour = palette.emplace_back();
        for (std::size_t k = 0; k < 3; ++k) {
            colour[k] = static_cast<std::uint8_t>(std::lround(centre.bgr[k] / centre.weight));
        }
    }
    return palette;
}

} // namespace pictorel::codecs
