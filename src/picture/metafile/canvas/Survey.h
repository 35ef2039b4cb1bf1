// Notes what a metafile would draw, without drawing: its extents and its bitmaps.
#pragma once

#include "picture/metafile/canvas/Surface.h"

#include <vector>

namespace pictorel::metafile {

class Survey : public Surface {
  public:
    explicit Survey(double work) : work_(work) {}

    void Fill(const QPainterPath& path, const QBrush& brush, int operation) override;
    void Stroke(const QPainterPath& path, const QPen& pen, int operation) override;
    void Put(const Stamp& stamp) override;
    void PutImage(QPoint at, const QImage& image) override;
    void SetClip(const std::optional<QRegion>& /*region*/) override {}
    QRect Bounds() const override { return {-kSide, -kSide, 2 * kSide, 2 * kSide}; }
    bool WantsPixels() const override { return false; }
    void Spend(double work) override { work_ -= work; }
    bool IsExhausted() const override { return work_ < 0; }

    // Where bitmaps are drawn plainly.
    struct PlacedCopy {
        QRectF area;
        double scaleX; // lengths on the surface that a pixel of the bitmap takes
        double scaleY;
        double dotsPerInchX; // as the bitmap says; 0 where it does not
        double dotsPerInchY;
        double pixels;
    };
    const std::vector<PlacedCopy>& Copies() const noexcept { return copies_; }
    bool DrawsMoreThanCopies() const noexcept { return drawsMore_; }
    const QRectF& Extents() const noexcept { return extents_; }

  private:
    static constexpr int kSide = 32767;

    void Note(const QRectF& area);

    std::vector<PlacedCopy> copies_;
    QRectF extents_;
    bool drawsMore_ = false;
    double work_;
};

} // namespace pictorel::metafile
