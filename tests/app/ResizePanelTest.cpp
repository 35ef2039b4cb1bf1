// The Resize page through the window.
#include "app/EditorWindow.h"
#include "controls/ComboBox.h"
#include "controls/EditField.h"
#include "controls/Label.h"
#include "controls/RadioButton.h"
#include "controls/UpDown.h"

#include <QTest>
#include <gtest/gtest.h>

namespace pictorel {
namespace {

class ResizePage : public testing::Test {
  protected:
    ResizePage() {
        editor.Open(editor.MakeFile("scene.bmp", MakeScene(1024, 768)));
        editor.Get<TabControl>("TabControl_Effects").SelectTab(3);
    }
    QString NewSize() { return editor.Get<Label>("lbl_Resize", 1).Caption(); }
    void Choose(int mode) { editor.Get<RadioButton>("RadioButton_Resize", mode).click(); }

    // Fields have and lose the focus in an active window only, and dialogs take that away.
    void Activate() {
        editor.Window().activateWindow();
        editor.WaitUntil([&] { return editor.Window().isActiveWindow(); });
    }
    void Type(const char* box, const char* text) {
        Activate();
        auto& field = editor.Get<EditField>(box);
        field.setFocus();
        field.selectAll();
        QTest::keyClicks(&field, text);
    }
    void Leave(const char* box) {
        Activate();
        editor.Get<EditField>(box).setFocus();
        editor.History().setFocus();
    }

    EditorWindow editor;
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

// Pressing "Apply" with the mouse leaves the field its focus.
TEST_F(ResizePage, ApplyTakesWhatWasTypedLast) {
    Choose(2);
    Type("Txt_ImageWidth", "600");
    editor.Click("Cmd_Tab", 3);
    EXPECT_EQ(editor.Shown().Width(), 600);
    EXPECT_EQ(editor.Shown().Height(), 450);
    EXPECT_EQ(editor.HistoryCaptions(), (QStringList{"Open", "Resize"}));
    EXPECT_TRUE(editor.Get("Cmd_Tab", 3).IsEnabled());
}

struct TypedCase {
    const char* box;
    const char* typed;
    const char* shown; // after the field is left
    const char* size;
};

TEST_F(ResizePage, EveryFieldMendsWhatIsNoSizeWhenItIsLeft) {
    for (const TypedCase& c : {
             TypedCase{"Txt_ImageWidth", "0", "1", "1 x 1 pixels"},
             TypedCase{"Txt_ImageWidth", "-5", "1", "1 x 1 pixels"},
             TypedCase{"Txt_ImageWidth", "6000", "1024", "1024 x 768 pixels"},
             TypedCase{"Txt_ImageWidth", "5000", "5000", "5000 x 3750 pixels"},
             TypedCase{"Txt_ImageWidth", "601", "601", "601 x 451 pixels"}, // 450.75; not back to 601.33
             TypedCase{"Txt_ImageHeight", "0", "1", "1 x 1 pixels"},
             TypedCase{"Txt_ImageHeight", "6000", "768", "1024 x 768 pixels"},
             TypedCase{"Txt_ResizePercent", "0", "1", "10 x 8 pixels"},
             TypedCase{"Txt_ResizePercent", "-7", "1", "10 x 8 pixels"},
             TypedCase{"Txt_ResizePercent", "500", "500", "5120 x 3840 pixels"},
         }) {
        Choose(0);
        Choose(QString(c.box) == "Txt_ResizePercent" ? 3 : 2);
        Type(c.box, c.typed);
        Leave(c.box);
        EXPECT_EQ(editor.Get<EditField>(c.box).text(), c.shown) << c.box << " " << c.typed;
        EXPECT_EQ(NewSize(), c.size) << c.box << " " << c.typed;
    }
}

TEST_F(ResizePage, WhatIsPastedOrEmptiedGivesWayToTheLastNumber) {
    Choose(2);
    for (const char* const text : {"", "wide", "-"}) {
        editor.Get<EditField>("Txt_ImageWidth").setText(text);
        Leave("Txt_ImageWidth");
        EXPECT_EQ(editor.Get<EditField>("Txt_ImageWidth").text(), "1024") << text;
        EXPECT_EQ(NewSize(), "1024 x 768 pixels") << text;
    }
}

TEST_F(ResizePage, PassingThroughTheOtherFieldChangesNothing) {
    editor.Open(editor.MakeFile("odd.bmp", MakeScene(1000, 333)));
    Choose(2);
    Type("Txt_ImageWidth", "602");
    Leave("Txt_ImageWidth");
    EXPECT_EQ(NewSize(), "602 x 200 pixels");
    Leave("Txt_ImageHeight");
    EXPECT_EQ(NewSize(), "602 x 200 pixels");
}

TEST_F(ResizePage, SpinnersGoOnFromWhatTheFieldShows) {
    Choose(2);
    Type("Txt_ImageWidth", "600");
    QTest::keyClick(&editor.Get<EditField>("Txt_ImageWidth"), Qt::Key_Up);
    EXPECT_EQ(NewSize(), "601 x 451 pixels");
    QTest::mouseClick(&editor.Get<UpDown>("UpDown_ImageHeight"), Qt::LeftButton, Qt::NoModifier, {9, 20});
    EXPECT_EQ(editor.Get<EditField>("Txt_ImageHeight").text(), "450");
    EXPECT_EQ(NewSize(), "600 x 450 pixels");
}

TEST_F(ResizePage, LockingLetsTheHeightFollowTheWidth) {
    Choose(2);
    editor.Click("Cmd_Tab", 4);
    Type("Txt_ImageHeight", "10");
    Leave("Txt_ImageHeight");
    EXPECT_EQ(NewSize(), "1024 x 10 pixels");
    editor.Click("Cmd_Tab", 4);
    EXPECT_EQ(NewSize(), "1024 x 768 pixels");
    EXPECT_TRUE(editor.Get("Cmd_Tab", 4).IsEnabled());
}

TEST_F(ResizePage, EachModeEnablesItsOwnFieldsAndNoOthers) {
    for (int mode = 0; mode <= 3; ++mode) {
        Choose(mode);
        EXPECT_EQ(editor.Get<ComboBox>("Combo_ResizePredefined").IsEnabled(), mode == 1) << mode;
        EXPECT_EQ(editor.Get<EditField>("Txt_ImageWidth").IsEnabled(), mode == 2) << mode;
        EXPECT_EQ(editor.Get<UpDown>("UpDown_ImageHeight").IsEnabled(), mode == 2) << mode;
        EXPECT_EQ(editor.Get("Cmd_Tab", 4).IsEnabled(), mode == 2) << mode;
        EXPECT_EQ(editor.Get<EditField>("Txt_ResizePercent").IsEnabled(), mode == 3) << mode;
        EXPECT_EQ(editor.Get("Cmd_Tab", 3).IsEnabled(), mode != 0) << mode;
        EXPECT_EQ(editor.Get<ComboBox>("Combo_ResizePredefined").currentIndex(), mode == 1 ? 0 : -1) << mode;
    }
}

TEST_F(ResizePage, EveryPredefinedSizeIsMade) {
    Choose(1);
    auto& list = editor.Get<ComboBox>("Combo_ResizePredefined");
    for (const int row : {3, 7, 8, 19}) {
        list.setCurrentIndex(row);
        editor.Click("Cmd_Tab", 3);
        const QStringList wanted = list.SelectedData().split(u',');
        EXPECT_EQ(editor.Shown().Width(), wanted[0].toInt()) << row;
        EXPECT_EQ(editor.Shown().Height(), wanted[1].toInt()) << row;
    }
    EXPECT_EQ(editor.History().Count(), 5);
}

TEST_F(ResizePage, ASizeAboveTheLimitIsRefusedAndChangesNothing) {
    editor.Open(editor.MakeFile("wide.bmp", MakeScene(9000, 40)));
    const PixelArray before = editor.Shown();
    Choose(3);
    Type("Txt_ResizePercent", "500");
    EXPECT_EQ(NewSize(), "too large");
    editor.Click("Cmd_Tab", 3);
    ASSERT_EQ(editor.person.Messages().size(), 1U);
    EXPECT_TRUE(editor.person.Messages().front().text.contains(QLocale().toString(32767)));
    EXPECT_EQ(LargestDifference(editor.Shown(), before), 0);
    EXPECT_EQ(editor.HistoryCaptions(), QStringList{"Open"});
    EXPECT_FALSE(editor.Document().ImageModified(0));
    // Derived from a side: 200 rows high would be 45,000 columns wide.
    Choose(2);
    Type("Txt_ImageHeight", "200");
    editor.Click("Cmd_Tab", 3);
    EXPECT_EQ(editor.person.Messages().size(), 2U);
    EXPECT_EQ(editor.HistoryCaptions(), QStringList{"Open"});
    // And a size that fits is made afterwards.
    Choose(3);
    Type("Txt_ResizePercent", "1");
    EXPECT_EQ(NewSize(), "90 x 1 pixels"); // 0.4 rows are one
    editor.Click("Cmd_Tab", 3);
    EXPECT_EQ(editor.HistoryCaptions(), (QStringList{"Open", "Resize"}));
}

TEST_F(ResizePage, ASmallResultIsShownInTheMiddleOfTheView) {
    editor.Open(editor.MakeFile("large.bmp", MakeScene(3000, 2000)));
    editor.Click("Cmd_ActualSize");
    editor.Get<ScrollBar>("ScrollBar_ImageX").setValue(400);
    Choose(3);
    Type("Txt_ResizePercent", "5");
    editor.Click("Cmd_Tab", 3);
    EXPECT_EQ(editor.View().Zoom(), 1.0);
    EXPECT_EQ(editor.View().CentreX(), 75);
}

} // namespace
} // namespace pictorel
