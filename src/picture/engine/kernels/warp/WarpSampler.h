// Reads a picture between its pixels: bicubic interpolation with an antialiased border.
#pragma once

#include "picture/PixelArray.h"
#include "picture/engine/kernels/warp/BicubicKernels.h"
#include "picture/engine/kernels/warp/HorizontalKernels.h"
#include "picture/engine/kernels/warp/SampleRun.h"

#include <cstddef>
#include <cstdint>

namespace pictorel::engine {

// Columns from `first` up to but not including `end`.
struct ColumnSpan {
    int first;
    int end;
};

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
    const BicubicKernels& bicubic_ = BicubicKernels::Best();
    const HorizontalKernels& horizontal_ = HorizontalKernels::Best();
};

} // namespace pictorel::engine
