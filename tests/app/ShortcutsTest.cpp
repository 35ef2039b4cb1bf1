// Keys that click buttons: from every control, only while the button can be clicked.
#include "app/EditorWindow.h"
#include "controls/EditField.h"
#include "controls/RadioButton.h"
#include "controls/Slider.h"
#include "notices/frmAbout.h"

#include <QHelpEvent>
#include <QTest>
#include <QToolTip>
#include <gtest/gtest.h>

namespace pictorel {
namespace {

class Keys : public testing::Test {
  protected:
    // The shortcut map looks at the active window, so the key goes in where a window system would put it.
    void Press(int key, Qt::KeyboardModifiers modifiers = Qt::ControlModifier) {
        editor.Window().activateWindow();
        editor.WaitUntil([&] { return editor.Window().isActiveWindow(); });
        QTest::keyClick(editor.Window().windowHandle(), static_cast<Qt::Key>(key), modifiers);
        QTest::qWait(1);
    }
    void OpenScene() { editor.Open(editor.MakeFile("scene.bmp", MakeScene(400, 300))); }

    EditorWindow editor;
};

TEST_F(Keys, OpenSaveUndoRedo) {
    editor.person.WillChooseFile(editor.MakeFile("scene.bmp", MakeScene(400, 300)));
    Press(Qt::Key_O);
    ASSERT_EQ(editor.HistoryCaptions(), QStringList{"Open"});
    editor.Click("Cmd_Tab", 2);
    Press(Qt::Key_Z);
    EXPECT_EQ(editor.ActiveRow(), 0);
    Press(Qt::Key_Y);
    EXPECT_EQ(editor.ActiveRow(), 1);
    Press(Qt::Key_Z);
    Press(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(editor.ActiveRow(), 1);
    editor.person.WillChooseFile(editor.Path("saved.png"));
    Press(Qt::Key_S);
    EXPECT_EQ(LargestDifference(editor.Read(editor.Path("saved.png")), editor.Shown()), 0);
}

TEST_F(Keys, Zoom) {
    OpenScene();
    ImageView& view = editor.View();
    Press(Qt::Key_0);
    EXPECT_GT(view.Zoom(), 1.0);
    Press(Qt::Key_1);
    EXPECT_EQ(view.Zoom(), 1.0);
    Press(Qt::Key_Plus);
    EXPECT_EQ(view.Zoom(), 1.25);
    Press(Qt::Key_Equal);
    EXPECT_EQ(view.Zoom(), 1.6);
    Press(Qt::Key_Minus);
    EXPECT_EQ(view.Zoom(), 1.25);
    Press(Qt::Key_Plus, Qt::ControlModifier | Qt::KeypadModifier);
    EXPECT_EQ(view.Zoom(), 1.6);
}

TEST_F(Keys, AboutComesUp) {
    bool seen = false;
    QTimer::singleShot(100, [&] {
        QWidget* const about = QApplication::activeModalWidget();
        seen = qobject_cast<frmAbout*>(about) != nullptr;
        if (about != nullptr) {
            about->close();
        }
    });
    Press(Qt::Key_F1, Qt::NoModifier);
    EXPECT_TRUE(seen);
}

TEST_F(Keys, DoNothingWithoutAPicture) {
    for (const int key : {Qt::Key_S, Qt::Key_Z, Qt::Key_Y, Qt::Key_P, Qt::Key_0, Qt::Key_1, Qt::Key_Plus}) {
        Press(key);
    }
    EXPECT_EQ(editor.History().Count(), 0);
    EXPECT_EQ(editor.View().Zoom(), 1.0);
    EXPECT_TRUE(editor.person.Messages().empty());
}

TEST_F(Keys, WorkFromEveryControl) {
    OpenScene();
    int tried = 0;
    for (QWidget* const widget : editor.Window().findChildren<QWidget*>()) {
        if (widget->focusPolicy() == Qt::NoFocus || !widget->isVisible() || !widget->isEnabled()) {
            continue;
        }
        widget->setFocus(Qt::TabFocusReason);
        editor.View().SetZoom(2.0);
        Press(Qt::Key_1);
        EXPECT_EQ(editor.View().Zoom(), 1.0) << widget->objectName().toStdString();
        ++tried;
    }
    EXPECT_GT(tried, 30);
}

TEST_F(Keys, UndoIsThePicturesUnlessAFieldIsBeingEdited) {
    OpenScene();
    editor.Click("Cmd_Tab", 2);
    editor.Get<TabControl>("TabControl_Effects").SelectTab(3);
    editor.Get<RadioButton>("RadioButton_Resize", 3).click();
    auto& box = editor.Get<EditField>("Txt_ResizePercent");
    box.setFocus();
    Press(Qt::Key_Z);
    EXPECT_EQ(editor.ActiveRow(), 0) << "nothing was typed";
    Press(Qt::Key_Y);
    ASSERT_EQ(editor.ActiveRow(), 1);
    QTest::keyClick(&box, Qt::Key_Backspace);
    ASSERT_EQ(box.text(), "10");
    Press(Qt::Key_Z);
    EXPECT_EQ(box.text(), "100");
    EXPECT_EQ(editor.ActiveRow(), 1) << "the typing was taken back";
    Press(Qt::Key_Z);
    EXPECT_EQ(editor.ActiveRow(), 0) << "nothing is left to take back in the field";
}

TEST_F(Keys, WaitForTheMouseToBeLetGo) {
    OpenScene();
    editor.Click("Cmd_Tab", 2);
    auto& slider = editor.Get<Slider>("Slider_Tab", 0);
    // As a window system reports it, so that the application knows of the held button.
    QWindow* const window = editor.Window().windowHandle();
    const QPoint thumb = slider.mapTo(&editor.Window(), slider.rect().center());
    QTest::mousePress(window, Qt::LeftButton, {}, thumb);
    QTest::mouseMove(window, thumb + QPoint(20, 0));
    Press(Qt::Key_Z);
    EXPECT_EQ(editor.ActiveRow(), 1);
    QTest::mouseRelease(window, Qt::LeftButton, {}, thumb + QPoint(20, 0));
    QTest::qWait(1);
    EXPECT_EQ(editor.HistoryCaptions(), (QStringList{"Open", "Invert", "Brightness"}));
}

TEST_F(Keys, StandInTheToolTips) {
    const auto shown = [&](const char* name, int index) {
        PushButton& button = editor.Get(name, index);
        QHelpEvent event(QEvent::ToolTip, button.rect().center(), button.mapToGlobal(button.rect().center()));
        QToolTip::hideText();
        QApplication::sendEvent(&button, &event);
        return QToolTip::text();
    };
    EXPECT_EQ(shown("Cmd_Panel", 0), "Open (Ctrl+O)"); // a disabled button tells as well
    EXPECT_EQ(shown("Cmd_Panel", 3), "Redo (Ctrl+Y)");
    EXPECT_EQ(shown("Cmd_ZoomIn", 0), "Zoom In (Ctrl++)");
    EXPECT_EQ(shown("Cmd_FlipV", 0), "Flip Vertical");
}

} // namespace
} // namespace pictorel
