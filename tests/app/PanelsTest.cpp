// One-click buttons, resets, rotate and flip, and the Resize page through the window.
#include "app/Editor.h"
#include "controls/ComboBox.h"
#include "controls/EditField.h"
#include "controls/Label.h"
#include "controls/RadioButton.h"
#include "controls/Slider.h"
#include "controls/UpDown.h"

#include <QTest>
#include <gtest/gtest.h>

namespace pictorel {
namespace {

TEST(Panels, InvertTwiceGivesBackThePicture) {
    Editor editor;
    const PixelArray scene = MakeScene(120, 90);
    editor.Open(editor.MakeFile("scene.bmp", scene));
    editor.Click("Cmd_Tab", 2);
    EXPECT_EQ(editor.Shown().Row(5)[8], 255 - scene.Row(5)[8]);
    editor.Click("Cmd_Tab", 2);
    EXPECT_EQ(LargestDifference(editor.Shown(), scene), 0);
    EXPECT_EQ(editor.HistoryCaptions(), (QStringList{"Open", "Invert", "Invert"}));
}

TEST(Panels, EveryOneClickButtonChangesThePictureAndNamesItsRow) {
    Editor editor;
    editor.Open(editor.MakeFile("scene.bmp", MakeScene(120, 90)));
    QStringList expected{"Open"};
    for (const int element : {0, 1, 2, 5, 6}) {
        editor.Get<TabControl>("TabControl_Effects").SelectTab(element < 3 ? 0 : 1);
        const PixelArray before = editor.Shown();
        editor.Click("Cmd_Tab", element);
        expected.append(editor.Get("Cmd_Tab", element).Caption());
        EXPECT_TRUE(editor.Get("Cmd_Tab", element).IsEnabled());
        if (element >= 2) { // the scene's contrast is full already
            EXPECT_GT(LargestDifference(editor.Shown(), before), 20) << element;
        }
    }
    EXPECT_EQ(editor.HistoryCaptions(), expected);
}

TEST(Panels, ResetSetsSlidersAndTextsAndLeavesThePicture) {
    Editor editor;
    editor.Open(editor.MakeFile("scene.bmp", MakeScene(60, 40)));
    const PixelArray before = editor.Shown();
    for (const auto& [slider, value] :
         std::vector<std::pair<int, int>>{{0, 50}, {1, 150}, {10, 7}, {13, 3}, {20, 30}}) {
        editor.Get<Slider>("Slider_Tab", slider).SetValue(value);
    }
    editor.Click("Cmd_Reset", 0);
    EXPECT_EQ(editor.Get<Slider>("Slider_Tab", 0).Value(), 0);
    EXPECT_EQ(editor.Get<Slider>("Slider_Tab", 10).Value(), 128);
    EXPECT_EQ(editor.Get<Label>("lbl_SliderTab", 1).Caption(), QLocale().toString(1.0, 'f', 2));
    EXPECT_EQ(editor.Get<Label>("lbl_SliderTab", 13).Caption(), "255");
    EXPECT_EQ(editor.Get<Slider>("Slider_Tab", 20).Value(), 30); // another page's
    EXPECT_EQ(LargestDifference(editor.Shown(), before), 0);
    EXPECT_EQ(editor.History().Count(), 1);
}

TEST(RotateFlip, FourTurnsRestoreThePictureAndTheLabelsFollow) {
    Editor editor;
    const PixelArray scene = MakeScene(120, 90);
    editor.Open(editor.MakeFile("scene.bmp", scene));
    for (int turn = 1; turn <= 4; ++turn) {
        editor.Click("Cmd_RotateLeft");
        const QString size = turn % 2 == 1 ? "90 x 120" : "120 x 90";
        EXPECT_EQ(editor.Get<Label>("lbl_ImageInfo").Caption(), "(W x H) : " + size);
        EXPECT_EQ(editor.Get<Label>("lbl_Resize", 0).Caption(), size + " pixels");
    }
    EXPECT_EQ(LargestDifference(editor.Shown(), scene), 0);
    EXPECT_EQ(editor.History().Count(), 5);
}

TEST(RotateFlip, AFlipKeepsZoomAndLabels) {
    Editor editor;
    editor.Open(editor.MakeFile("scene.bmp", MakeScene(120, 90)));
    editor.Click("Cmd_ZoomIn");
    const double zoom = editor.Document().Views(0).Zoom();
    const QString info = editor.Get<Label>("lbl_ImageInfo").Caption();
    editor.Click("Cmd_FlipV");
    editor.Click("Cmd_FlipH");
    EXPECT_EQ(editor.Document().Views(0).Zoom(), zoom);
    EXPECT_EQ(editor.Get<Label>("lbl_ImageInfo").Caption(), info);
    EXPECT_EQ(editor.HistoryCaptions(), (QStringList{"Open", "Flip Vertical", "Flip Horizontal"}));
}

class ResizePage : public testing::Test {
  protected:
    ResizePage() {
        editor.Open(editor.MakeFile("scene.bmp", MakeScene(1024, 768)));
        editor.Get<TabControl>("TabControl_Effects").SelectTab(3);
    }
    QString NewSize() { return editor.Get<Label>("lbl_Resize", 1).Caption(); }
    void Choose(int mode) { editor.Get<RadioButton>("RadioButton_Resize", mode).click(); }

    Editor editor;
};

TEST_F(ResizePage, PercentageActsWhileTyping) {
    Choose(3);
    auto& box = editor.Get<EditField>("Txt_ResizePercent");
    for (const auto& [typed, size] : std::vector<std::pair<const char*, const char*>>{
             {"50", "512 x 384 pixels"}, {"33", "338 x 253 pixels"}, {"700", "1024 x 768 pixels"}}) {
        box.selectAll();
        QTest::keyClicks(&box, typed);
        EXPECT_EQ(NewSize(), size) << typed;
    }
    EXPECT_EQ(box.text(), "100");
}

TEST_F(ResizePage, LockedSidesFollowEachOther) {
    Choose(2);
    editor.Get<UpDown>("UpDown_ImageWidth").SetValue(800);
    EXPECT_EQ(editor.Get<EditField>("Txt_ImageHeight").text(), "600");
    EXPECT_EQ(NewSize(), "800 x 600 pixels");
    editor.Click("Cmd_Tab", 4);
    editor.Get<UpDown>("UpDown_ImageWidth").SetValue(100);
    EXPECT_EQ(NewSize(), "100 x 600 pixels");
}

TEST_F(ResizePage, FieldsRefuseWhatIsNoSize) {
    Choose(2);
    auto& box = editor.Get<EditField>("Txt_ImageWidth");
    box.selectAll();
    QTest::keyClicks(&box, "6000");
    EXPECT_EQ(box.text(), "1024");
    box.selectAll();
    QTest::keyClicks(&box, "a-5x-");
    EXPECT_EQ(box.text(), "-5");
    editor.Get<EditField>("Txt_ImageHeight").setFocus();
    box.setFocus();
    emit box.FocusLost();
    EXPECT_EQ(box.text(), "1");
    EXPECT_EQ(editor.Get<UpDown>("UpDown_ImageWidth").Value(), 1);
}

TEST_F(ResizePage, ApplyIsOneHistoryRowOfTheNewSize) {
    Choose(1);
    EXPECT_EQ(NewSize(), "900 x 600 pixels");
    editor.Click("Cmd_Tab", 3);
    EXPECT_EQ(editor.Shown().Width(), 900);
    EXPECT_EQ(editor.Shown().Height(), 600);
    EXPECT_EQ(editor.Get<Label>("lbl_ImageInfo").Caption(), "(W x H) : 900 x 600");
    EXPECT_EQ(editor.Get<Label>("lbl_Resize", 0).Caption(), "900 x 600 pixels");
    EXPECT_EQ(editor.HistoryCaptions(), (QStringList{"Open", "Resize"}));
    Choose(0);
    EXPECT_FALSE(editor.Get("Cmd_Tab", 3).IsEnabled());
    EXPECT_EQ(NewSize(), "900 x 600 pixels");
}

} // namespace
} // namespace pictorel
