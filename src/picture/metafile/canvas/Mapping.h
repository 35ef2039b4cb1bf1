// From the units that records draw in to the device: window, viewport, mapping mode and world transform.
#pragma once

#include <QPointF>
#include <QTransform>

namespace pictorel::metafile {

enum class MapMode {
    Text = 1,
    LowMetric,
    HighMetric,
    LowEnglish,
    HighEnglish,
    Twips,
    Isotropic,
    Anisotropic
};

class Mapping {
  public:
    // `dotsPerMillimetre` of the device is what the modes with physical units stand on.
    explicit Mapping(QPointF dotsPerMillimetre) : dotsPerMillimetre_(dotsPerMillimetre) {}

    void SetMode(int mode);
    void SetWindowOrigin(QPointF origin) { windowOrigin_ = origin; }
    void SetViewportOrigin(QPointF origin) { viewportOrigin_ = origin; }
    QPointF WindowOrigin() const { return windowOrigin_; }
    QPointF ViewportOrigin() const { return viewportOrigin_; }

    // Extents below 0 turn an axis round. 0 and modes with a scale of their own leave them as they were.
    void SetWindowExtent(QPointF extent) { SetExtent(window_, extent); }
    void SetViewportExtent(QPointF extent) { SetExtent(viewport_, extent); }
    void ScaleWindow(QPointF numerator, QPointF denominator) { Scale(window_, numerator, denominator); }
    void ScaleViewport(QPointF numerator, QPointF denominator) { Scale(viewport_, numerator, denominator); }

    void SetWorld(const QTransform& world) { world_ = world; }
    const QTransform& World() const { return world_; }

    // Page units to device units: a scale, perhaps a flip, and a shift.
    QTransform PageToDevice() const;

    // Logical units, those of the records, to device units.
    QTransform ToDevice() const { return world_ * PageToDevice(); }

  private:
    bool HasFreeExtents() const { return mode_ == MapMode::Isotropic || mode_ == MapMode::Anisotropic; }
    void SetExtent(QPointF& extent, QPointF value);
    void Scale(QPointF& extent, QPointF numerator, QPointF denominator);
    QPointF PageScale() const;

    QPointF dotsPerMillimetre_;
    MapMode mode_ = MapMode::Text;
    QPointF windowOrigin_;
    QPointF viewportOrigin_;
    QPointF window_{1, 1};
    QPointF viewport_{1, 1};
    QTransform world_;
};

} // namespace pictorel::metafile
