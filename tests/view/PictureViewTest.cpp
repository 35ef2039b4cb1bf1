// The picture view as its owner and the person at it use it.
#include "picture/ImagingError.h"
#include "view/PictureView.h"
#include "view/TestPictures.h"

#include <QApplication>
#include <QMouseEvent>
#include <QWheelEvent>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <utility>

namespace pictorel {
namespace {

class PictureViewTest : public testing::Test {
  protected:
    PictureViewTest() {
        view_.resize(400, 300);
        view_.show();
        QApplication::processEvents();
        view_.SetViewChangedHandler([this] { ++changes_; });
        ratio_ = view_.devicePixelRatioF();
    }

    // The device pixels of what the view shows.
    QImage Painted() { return view_.grab().toImage().convertToFormat(QImage::Format_RGB32); }

    void Wheel(QPointF position, int turn) {
        QWheelEvent event(position, position, QPoint(), QPoint(0, turn), Qt::NoButton, Qt::NoModifier,
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(&view_, &event);
    }

    void Mouse(QEvent::Type type, QPointF position, Qt::MouseButtons buttons) {
        const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
        QMouseEvent event(type, position, position, button, buttons, Qt::NoModifier);
        QApplication::sendEvent(&view_, &event);
    }

    void DoubleClick(QPointF position) {
        Mouse(QEvent::MouseButtonPress, position, Qt::LeftButton);
        Mouse(QEvent::MouseButtonRelease, position, Qt::NoButton);
        Mouse(QEvent::MouseButtonDblClick, position, Qt::LeftButton);
        Mouse(QEvent::MouseButtonRelease, position, Qt::NoButton);
    }

    // Picture position under a position of the widget.
    QPointF PictureAt(QPointF position) const {
        const QPointF middle(std::floor(view_.width() * ratio_) / 2, std::floor(view_.height() * ratio_) / 2);
        return (position * ratio_ - middle) / view_.Zoom() + QPointF(view_.CentreX(), view_.CentreY());
    }

    PictureView view_;
    double ratio_ = 1.0;
    int changes_ = 0;
};

TEST_F(PictureViewTest, PaintsDevicePixelsOfThePictureAsTheyAre) {
    const PixelArray picture = MakeNoise(2000, 1500);
    view_.Show(picture);
    const QImage painted = Painted();
    ASSERT_EQ(painted.width(), std::lround(400 * ratio_));
    const int left = 1000 - painted.width() / 2;
    const int top = 750 - painted.height() / 2;
    for (int y = 0; y < painted.height(); ++y) {
        for (int x = 0; x < painted.width(); ++x) {
            ASSERT_EQ(painted.pixel(x, y), PixelAt(picture, left + x, top + y)) << x << ", " << y;
        }
    }
    EXPECT_EQ(changes_, 0) << "the owner's own changes are not reported to it";
}

TEST_F(PictureViewTest, ShowKeepsZoomAndCentreWhereTheyFit) {
    view_.Show(MakeNoise(300, 200));
    EXPECT_EQ(view_.CentreX(), 150.0);
    EXPECT_EQ(view_.CentreY(), 100.0);
    view_.SetZoom(3.0);
    view_.SetCentreX(60.0);
    view_.SetCentreY(-500.0);
    view_.Show(MakeNoise(300, 200));
    EXPECT_EQ(view_.Zoom(), 3.0);
    EXPECT_EQ(view_.CentreX(), 60.0);
    EXPECT_EQ(view_.CentreY(), -500.0);
    view_.Show(MakeNoise(150, 400));
    EXPECT_EQ(view_.Zoom(), 3.0);
    EXPECT_EQ(view_.CentreX(), 30.0);
    EXPECT_EQ(view_.CentreY(), 0.0);
}

TEST_F(PictureViewTest, FitAndFitNewDifferForASmallPicture) {
    view_.Show(MakeNoise(100, 100));
    view_.Fit();
    EXPECT_DOUBLE_EQ(view_.Zoom(), 3.0 * ratio_);
    view_.FitNew();
    EXPECT_DOUBLE_EQ(view_.Zoom(), 1.0);
    view_.Show(MakeNoise(1000, 100));
    view_.FitNew();
    EXPECT_DOUBLE_EQ(view_.Zoom(), 0.4 * ratio_);
    EXPECT_EQ(view_.CentreX(), 500.0);
}

TEST_F(PictureViewTest, AFittedPictureShowsItsBorderOnAllSides) {
    const auto framed = [](int width, int height) {
        return MakePicture(width, height, [=](int x, int y) {
            return x == 0 || y == 0 || x == width - 1 || y == height - 1 ? Pixel{0xffff0000}
                                                                         : Pixel{0xff00ff00};
        });
    };
    for (const auto& [width, height] : {std::pair{3, 2}, {41, 77}, {399, 299}, {401, 301}, {97, 500}}) {
        view_.Show(framed(width, height));
        view_.Fit();
        const QImage painted = Painted();
        const auto redSeen = [&](auto pixelOf) {
            for (int i = 0; i < std::max(painted.width(), painted.height()); ++i) {
                if (painted.valid(pixelOf(i)) && qRed(painted.pixel(pixelOf(i))) > 60 &&
                    qBlue(painted.pixel(pixelOf(i))) == 0) {
                    return true; // before any green: the frame is the first that comes
                }
                if (painted.valid(pixelOf(i)) && qGreen(painted.pixel(pixelOf(i))) > 200) {
                    return false;
                }
            }
            return false;
        };
        const int x = painted.width() / 2;
        const int y = painted.height() / 2;
        EXPECT_TRUE(redSeen([&](int i) { return QPoint(i, y); })) << width;
        EXPECT_TRUE(redSeen([&](int i) { return QPoint(painted.width() - 1 - i, y); })) << width;
        EXPECT_TRUE(redSeen([&](int i) { return QPoint(x, i); })) << width;
        EXPECT_TRUE(redSeen([&](int i) { return QPoint(x, painted.height() - 1 - i); })) << width;
    }
}

TEST_F(PictureViewTest, TheWheelZoomsAboutThePointer) {
    view_.Show(MakeNoise(4000, 3000));
    const QPointF pointer(90.0, 222.0);
    for (const int turn : {120, 240, 30, 7, -45, 120, -120, -360, 120}) {
        const QPointF before = PictureAt(pointer);
        const double zoom = view_.Zoom();
        changes_ = 0;
        Wheel(pointer, turn);
        EXPECT_EQ(changes_, 1) << turn;
        EXPECT_EQ(view_.Zoom() > zoom, turn > 0);
        EXPECT_NEAR(PictureAt(pointer).x(), before.x(), 1e-6) << turn;
        EXPECT_NEAR(PictureAt(pointer).y(), before.y(), 1e-6) << turn;
    }
}

TEST_F(PictureViewTest, TheWheelStaysInItsRangeAndStopsAtActualSize) {
    view_.Show(MakeNoise(900, 900));
    view_.SetZoom(0.95);
    Wheel({200, 150}, 50);
    EXPECT_EQ(view_.Zoom(), 1.0);
    Wheel({200, 150}, 120 * 40);
    EXPECT_EQ(view_.Zoom(), 10.0);
    changes_ = 0;
    Wheel({200, 150}, 33);
    EXPECT_EQ(view_.Zoom(), 10.0);
    EXPECT_EQ(changes_, 0) << "nothing changed";
    for (int i = 0; i < 300; ++i) {
        Wheel({200, 150}, -33);
    }
    EXPECT_EQ(view_.Zoom(), 0.01);
    view_.SetZoom(40.0);
    Wheel({200, 150}, 33);
    EXPECT_EQ(view_.Zoom(), 40.0);
    Wheel({200, 150}, -33);
    EXPECT_LE(view_.Zoom(), 40.0);
}

TEST_F(PictureViewTest, DraggingMovesALargePictureAndStopsAtItsEdge) {
    view_.Show(MakeNoise(3000, 2000));
    view_.SetZoom(2.0);
    EXPECT_EQ(view_.cursor().shape(), Qt::OpenHandCursor);
    Mouse(QEvent::MouseButtonPress, {100, 100}, Qt::LeftButton);
    EXPECT_EQ(view_.cursor().shape(), Qt::ClosedHandCursor);
    Mouse(QEvent::MouseMove, {140, 80}, Qt::LeftButton);
    EXPECT_DOUBLE_EQ(view_.CentreX(), 1500.0 - 20.0 * ratio_);
    EXPECT_DOUBLE_EQ(view_.CentreY(), 1000.0 + 10.0 * ratio_);
    EXPECT_EQ(changes_, 1);
    Mouse(QEvent::MouseMove, {90000, 100}, Qt::LeftButton);
    EXPECT_DOUBLE_EQ(view_.CentreX(), std::floor(400 * ratio_) / 4);
    Mouse(QEvent::MouseButtonRelease, {90000, 100}, Qt::NoButton);
    EXPECT_EQ(view_.cursor().shape(), Qt::OpenHandCursor);
    const double centre = view_.CentreX();
    Mouse(QEvent::MouseMove, {0, 0}, Qt::NoButton);
    EXPECT_EQ(view_.CentreX(), centre);
    view_.Fit();
    EXPECT_NE(view_.cursor().shape(), Qt::OpenHandCursor);
}

TEST_F(PictureViewTest, ADoubleClickGoesToActualSizeAndBack) {
    view_.Show(MakeNoise(4000, 3000));
    view_.Fit();
    const double fitted = view_.Zoom();
    const QPointF pointer(150, 120);
    const QPointF before = PictureAt(pointer);
    DoubleClick(pointer);
    EXPECT_EQ(view_.Zoom(), 1.0);
    EXPECT_NEAR(PictureAt(pointer).x(), before.x(), 1e-6);
    EXPECT_EQ(changes_, 1);
    DoubleClick(pointer);
    EXPECT_EQ(view_.Zoom(), fitted);
    EXPECT_EQ(view_.CentreX(), 2000.0);
    EXPECT_EQ(changes_, 2);
}

TEST_F(PictureViewTest, PartShownIsTheVisiblePart) {
    view_.Show(MakeNoise(2000, 1000));
    view_.Fit();
    EXPECT_EQ(view_.PartShown().width, 2000);
    EXPECT_EQ(view_.PartShown().height, 1000);

    view_.SetZoom(4.0);
    view_.SetCentreX(1000.0);
    view_.SetCentreY(10.0);
    const ShownPart part = view_.PartShown();
    const int width = static_cast<int>(100 * ratio_); // 400 x 300 in widget pixels
    const int above = static_cast<int>(std::ceil(37.5 * ratio_));
    EXPECT_EQ(part.zoom, 4.0);
    EXPECT_NEAR(part.width, width, 1);
    EXPECT_EQ(part.left, 1000 - (width + 1) / 2);
    EXPECT_EQ(part.top, 0);
    EXPECT_EQ(part.height, 10 + above);

    view_.SetCentreX(-1e9);
    EXPECT_EQ(view_.PartShown().width, 1);
    view_.Show(PixelArray());
    EXPECT_EQ(view_.PartShown().width, 0);
}

TEST_F(PictureViewTest, RedrawOffKeepsTheOldPaintingUntilItIsOnAgain) {
    view_.Show(MakePicture(800, 800, [](int, int) { return Pixel{0xff0000ff}; }));
    const QImage before = Painted();
    view_.SetRedraw(false);
    view_.Show(MakePicture(800, 800, [](int, int) { return Pixel{0xff00ff00}; }));
    view_.SetZoom(0.3);
    EXPECT_EQ(Painted(), before);
    view_.SetRedraw(true);
    EXPECT_EQ(Painted().pixel(static_cast<int>(200 * ratio_), static_cast<int>(150 * ratio_)), 0xff00ff00);
}

TEST_F(PictureViewTest, RefusesValuesThatCannotBeShown) {
    view_.SetZoom(0.7);
    for (const double zoom : {0.0, -1.0, std::nan(""), std::numeric_limits<double>::infinity()}) {
        EXPECT_THROW(view_.SetZoom(zoom), ImagingError) << zoom;
    }
    EXPECT_THROW(view_.SetCentreX(std::nan("")), ImagingError);
    EXPECT_THROW(view_.SetScalingQuality(5), ImagingError);
    EXPECT_THROW(view_.SetBorderStyle(2), ImagingError);
    EXPECT_EQ(view_.Zoom(), 0.7);
}

TEST_F(PictureViewTest, WithoutAPictureTheMouseChangesNothing) {
    Wheel({10, 10}, 120);
    DoubleClick({10, 10});
    view_.Fit();
    EXPECT_EQ(view_.Zoom(), 1.0);
    EXPECT_EQ(changes_, 0);
    const QImage painted = Painted();
    EXPECT_EQ(painted.pixel(2, 2), 0xff212326);
    bool hintSeen = false;
    for (int x = 0; x < painted.width(); ++x) {
        hintSeen = hintSeen || painted.pixel(x, painted.height() / 2) != painted.pixel(2, 2);
    }
    EXPECT_TRUE(hintSeen);
}

} // namespace
} // namespace pictorel
