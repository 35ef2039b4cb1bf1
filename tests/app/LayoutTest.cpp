// Where the layout puts the controls for a given outer size, and which fit it chooses.
#include "app/EditorWindow.h"

#include <gtest/gtest.h>

namespace pictorel {
namespace {

struct PlaceCase {
    const char* name;
    int index;
    float left, top, width, height; // -1: not looked at
};

TEST(Layout, PlacesEverythingFromTheOuterSize) {
    EditorWindow editor;
    editor.Window().showNormal();
    const QSize frame = editor.Window().frameGeometry().size() - editor.Window().size();
    editor.Window().resize(QSize(1046, 865) - frame);
    ASSERT_TRUE(editor.WaitUntil([&] { return editor.Window().frameGeometry().size() == QSize(1046, 865); }));
    for (const PlaceCase& c : {
             PlaceCase{"TabControl_Effects", 0, 10335, -1, -1, 8660},
             PlaceCase{"HistoryList", 0, 10335, 9910, -1, -1},
             PlaceCase{"Resizer_Adjustments", 0, -1, -1, -1, 6880},
             PlaceCase{"Resizer_Filters", 0, -1, -1, -1, 6880},
             PlaceCase{"Resizer_Effects", 0, -1, -1, -1, 6880},
             PlaceCase{"Resizer_Resize", 0, -1, -1, -1, 6810},
             PlaceCase{"ScrollBar_ImageY", 0, 9835, -1, -1, 10595},
             PlaceCase{"ScrollBar_ImageX", 0, -1, 11525, 9735, -1},
             PlaceCase{"ImageView", 0, -1, -1, 9735, 10575},
             PlaceCase{"ProgressBar", 0, -1, 11115, 9635, -1},
             PlaceCase{"GroupBox_Canves1", 0, -1, 11950, 10135, -1},
             PlaceCase{"GroupBox_Canves2", 0, 2740, -1, -1, -1},
             PlaceCase{"Cmd_Recommend", 0, 14990, -1, -1, -1},
             PlaceCase{"Cmd_Recommend", 1, 14560, -1, -1, -1},
         }) {
        const Control& control = editor.Get<Control>(c.name, c.index);
        const auto same = [&](float wanted, float have) { return wanted < 0 || wanted == have; };
        EXPECT_TRUE(same(c.left, control.Left()) && same(c.top, control.Top()) &&
                    same(c.width, control.Width()) && same(c.height, control.Height()))
            << c.name << ": " << control.Left() << " " << control.Top() << " " << control.Width() << " "
            << control.Height();
    }
}

TEST(Layout, AWindowTooSmallKeepsTheLastPlaces) {
    EditorWindow editor;
    editor.Window().showNormal();
    editor.Window().resize(300, 200);
    ASSERT_TRUE(editor.WaitUntil([&] { return editor.Window().width() == 300; }));
    EXPECT_GE(editor.Get<Control>("ImageView").Width(), 0);
    editor.Window().resize(1300, 900);
    ASSERT_TRUE(editor.WaitUntil([&] { return editor.Window().width() == 1300; }));
    EXPECT_GT(editor.Get<Control>("ImageView").Width(), 9000);
}

TEST(Layout, ASmallPictureIsShownAtActualSizeAndALargeOneFits) {
    EditorWindow editor;
    editor.Open(editor.MakeFile("small.bmp", MakeScene(200, 100)));
    editor.Window().showNormal();
    editor.Window().resize(1200, 800);
    ASSERT_TRUE(editor.WaitUntil([&] { return editor.View().Zoom() == 1.0; }));
    editor.Open(editor.MakeFile("large.bmp", MakeScene(3000, 2000)));
    editor.Window().resize(1100, 800);
    ASSERT_TRUE(editor.WaitUntil([&] { return editor.View().Zoom() < 0.5; }));
}

} // namespace
} // namespace pictorel
