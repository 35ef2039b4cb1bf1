// What the window looks like after start-up, before a picture is open.
#include "app/EditorWindow.h"
#include "controls/ComboBox.h"
#include "controls/TabControl.h"

#include <QHeaderView>
#include <gtest/gtest.h>

namespace pictorel {
namespace {

struct EnabledCase {
    const char* name;
    int index;
    bool enabled;
};

TEST(StartUp, EnablesOnlyWhatNeedsNoPicture) {
    EditorWindow editor;
    for (const EnabledCase& c : {
             EnabledCase{"Cmd_Panel", 0, true},
             {"Cmd_Panel", 1, false},
             {"Cmd_Panel", 2, false},
             {"Cmd_Panel", 3, false},
             {"Cmd_Panel", 4, false},
             {"Cmd_Panel", 5, true},
             {"Cmd_Panel", 6, true},
             {"Cmd_Panel", 7, true},
             {"Cmd_Recommend", 0, true},
             {"Cmd_RotateLeft", 0, false},
             {"Cmd_FlipH", 0, false},
             {"Cmd_ZoomIn", 0, false},
             {"Slider_ImageZoom", 0, false},
             {"HistoryList", 0, false},
             {"Slider_Tab", 0, false},
             {"Slider_Tab", 33, false},
             {"lbl_SliderName", 39, false},
             {"lbl_SliderTab", 5, false},
             {"Cmd_Tab", 2, false},
             {"Cmd_Tab", 4, false},
             {"Cmd_Reset", 1, false},
             {"Cmd_Icon", 11, false},
             {"RadioButton_Resize", 3, false},
             {"GroupBox_Resize", 0, false},
             {"lbl_Resize", 1, false},
             {"Cmd_ResetEffects", 3, true},
             {"TabControl_Effects", 0, true},
             {"lbl_ImageInfo", 0, false},
         }) {
        EXPECT_EQ(editor.Get<Control>(c.name, c.index).IsEnabled(), c.enabled) << c.name << " " << c.index;
    }
    EXPECT_TRUE(editor.person.Messages().empty());
}

TEST(StartUp, OpenBlinksUntilItIsClicked) {
    EditorWindow editor;
    PushButton& open = editor.Get("Cmd_Panel", 0);
    EXPECT_TRUE(editor.WaitUntil([&] { return open.IsHighlighted(); }));
    editor.person.WillCancelFileDialog();
    editor.Click("Cmd_Panel", 0);
    EXPECT_FALSE(open.IsHighlighted());
    EXPECT_FALSE(editor.WaitUntil([&] { return open.IsHighlighted(); }, 1200));
}

TEST(StartUp, HistoryShowsItsFirstColumnOnly) {
    EditorWindow editor;
    EXPECT_EQ(editor.History().header()->hiddenSectionCount(), 2);
    EXPECT_EQ(editor.History().headerItem()->text(0), QStringLiteral("History"));
    EXPECT_EQ(editor.History().Count(), 0);
    EXPECT_EQ(editor.Get<ComboBox>("Combo_ResizePredefined").count(), 20);
}

TEST(StartUp, HomePageIsAskedForByTheExactWordOnly) {
    // Only the refusals can be tried here: the word itself opens a browser.
    for (const char* const words : {"Homepage", "homepage please", " homepage"}) {
        frmMain window;
        QTimer closer;
        QObject::connect(&closer, &QTimer::timeout, [&] {
            window.findChild<PopupControl*>(QStringLiteral("PopupControl_Splash"))->Close();
        });
        closer.start(1);
        EXPECT_EQ(window.Start().Form_Load(QString::fromLatin1(words)), StartResult::Started) << words;
        window.close();
    }
}

TEST(StartUp, EveryControlHasANameOfItsOwn) {
    EditorWindow editor;
    QSet<QString> names;
    for (const QWidget* const widget : editor.Window().findChildren<QWidget*>()) {
        if (dynamic_cast<const Control*>(widget) != nullptr) {
            EXPECT_FALSE(names.contains(widget->objectName())) << widget->objectName().toStdString();
            names.insert(widget->objectName());
        }
    }
    EXPECT_TRUE(names.contains(QStringLiteral("Cmd_Panel_3")));
    EXPECT_TRUE(names.contains(QStringLiteral("HistoryList")));
}

TEST(ControlArrays, AnIndexOutsideNamesTheControl) {
    EditorWindow editor;
    try {
        editor.Window().Controls().Cmd_Panel(8);
        FAIL() << "there is no ninth button";
    } catch (const ControlError& error) {
        EXPECT_NE(std::string(error.what()).find("Cmd_Panel(8)"), std::string::npos);
    }
}

} // namespace
} // namespace pictorel
