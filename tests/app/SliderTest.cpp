// Sliders through the window: preview while held, commit on release.
#include "app/Editor.h"
#include "controls/Label.h"
#include "controls/Slider.h"

#include <QTest>
#include <gtest/gtest.h>

namespace pictorel {
namespace {

QWidget* PreviewWindowOf(Editor& editor) {
    return editor.Window().findChild<QWidget*>(QStringLiteral("frmPreview"));
}

TEST(Sliders, PreviewWhileHeldAndCommitOnRelease) {
    Editor editor;
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
    Editor editor;
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
    Editor editor;
    editor.Open(editor.MakeFile("scene.bmp", MakeScene(1000, 750)));
    editor.Click("Cmd_ZoomFit");
    auto& slider = editor.Get<Slider>("Slider_Tab", 18);
    emit slider.Pressed();
    EXPECT_EQ(editor.Document().PreviewPixels.Width(), 250);
    EXPECT_EQ(editor.Document().PreviewPixels.Height(), 188);
    EXPECT_DOUBLE_EQ(editor.Document().PreviewPixels.Reduction(), 0.25);
    emit slider.Released();
}

} // namespace
} // namespace pictorel
