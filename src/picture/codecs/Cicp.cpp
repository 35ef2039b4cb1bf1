// Colour spaces by code points, see Cicp.h.
#include "picture/codecs/Cicp.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>

namespace pictorel::codecs {
namespace {

constexpr Chromaticity kIlluminantC{0.310, 0.316};
constexpr Chromaticity kCinemaWhite{0.314, 0.351};

struct Primaries {
    int code;
    Chromaticity white;
    std::array<Chromaticity, 3> rgb;
};
constexpr Primaries kPrimaries[] = {
    {4, kIlluminantC, {{{0.67, 0.33}, {0.21, 0.71}, {0.14, 0.08}}}},        // BT.470 M
    {5, kSrgbWhite, {{{0.64, 0.33}, {0.29, 0.60}, {0.15, 0.06}}}},          // BT.601, 625 lines
    {6, kSrgbWhite, {{{0.630, 0.340}, {0.310, 0.595}, {0.155, 0.070}}}},    // BT.601, 525 lines
    {7, kSrgbWhite, {{{0.630, 0.340}, {0.310, 0.595}, {0.155, 0.070}}}},    // SMPTE 240M
    {8, kIlluminantC, {{{0.681, 0.319}, {0.243, 0.692}, {0.145, 0.049}}}},  // film
    {9, kSrgbWhite, {{{0.708, 0.292}, {0.170, 0.797}, {0.131, 0.046}}}},    // BT.2020
    {11, kCinemaWhite, {{{0.680, 0.320}, {0.265, 0.690}, {0.150, 0.060}}}}, // DCI P3
    {12, kSrgbWhite, {{{0.680, 0.320}, {0.265, 0.690}, {0.150, 0.060}}}},   // Display P3
    {22, kSrgbWhite, {{{0.630, 0.340}, {0.295, 0.605}, {0.155, 0.077}}}},   // EBU 3213
};

constexpr double kWhiteLuminance = 203;      // cd/m2, of graphics white (ITU-R BT.2408)
constexpr double kBrightestLuminance = 1000; // cd/m2, that the shoulder takes

// Light with white at 1 becomes 0..1: straight up to the knee, then t (1 + t / p^2) / (1 + t), which leaves
// the knee with slope 1 and reaches 1 at the brightest, p.
double OnPaper(double light) {
    constexpr double kKnee = 0.5;
    constexpr double kPeak = (kBrightestLuminance / kWhiteLuminance - kKnee) / (1 - kKnee);
    if (light <= kKnee) {
        return light;
    }
    const double t = std::min((light - kKnee) / (1 - kKnee), kPeak);
    return kKnee + (1 - kKnee) * t * (1 + t / (kPeak * kPeak)) / (1 + t);
}

double PqLight(double sample) { // SMPTE ST 2084
    constexpr double kM1 = 2610.0 / 16384;
    constexpr double kM2 = 2523.0 / 4096 * 128;
    constexpr double kC1 = 3424.0 / 4096;
    constexpr double kC2 = 2413.0 / 4096 * 32;
    constexpr double kC3 = 2392.0 / 4096 * 32;
    constexpr double kFullLuminance = 10000;
    const double power = std::pow(sample, 1 / kM2);
    const double light = std::pow(std::max(power - kC1, 0.0) / (kC2 - kC3 * power), 1 / kM1);
    return OnPaper(light * kFullLuminance / kWhiteLuminance);
}

double HlgLight(double sample) { // ITU-R BT.2100 on a screen of 1000 cd/m2, whose system gamma is 1.2
    constexpr double kA = 0.17883277;
    constexpr double kB = 1 - 4 * kA;
    constexpr double kC = 0.55991073;
    constexpr double kSystemGamma = 1.2;
    const double scene = sample <= 0.5 ? sample * sample / 3 : (std::exp((sample - kC) / kA) + kB) / 12;
    return OnPaper(std::pow(scene, kSystemGamma) * kBrightestLuminance / kWhiteLuminance);
}

double Linear(double sample) {
    return sample;
}
double Gamma22(double sample) {
    return std::pow(sample, 2.2);
}
double Gamma28(double sample) {
    return std::pow(sample, 2.8);
}
double Cinema(double sample) {
    return std::min(1.0, std::pow(sample, 2.6) * 52.37 / 48);
} // SMPTE 428
double Logarithmic(double sample) {
    return sample <= 0 ? 0 : std::pow(10, 2 * (sample - 1));
}
double LongLogarithmic(double sample) {
    return sample <= 0 ? 0 : std::pow(10, 2.5 * (sample - 1));
}

constexpr int kPq = 16;
constexpr int kHlg = 18;

struct Transfer {
    int code;
    double (*light)(double sample);
};
constexpr Transfer kTransfers[] = {
    {4, Gamma22},          {5, Gamma28},   {8, Linear},  {9, Logarithmic},
    {10, LongLogarithmic}, {kPq, PqLight}, {17, Cinema}, {kHlg, HlgLight},
};

template <class Row, std::size_t kRows>
const Row* FindRow(const Row (&rows)[kRows], int code) {
    const Row* const found =
        std::find_if(std::begin(rows), std::end(rows), [&](const Row& row) { return row.code == code; });
    return found == std::end(rows) ? nullptr : found;
}

} // namespace

std::vector<float> CurveOfTransfer(int transfer) {
    constexpr int kSamples = 4096;
    std::vector<float> curve;
    if (const Transfer* const row = FindRow(kTransfers, transfer)) {
        curve.reserve(kSamples);
        for (int i = 0; i < kSamples; ++i) {
            curve.push_back(static_cast<float>(row->light(i / (kSamples - 1.0))));
        }
    }
    return curve;
}

bool IsHighDynamicRange(int transfer) noexcept {
    return transfer == kPq || transfer == kHlg;
}

ByteBuffer MakeCicpProfile(int primaries, int transfer) {
    CalibratedRgb space;
    if (const Primaries* const row = FindRow(kPrimaries, primaries)) {
        space.white = row->white;
        space.primaries = row->rgb;
    }
    space.curve = CurveOfTransfer(transfer);
    return MakeCalibratedProfile(space);
}

} // namespace pictorel::codecs
