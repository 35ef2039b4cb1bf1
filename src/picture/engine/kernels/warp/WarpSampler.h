// Reads a picture between its pixels: bicubic interpolation with an antialiased border.
#pragma once

#include "picture/PixelArray.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace pictorel::engine {

// Points of the source are given as distances from the centre of its top left pixel, in 1/1024 pixel.
inline constexpr int kPhaseBits = 10;
inline constexpr int kPhases = 1 << kPhaseBits;
inline constexpr int kRunLength = 256; // pixels of a row that are sampled in one go

// Columns from `first` up to but not including `end`.
struct ColumnSpan {
    int first;
    int end;
};

// Smallest and largest coordinates, inclusive.
struct SampleBounds {
    std::int32_t left, right, top, bottom;
};

struct SampleRun {
    int count = 0;        // at most kRunLength
    bool isLevel = false; // whether all points have the same y
    SampleBounds bounds{};
    std::array<std::int32_t, kRunLength> x{};
    std::array<std::int32_t, kRunLength> y{};
};

// Interpolates with the cubic convolution kernel of Keys ("Cubic convolution interpolation for digital image
// processing", 1981) for a = -0.5: exact at pixel centres, weights in 14-bit fixed point.
// `pixels` is the top left pixel of rows `stride` bytes apart; every point must have its 4 x 4 neighbours
// there. The second form is for pictures with alpha: it weights colours by their alpha.
void SampleOpaque(const std::uint8_t* pixels, std::ptrdiff_t stride, const SampleRun& run, std::uint8_t* to);
void SampleWithAlpha(const std::uint8_t* pixels, std::ptrdiff_t stride, const SampleRun& run,
                     std::uint8_t* to);

// Fetches the pixels so far across and down from those points into the cache: runs cross the source's rows,
// which no prefetcher of a processor foresees.
void FetchAhead(const std::uint8_t* pixels, std::ptrdiff_t stride, const SampleRun& run, std::int32_t across,
                std::int32_t down);

// The same results by plain scalar code: what the above are tested against.
void SampleOpaqueReference(const std::uint8_t* pixels, std::ptrdiff_t stride, const SampleRun& run,
                           std::uint8_t* to);
void SampleWithAlphaReference(const std::uint8_t* pixels, std::ptrdiff_t stride, const SampleRun& run,
                              std::uint8_t* to);

// Source pixels passed per result pixel, across and down the source: over this distance the border of the
// picture fades into the background.
struct BorderWidth {
    double x = 1;
    double y = 1;
};

// What lies outside the picture.
enum class Outside {
    Background, // an opaque colour, with an antialiased border
    EdgePixels, // the nearest pixel of the picture
};

// Samples anywhere, inside the picture and out.
class WarpSampler {
  public:
    // `background` is 0x00BBGGRR. The source must outlive the sampler.
    WarpSampler(const PixelArray& source, Outside outside, std::uint32_t background);

    // Writes run.count pixels; the run says its bounds, here and below.
    void Sample(const SampleRun& run, BorderWidth border, std::uint8_t* to) const;

    // The points whose 4 x 4 neighbours exist and that the border's fading does not reach.
    SampleBounds InsideOf(BorderWidth border) const;

    // From the first to the last point inside the picture; where there is none, those that lie nearest.
    ColumnSpan NearestToPicture(const SampleRun& run) const;

    // Whether no border that fades over up to six source pixels reaches any point.
    bool IsDeepInside(const SampleRun& run) const;

    // Whether all points lie so far outside that only background is seen of them.
    bool IsBackground(const SampleRun& run, BorderWidth border) const;
    void FillBackground(int count, std::uint8_t* to) const;

  private:
    void SampleInside(const std::uint8_t* pixels, std::ptrdiff_t stride, const SampleRun& run,
                      std::uint8_t* to) const;
    void SampleNearBorder(std::int32_t x, std::int32_t y, BorderWidth border, std::uint8_t* to) const;
    double Coverage(std::int32_t x, std::int32_t y, BorderWidth border) const;
    void MixBackground(double coverage, std::uint8_t* pixel) const;

    const PixelArray& source_;
    Outside outside_;
    std::uint32_t backgroundPixel_;
    SampleBounds deepInside_;
};

} // namespace pictorel::engine
