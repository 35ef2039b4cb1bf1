// The widget that shows one picture, zoomed and moved.
#pragma once

#include "picture/PicturePyramid.h"
#include "view/ImageView.h"
#include "view/ViewRenderer.h"

#include <QImage>
#include <QPointF>
#include <QString>
#include <QWidget>

#include <functional>
#include <memory>
#include <utility>

namespace pictorel {

// See ImageView.h for the members of the interface. The wheel zooms about the pointer, dragging with the left
// button moves a picture larger than the view, and a double click goes to actual size or, from there, back to
// the whole picture; these keep the view filled and the zoom within kSmallestZoom .. kLargestZoom. The
// members take any centre and any zoom above 0. Resizing keeps zoom and centre.
class PictureView : public QWidget, public ImageView {
    Q_OBJECT

  public:
    explicit PictureView(QWidget* parent = nullptr);

    // An empty array takes the picture away. The first picture is centred; another size keeps the relative
    // place of the centre, moved into the picture.
    void Show(const PixelArray& picture) override;

    // One pixel when nothing of the picture can be seen.
    ShownPart PartShown() const override;

    void SetRedraw(bool on) override;
    void SetBorderStyle(int style) override; // 0 none, 1 a thin line

    // 0 takes the nearest pixel; 1 to 4 all draw as DrawScene does at its best, which is fast enough.
    void SetScalingQuality(int quality) override;

    ColourValue BackgroundColour() const override { return background_; }
    void SetBackgroundColour(ColourValue colour) override;
    double Zoom() const override { return zoom_; }
    void SetZoom(double zoom) override;
    double CentreX() const override { return centreX_; }
    void SetCentreX(double x) override;
    double CentreY() const override { return centreY_; }
    void SetCentreY(double y) override;
    void ZoomIn() override;
    void ZoomOut() override;
    void Fit() override;
    void FitNew() override;
    void SetViewChangedHandler(std::function<void()> handler) override;

    // Where others have use for the halved copies of what is shown.
    void SharePyramids(std::shared_ptr<SharedPyramids> pyramids) { pyramids_ = std::move(pyramids); }

    // The text in the middle of a view without a picture.
    void SetHint(const QString& hint);

    QSize sizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

  private:
    // Where the pointer and the centre were when a drag began.
    struct Drag {
        bool active = false;
        QPointF pointer; // device pixels
        double centreX = 0.0;
        double centreY = 0.0;
    };

    const PixelArray& Picture() const noexcept { return pyramid_->Picture(); }
    int BorderWidth() const; // device pixels
    ViewAxis Across() const;
    ViewAxis Down() const;
    QPointF DevicePoint(const QPointF& position) const;

    void FitUpTo(double largest);
    void ZoomAbout(const QPointF& device, double zoom);
    void MoveTo(double zoom, double centreX, double centreY); // by the person: kept inside, reported
    void BeginDrag(const QPointF& device);
    void ViewChanged();
    void ShowDragCursor();

    QSize FrameSize() const;
    void RenewFrame();
    bool Draw(const ViewScene& scene, const Canvas& canvas); // false: too little memory
    void DrawHint(QPainter& painter) const;
    void DrawBorder(QPainter& painter) const;
    QColor Muted() const;

    std::shared_ptr<SharedPyramids> pyramids_ = std::make_shared<SharedPyramids>();
    std::shared_ptr<PicturePyramid> pyramid_ = std::make_shared<PicturePyramid>();
    double zoom_ = 1.0;
    double centreX_ = 0.0;
    double centreY_ = 0.0;
    ColourValue background_ = 0x00262321;
    QString hint_;
    int borderStyle_ = 0;
    bool smooth_ = true;
    bool redraw_ = true;
    Drag drag_;
    std::function<void()> viewChanged_;

    // What was drawn last, in device pixels; drawn anew when the scene is another or the picture is.
    QImage frame_;
    ViewScene frameScene_;
    bool frameStale_ = true;
};

} // namespace pictorel
