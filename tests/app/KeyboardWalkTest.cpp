// The window without a mouse and without eyes: the way of the Tab key, and a name for every control.
#include "app/EditorWindow.h"
#include "controls/Label.h"
#include "controls/TabControl.h"

#include <QAccessible>
#include <QTest>
#include <gtest/gtest.h>

namespace pictorel {
namespace {

QStringList WalkFrom(QWidget& start, EditorWindow& editor) {
    QStringList names;
    start.setFocus(Qt::TabFocusReason);
    for (QWidget* at = &start; at != nullptr && names.size() < 100; at = editor.Window().focusWidget()) {
        const QString name = at->objectName().isEmpty() ? at->metaObject()->className() : at->objectName();
        if (names.contains(name)) {
            break;
        }
        names.append(name);
        QTest::keyClick(at, Qt::Key_Tab);
    }
    return names;
}

TEST(KeyboardWalk, GoesAsTheEyeGoes) {
    EditorWindow editor;
    editor.Open(editor.MakeFile("scene.bmp", MakeScene(400, 300)));
    editor.Click("Cmd_Tab", 2);
    editor.Window().activateWindow();
    for (int page = 0; page < 4; ++page) {
        editor.Get<TabControl>("TabControl_Effects").SelectTab(page);
        const QStringList walk = WalkFrom(editor.Get<Control>("Cmd_Panel", 0).Widget(), editor);
        const auto before = [&](const char* first, const char* second) {
            const auto at = walk.indexOf(QString::fromLatin1(first));
            const auto then = walk.indexOf(QString::fromLatin1(second));
            EXPECT_TRUE(at >= 0 && at < then)
                << first << " before " << second << " in " << walk.join(' ').toStdString();
        };
        before("Cmd_Panel_0", "Cmd_Panel_1");
        before("Cmd_Panel_7", "Cmd_Recommend_1");
        before("Cmd_Recommend_1", "Cmd_Recommend_0"); // element 1 stands to the left
        before("Cmd_Recommend_0", "ScrollBar_ImageX_0");
        before("ScrollBar_ImageY_0", "Cmd_RotateRight_0");
        before("Cmd_ZoomOut_0", "Slider_ImageZoom_0");
        before("Slider_ImageZoom_0", "Cmd_ZoomIn_0");
        before("Cmd_ZoomIn_0", "QTabBar");
        before("QTabBar", "HistoryList");
        if (page == 0) {
            before("QTabBar", "Cmd_Tab_0");
            before("Cmd_Tab_2", "Slider_Tab_0");
            before("Slider_Tab_14", "Cmd_Reset_0");
            before("Cmd_Reset_0", "HistoryList");
        } else if (page == 3) {
            before("QTabBar", "RadioButton_Resize_0");
        }
    }
}

TEST(KeyboardWalk, BeginsOnOpen) {
    EditorWindow editor;
    EXPECT_EQ(editor.Window().focusWidget(), &editor.Get("Cmd_Panel", 0));
}

TEST(KeyboardWalk, PagesTurnByKeysAndKeepTheFocusFromFallingElsewhere) {
    EditorWindow editor;
    editor.Open(editor.MakeFile("scene.bmp", MakeScene(400, 300)));
    editor.Window().activateWindow();
    auto& pages = editor.Get<TabControl>("TabControl_Effects");
    editor.Get<Control>("Slider_Tab", 0).Widget().setFocus(Qt::TabFocusReason);
    for (const auto& [key, page] : {std::pair{Qt::Key_PageDown, 1},
                                    {Qt::Key_PageDown, 2},
                                    {Qt::Key_PageUp, 1},
                                    {Qt::Key_PageUp, 0},
                                    {Qt::Key_PageUp, 3},
                                    {Qt::Key_PageDown, 0}}) {
        QTest::keyClick(editor.Window().windowHandle(), key, Qt::ControlModifier);
        EXPECT_EQ(pages.SelectedTab(), page);
        EXPECT_NE(qobject_cast<QTabBar*>(editor.Window().focusWidget()), nullptr);
    }
    editor.Get<Control>("Slider_Tab", 0).Widget().setFocus(Qt::TabFocusReason);
    auto& tabs = *pages.findChild<QTabBar*>();
    QTest::mouseClick(&tabs, Qt::LeftButton, {}, tabs.tabRect(2).center());
    EXPECT_EQ(pages.SelectedTab(), 2);
    EXPECT_EQ(editor.Window().focusWidget(), &tabs);
}

TEST(KeyboardWalk, ScrollBarsMoveThePicture) {
    EditorWindow editor;
    editor.Open(editor.MakeFile("scene.bmp", MakeScene(400, 300)));
    editor.View().SetZoom(8.0);
    for (const char* const name : {"ScrollBar_ImageX", "ScrollBar_ImageY"}) {
        const ShownPart before = editor.View().PartShown();
        QWidget& bar = editor.Get<Control>(name, 0).Widget();
        bar.setFocus(Qt::TabFocusReason);
        QTest::keyClick(&bar, Qt::Key_PageDown);
        const ShownPart after = editor.View().PartShown();
        EXPECT_TRUE(after.left > before.left || after.top > before.top) << name;
    }
}

TEST(KeyboardWalk, EveryControlHasANameThatCanBeSaid) {
    EditorWindow editor;
    editor.Open(editor.MakeFile("scene.bmp", MakeScene(400, 300)));
    int named = 0;
    for (QWidget* const widget : editor.Window().findChildren<QWidget*>()) {
        if (dynamic_cast<Control*>(widget) == nullptr || widget->objectName().startsWith("Line") ||
            widget->objectName().startsWith("Shape") || widget->objectName().startsWith("WebBrowser")) {
            continue; // lines and the hidden page say nothing
        }
        QAccessibleInterface* const spoken = QAccessible::queryAccessibleInterface(widget);
        ASSERT_NE(spoken, nullptr) << widget->objectName().toStdString();
        const auto* const label = qobject_cast<Label*>(widget);
        if (label != nullptr && label->text().isEmpty()) {
            continue;
        }
        EXPECT_FALSE(spoken->text(QAccessible::Name).trimmed().isEmpty())
            << widget->objectName().toStdString();
        ++named;
    }
    EXPECT_GT(named, 150);
}

} // namespace
} // namespace pictorel
