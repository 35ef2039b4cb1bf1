// Sliders through the window: preview while held, commit on release.
#include "app/EditorWindow.h"
#include "controls/Label.h"
#include "controls/Slider.h"
#include "controls/TabControl.h"

#include <QApplication>
#include <QPointer>
#include <QTest>
#include <gtest/gtest.h>

#include <functional>
#include <utility>
#include <vector>

namespace pictorel {
namespace {

// Once those that are to go are gone.
QWidget* PreviewWindowOf(EditorWindow& editor) {
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return editor.Window().findChild<QWidget*>(QStringLiteral("frmPreview"));
}

TEST(Sliders, PreviewWhileHeldAndCommitOnRelease) {
    EditorWindow editor;
    const PixelArray scene = MakeScene(400, 300);
    editor.Open(editor.MakeFile("scene.bmp", scene));
    auto& slider = editor.Get<Slider>("Slider_Tab", 0);
    const QPoint thumb(slider.width() / 2, slider.height() / 2);
    QTest::mousePress(&slider, Qt::LeftButton, Qt::NoModifier, thumb);
    ASSERT_NE(PreviewWindowOf(editor), nullptr);
    EXPECT_TRUE(PreviewWindowOf(editor)->isVisible());
    EXPECT_EQ(PreviewWindowOf(editor)->windowTitle(), "Brightness");
    QTest::mouseMove(&slider, thumb + QPoint(20, 0));
    const int value = slider.Value();
    EXPECT_GT(value, 0);
    EXPECT_EQ(editor.Get<Label>("lbl_SliderTab", 0).Caption(), QString::number(value));
    EXPECT_EQ(editor.History().Count(), 1);
    QTest::mouseRelease(&slider, Qt::LeftButton, Qt::NoModifier, thumb + QPoint(20, 0));
    EXPECT_EQ(PreviewWindowOf(editor), nullptr);
    EXPECT_EQ(editor.HistoryCaptions(), (QStringList{"Open", "Brightness"}));
    EXPECT_EQ(editor.Shown().Row(10)[40], std::min(255, scene.Row(10)[40] + value));
    EXPECT_TRUE(slider.IsEnabled());
    EXPECT_FALSE(editor.Get<Control>("ProgressBar").Widget().isVisible());
    EXPECT_TRUE(editor.Get("Cmd_Panel", 2).IsEnabled());
    EXPECT_FALSE(editor.Get("Cmd_Panel", 3).IsEnabled());
}

TEST(Sliders, EveryShownSliderAtItsDefaultLeavesThePixels) {
    EditorWindow editor;
    const PixelArray scene = MakeScene(90, 70);
    editor.Open(editor.MakeFile("scene.bmp", scene));
    for (int i = 0; i < 34; ++i) {
        auto& slider = editor.Get<Slider>("Slider_Tab", i);
        if (slider.isHidden()) {
            continue;
        }
        emit slider.Pressed();
        emit slider.Released();
        EXPECT_EQ(LargestDifference(editor.Shown(), scene), 0) << "slider " << i;
    }
}

TEST(Sliders, TheReducedCopyIs250PixelsWide) {
    EditorWindow editor;
    editor.Open(editor.MakeFile("scene.bmp", MakeScene(1000, 750)));
    editor.Click("Cmd_ZoomFit");
    auto& slider = editor.Get<Slider>("Slider_Tab", 18);
    emit slider.Pressed();
    EXPECT_EQ(editor.Document().PreviewPixels.Width(), 250);
    EXPECT_EQ(editor.Document().PreviewPixels.Height(), 188);
    EXPECT_DOUBLE_EQ(editor.Document().PreviewPixels.Reduction(), 0.25);
    emit slider.Released();
}

TEST(Sliders, TheCopyOfAPictureSmallerThanItIsNotRefused) {
    EditorWindow editor;
    editor.Open(editor.MakeFile("scene.bmp", MakeScene(100, 80)));
    auto& slider = editor.Get<Slider>("Slider_Tab", 18);
    emit slider.Pressed();
    EXPECT_EQ(editor.Document().PreviewPixels.Width(), 250);
    EXPECT_DOUBLE_EQ(editor.Document().PreviewPixels.Reduction(), 2.5);
    emit slider.Released();
}

class SliderHeld : public ::testing::Test {
  protected:
    SliderHeld() { editor_.Open(editor_.MakeFile("scene.bmp", MakeScene(400, 300))); }

    QPoint Thumb() { return {slider_.width() / 2, slider_.height() / 2}; }
    void Press(Qt::MouseButton button = Qt::LeftButton) {
        QTest::mousePress(&slider_, button, Qt::NoModifier, Thumb());
        QTest::mouseMove(&slider_, Thumb() + QPoint(25, 0));
        ASSERT_NE(PreviewWindowOf(editor_), nullptr);
        ASSERT_NE(slider_.Value(), 0);
    }

    EditorWindow editor_;
    Slider& slider_ = editor_.Get<Slider>("Slider_Tab", 0);
};

TEST_F(SliderHeld, CommitsWithEitherButtonAndOutsideTheSlider) {
    Press(Qt::RightButton);
    QTest::mouseRelease(&slider_, Qt::RightButton, Qt::NoModifier, {-400, 300});
    EXPECT_EQ(editor_.HistoryCaptions(), (QStringList{"Open", "Brightness"}));
    EXPECT_EQ(PreviewWindowOf(editor_), nullptr);
}

TEST_F(SliderHeld, AClickInTheTrackIsAPageStepThatCommits) {
    QTest::mouseClick(&slider_, Qt::LeftButton, Qt::NoModifier, {slider_.width() - 8, Thumb().y()});
    EXPECT_EQ(slider_.Value(), 5);
    EXPECT_EQ(editor_.HistoryCaptions(), (QStringList{"Open", "Brightness"}));
}

TEST_F(SliderHeld, LosingTheMouseGivesUp) {
    const std::vector<std::pair<const char*, std::function<void()>>> ways{
        {"Escape", [this] { QTest::keyClick(&slider_, Qt::Key_Escape); }},
        {"disabled", [this] { slider_.SetEnabled(false); }},
        {"its page goes", [this] { editor_.Get<TabControl>("TabControl_Effects").SelectTab(1); }},
        {"another window",
         [this] {
             QEvent left(QEvent::WindowDeactivate);
             QApplication::sendEvent(&editor_.Window(), &left);
         }},
    };
    for (const auto& [name, lose] : ways) {
        Press();
        const QPointer<QWidget> preview = PreviewWindowOf(editor_);
        lose();
        EXPECT_FALSE(preview.isNull()) << name << ": other widgets may still be told of the same event";
        EXPECT_EQ(PreviewWindowOf(editor_), nullptr) << name;
        EXPECT_EQ(slider_.Value(), 0) << name;
        EXPECT_EQ(editor_.Get<Label>("lbl_SliderTab", 0).Caption(), "0") << name;
        QTest::mouseMove(&slider_, Thumb() + QPoint(40, 0));
        QTest::mouseRelease(&slider_, Qt::LeftButton, Qt::NoModifier, Thumb());
        EXPECT_EQ(editor_.HistoryCaptions(), QStringList{"Open"}) << name;
        slider_.SetEnabled(true);
        editor_.Get<TabControl>("TabControl_Effects").SelectTab(0);
    }
}

TEST_F(SliderHeld, AWindowOfItsOwnTakesNothing) {
    QWidget tool(&editor_.Window(), Qt::Tool);
    Press();
    tool.show();
    QApplication::setActiveWindow(&tool);
    ASSERT_EQ(QApplication::activeWindow(), &tool);
    EXPECT_NE(PreviewWindowOf(editor_), nullptr);
    QTest::mouseRelease(&slider_, Qt::LeftButton, Qt::NoModifier, Thumb() + QPoint(25, 0));
    EXPECT_EQ(editor_.HistoryCaptions(), (QStringList{"Open", "Brightness"}));
}

TEST_F(SliderHeld, KeysPreviewWithoutAWindowAndNeverTakeThePicturesPlace) {
    const PixelArray scene = editor_.Shown();
    slider_.setFocus();
    QTest::keyClick(&slider_, Qt::Key_Right);
    QTest::keyClick(&slider_, Qt::Key_PageUp);
    EXPECT_EQ(slider_.Value(), 6);
    EXPECT_EQ(editor_.Get<Label>("lbl_SliderTab", 0).Caption(), "6");
    QWidget* const preview = PreviewWindowOf(editor_);
    EXPECT_TRUE(preview == nullptr || !preview->isVisible());
    EXPECT_EQ(editor_.HistoryCaptions(), QStringList{"Open"});
    editor_.Save(editor_.Path("saved.bmp"));
    EXPECT_EQ(LargestDifference(editor_.Read(editor_.Path("saved.bmp")), scene), 0);
    // The next press places the window for its own slider.
    Press();
    EXPECT_TRUE(PreviewWindowOf(editor_)->isVisible());
    const QPoint panels = editor_.Get<TabControl>("TabControl_Effects").mapToGlobal(QPoint());
    EXPECT_NEAR(PreviewWindowOf(editor_)->frameGeometry().right(), panels.x() + 13, 20);
    QTest::mouseRelease(&slider_, Qt::LeftButton, Qt::NoModifier, Thumb());
}

} // namespace
} // namespace pictorel
