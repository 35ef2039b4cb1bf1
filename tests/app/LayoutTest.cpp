// Where the layout puts the controls for a given outer size, and which fit it chooses.
#include "app/EditorWindow.h"
#include "controls/ContainerPanel.h"
#include "controls/SkinColours.h"
#include "controls/TabControl.h"

#include <QScrollBar>
#include <QTest>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

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

// At 1024 x 768 the pages are as high as their frame lets them be, and nothing on them has to be scrolled to.
TEST(Layout, PagesOfToolsFillTheirFrame) {
    EditorWindow editor;
    editor.Window().showNormal();
    editor.Window().resize(1024, 768);
    QTest::qWait(20);
    auto& tabs = editor.Get<TabControl>("TabControl_Effects");
    const char* const pages[] = {"Resizer_Adjustments", "Resizer_Filters", "Resizer_Effects",
                                 "Resizer_Resize"};
    for (int page = 0; page < 4; ++page) {
        tabs.SelectTab(page);
        QTest::qWait(1);
        auto& panel = editor.Get<ContainerPanel>(pages[page]);
        const int below = tabs.height() - (panel.y() + panel.height());
        EXPECT_TRUE(below >= 1 && below <= 8) << pages[page] << " ends " << below << " above the frame";
        EXPECT_FALSE(panel.verticalScrollBar()->isVisible()) << pages[page];
    }
}

// Luminance contrast as WCAG defines it.
double Contrast(const QColor& a, const QColor& b) {
    const auto luminance = [](const QColor& colour) {
        const auto linear = [](double c) {
            return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
               0.0722 * linear(colour.blueF());
    };
    const double one = luminance(a) + 0.05;
    const double other = luminance(b) + 0.05;
    return std::max(one, other) / std::min(one, other);
}

TEST(Layout, CanBeRead) {
    EditorWindow editor;
    const QPalette colours = editor.Window().palette();
    for (const auto group : {QPalette::Active, QPalette::Disabled}) {
        const double least = group == QPalette::Active ? 4.5 : 3.0;
        for (const auto& [text, behind] : {std::pair{QPalette::WindowText, QPalette::Window},
                                           {QPalette::WindowText, QPalette::Base},
                                           {QPalette::Text, QPalette::Base},
                                           {QPalette::ButtonText, QPalette::Button}}) {
            EXPECT_GE(Contrast(colours.color(group, text), colours.color(behind)), least)
                << text << " " << group;
        }
    }
    for (const auto behind : {QPalette::Window, QPalette::Base}) {
        EXPECT_GE(Contrast(EdgeColour(colours), colours.color(behind)), 3.0);
        EXPECT_GE(Contrast(QuietTextColour(colours), colours.color(behind)), 4.5);
    }
}

} // namespace
} // namespace pictorel
