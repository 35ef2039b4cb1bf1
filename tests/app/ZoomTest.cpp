// Zooming and moving the picture: view, slider, label and scroll bars in step whichever of them is moved.
#include "app/EditorWindow.h"
#include "controls/Label.h"
#include "controls/ScrollBar.h"
#include "controls/Slider.h"

#include <QTest>
#include <QWheelEvent>
#include <gtest/gtest.h>

#include <cmath>

namespace pictorel {
namespace {

class Zoom : public testing::Test {
  protected:
    Zoom() {
        editor.Window().showNormal();
        editor.Window().resize(1280, 800);
        editor.Open(editor.MakeFile("scene.bmp", MakeScene(3000, 2000)));
        editor.WaitUntil([&] { return editor.Window().width() == 1280; });
    }

    ImageView& View() { return editor.View(); }
    QWidget& ViewWidget() { return editor.Get<Control>("ImageView").Widget(); }
    Slider& ZoomSlider() { return editor.Get<Slider>("Slider_ImageZoom"); }
    int BarX() { return editor.Get<ScrollBar>("ScrollBar_ImageX").value(); }
    int BarY() { return editor.Get<ScrollBar>("ScrollBar_ImageY").value(); }
    QString Percent() { return editor.Get<Label>("lbl_ZoomPercent").Caption(); }

    // By keys, which raise the same events as the mouse does.
    void SlideTo(int percent) {
        Slider& slider = ZoomSlider();
        slider.SetValue(percent > 1 ? percent - 1 : 2);
        slider.setFocus();
        QTest::keyClick(&slider, percent > 1 ? Qt::Key_Right : Qt::Key_Left);
        ASSERT_EQ(slider.Value(), percent);
    }
    void Wheel(int notches, QPoint where) {
        QWheelEvent event(where, ViewWidget().mapToGlobal(where), {}, {0, 120 * notches}, Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(&ViewWidget(), &event);
    }
    void ExpectInStep(const char* after) {
        const double percent = View().Zoom() * 100;
        EXPECT_EQ(ZoomSlider().Value(), std::clamp(static_cast<int>(std::floor(percent + 1e-9)), 1, 1000))
            << after;
        EXPECT_EQ(Percent(), QStringLiteral("%1%").arg(ZoomSlider().Value())) << after;
        EXPECT_EQ(BarX(), std::clamp(static_cast<int>(std::floor(View().CentreX() - 1500)), -500, 500))
            << after;
        EXPECT_EQ(BarY(), std::clamp(static_cast<int>(std::floor(View().CentreY() - 1000)), -500, 500))
            << after;
    }

    EditorWindow editor;
};

TEST_F(Zoom, EveryWayOfZoomingKeepsTheControlsInStep) {
    const QPoint corner(40, 30);
    const std::vector<std::pair<const char*, std::function<void()>>> ways{
        {"open", [] {}},
        {"zoom in", [&] { editor.Click("Cmd_ZoomIn"); }},
        {"actual size", [&] { editor.Click("Cmd_ActualSize"); }},
        {"wheel at a corner", [&] { Wheel(3, corner); }},
        {"slider", [&] { SlideTo(250); }},
        {"drag",
         [&] {
             QTest::mousePress(&ViewWidget(), Qt::LeftButton, {}, {300, 300});
             QTest::mouseMove(&ViewWidget(), {211, 347});
             QTest::mouseRelease(&ViewWidget(), Qt::LeftButton, {}, {211, 347});
         }},
        {"scroll bar", [&] { editor.Get<ScrollBar>("ScrollBar_ImageY").setValue(-77); }},
        {"zoom out", [&] { editor.Click("Cmd_ZoomOut"); }},
        {"double click", [&] { QTest::mouseDClick(&ViewWidget(), Qt::LeftButton, {}, corner); }},
        {"double click again", [&] { QTest::mouseDClick(&ViewWidget(), Qt::LeftButton, {}, corner); }},
        {"best fit", [&] { editor.Click("Cmd_ZoomFit"); }},
        {"turn", [&] { editor.Click("Cmd_FlipH"); }},
    };
    for (const auto& [name, zoom] : ways) {
        zoom();
        ExpectInStep(name);
    }
}

TEST_F(Zoom, EndsAtTheLimits) {
    for (const int percent : {950, 999, 1000}) {
        SlideTo(percent);
        editor.Click("Cmd_ZoomIn");
        EXPECT_EQ(View().Zoom(), 10.0) << percent;
        EXPECT_EQ(Percent(), "1000%") << percent;
    }
    SlideTo(1);
    editor.Click("Cmd_ZoomOut");
    EXPECT_EQ(View().Zoom(), 0.01);
    EXPECT_EQ(Percent(), "1%");
}

TEST_F(Zoom, StepsByAboutAQuarterAndLandsOnActualSize) {
    SlideTo(10);
    bool sawActualSize = false;
    for (double before = View().Zoom(); before < 8; before = View().Zoom()) {
        editor.Click("Cmd_ZoomIn");
        EXPECT_GE(View().Zoom() / before, 1.2);
        EXPECT_LE(View().Zoom() / before, 1.3);
        sawActualSize = sawActualSize || View().Zoom() == 1.0;
    }
    EXPECT_TRUE(sawActualSize);
}

TEST_F(Zoom, BestFitIsExactInTheViewAndRoundedDownInTheControls) {
    editor.Click("Cmd_ZoomFit");
    const double fitted = std::min(ViewWidget().width() / 3000.0, ViewWidget().height() / 2000.0);
    EXPECT_NEAR(View().Zoom(), fitted, 1e-9);
    EXPECT_LE(View().Zoom(), fitted);
    EXPECT_EQ(ZoomSlider().Value(), static_cast<int>(fitted * 100));
    // A picture smaller than the view is enlarged, but not by opening it.
    editor.Open(editor.MakeFile("small.bmp", MakeScene(60, 40)));
    EXPECT_EQ(View().Zoom(), 1.0);
    editor.Click("Cmd_ZoomFit");
    EXPECT_GT(View().Zoom(), 5.0);
    EXPECT_EQ(View().CentreX(), 30);
}

TEST_F(Zoom, ActualSizeCentresOnTheScrollBarsEvenAtHundredPercent) {
    editor.Click("Cmd_ActualSize");
    editor.Get<ScrollBar>("ScrollBar_ImageX").setValue(120);
    View().SetCentreX(10);
    editor.Click("Cmd_ActualSize");
    EXPECT_EQ(View().CentreX(), 1620);
}

TEST_F(Zoom, ScrollValuesRoundDown) {
    View().SetCentreX(1499.5);
    View().SetCentreY(1000.5);
    editor.Click("Cmd_ZoomIn");
    EXPECT_EQ(BarX(), -1);
    EXPECT_EQ(BarY(), 0);
}

// Every whole percent survives the way through the view and back.
TEST_F(Zoom, ThePercentageSetIsThePercentageShown) {
    for (const int percent : {29, 57, 58, 113, 114, 115, 116, 579}) {
        SlideTo(percent);
        EXPECT_EQ(View().Zoom(), percent / 100.0);
        editor.Click("Cmd_FlipV"); // keeps the view
        QTest::mousePress(&ViewWidget(), Qt::LeftButton, {}, {300, 300});
        QTest::mouseMove(&ViewWidget(), {280, 290});
        QTest::mouseRelease(&ViewWidget(), Qt::LeftButton, {}, {280, 290});
        EXPECT_EQ(Percent(), QStringLiteral("%1%").arg(percent));
    }
}

TEST_F(Zoom, TheWheelKeepsWhatIsBelowThePointer) {
    editor.Click("Cmd_ActualSize");
    const QPoint at(200, 150);
    const auto below = [&] {
        return QPointF(View().CentreX() + (at.x() - ViewWidget().width() / 2.0) / View().Zoom(),
                       View().CentreY() + (at.y() - ViewWidget().height() / 2.0) / View().Zoom());
    };
    const QPointF before = below();
    Wheel(4, at);
    EXPECT_EQ(View().Zoom(), 2.5);
    EXPECT_NEAR(below().x(), before.x(), 1.0);
    EXPECT_NEAR(below().y(), before.y(), 1.0);
}

} // namespace
} // namespace pictorel
