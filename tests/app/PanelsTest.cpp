// One-click buttons, resets, rotate and flip through the window.
#include "app/EditorWindow.h"
#include "controls/Label.h"
#include "controls/Slider.h"

#include <gtest/gtest.h>

namespace pictorel {
namespace {

TEST(Panels, InvertTwiceGivesBackThePicture) {
    EditorWindow editor;
    const PixelArray scene = MakeScene(120, 90);
    editor.Open(editor.MakeFile("scene.bmp", scene));
    editor.Click("Cmd_Tab", 2);
    EXPECT_EQ(editor.Shown().Row(5)[8], 255 - scene.Row(5)[8]);
    editor.Click("Cmd_Tab", 2);
    EXPECT_EQ(LargestDifference(editor.Shown(), scene), 0);
    EXPECT_EQ(editor.HistoryCaptions(), (QStringList{"Open", "Invert", "Invert"}));
}

TEST(Panels, EveryOneClickButtonChangesThePictureAndNamesItsRow) {
    EditorWindow editor;
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
    EditorWindow editor;
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
    EditorWindow editor;
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
    EditorWindow editor;
    editor.Open(editor.MakeFile("scene.bmp", MakeScene(120, 90)));
    editor.Click("Cmd_ZoomIn");
    const double zoom = editor.View().Zoom();
    const QString info = editor.Get<Label>("lbl_ImageInfo").Caption();
    editor.Click("Cmd_FlipV");
    editor.Click("Cmd_FlipH");
    EXPECT_EQ(editor.View().Zoom(), zoom);
    EXPECT_EQ(editor.Get<Label>("lbl_ImageInfo").Caption(), info);
    EXPECT_EQ(editor.HistoryCaptions(), (QStringList{"Open", "Flip Vertical", "Flip Horizontal"}));
}

} // namespace
} // namespace pictorel
