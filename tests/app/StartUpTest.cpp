// What the window looks like after start-up, before a picture is open.
#include "app/EditorWindow.h"
#include "controls/ComboBox.h"
#include "controls/TabControl.h"

#include <QDir>
#include <QHeaderView>
#include <QImage>
#include <QUrl>
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
        EXPECT_EQ(window.Start().Form_Load({QString::fromLatin1(words), {}}), StartResult::Started) << words;
        window.close();
    }
}

// A picture on the disk before there is an editor to write it.
class StartWithFile : public testing::Test {
  protected:
    QString MakeFile(const QString& name, int width) {
        QImage(width, 60, QImage::Format_RGB32).save(Path(name));
        return Path(name);
    }
    QString Path(const QString& name) const { return folder_.filePath(name); }

  private:
    QTemporaryDir folder_;
};

TEST_F(StartWithFile, OpensItAsSoonAsTheWindowIsReadyAndShowsNoNotices) {
    EditorWindow editor(CommandLine{{}, {MakeFile("a b #1.png", 80)}});
    EXPECT_TRUE(editor.WaitUntil([&] { return editor.HistoryCaptions() == QStringList{"Open"}; }, 500));
    EXPECT_EQ(editor.Shown().Width(), 80);
    EXPECT_EQ(editor.Document().OpenDialogFolder, Path("a b #1.png"));
    auto* const tag = editor.Window().findChild<PopupControl*>(QStringLiteral("PopupControl_Tag"));
    EXPECT_FALSE(editor.WaitUntil([&] { return tag->CurrentState() != PopupControl::Closed; }, 800));
    EXPECT_FALSE(editor.Get("Cmd_Panel", 0).IsHighlighted());
    EXPECT_TRUE(editor.person.Messages().empty());
}

TEST_F(StartWithFile, TakesTheFirstOfSeveralAndSaysWhichWereLeft) {
    EditorWindow editor(CommandLine{{}, {MakeFile("one.png", 80), MakeFile("two.png", 90)}});
    EXPECT_TRUE(editor.WaitUntil([&] { return !editor.person.Messages().empty(); }));
    EXPECT_EQ(editor.Shown().Width(), 80);
    EXPECT_TRUE(editor.person.Messages().front().text.contains("two.png"));
}

TEST_F(StartWithFile, SaysWhyNothingIsOpened) {
    const QString words = Path("words.png");
    QFile file(words);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("no picture at all");
    file.close();
    for (const auto& [path, says] : {std::pair{Path("absent.png"), "no file"},
                                     {Path("."), "folder"},
                                     {words, "Unsupported file format!"}}) {
        EditorWindow editor(CommandLine{{}, {path}});
        EXPECT_TRUE(editor.WaitUntil([&] { return !editor.person.Messages().empty(); }));
        EXPECT_TRUE(editor.person.Messages().front().text.contains(says)) << path.toStdString();
        EXPECT_EQ(editor.person.Messages().size(), 1U);
        EXPECT_TRUE(editor.Shown().IsEmpty());
        EXPECT_TRUE(editor.Get("Cmd_Panel", 0).IsEnabled());
    }
}

TEST_F(StartWithFile, WordsThatNameNoFileMeanNothing) {
    struct Case {
        QStringList words;
        QStringList files;
    };
    for (const Case& c : {
             Case{{}, {}},
             {{"homepage"}, {}},
             {{"Homepage", "please"}, {}},
             {{""}, {}},
             {{"--unknown"}, {}},
             {{"-x.png"}, {}},
             {{"--", "-x.png"}, {QDir::current().filePath("-x.png")}},
             {{"absent.JPG"}, {QDir::current().filePath("absent.JPG")}},
             {{"absent.webp", "absent.txt"}, {QDir::current().filePath("absent.webp")}},
             {{"no/such/file"}, {QDir::current().filePath("no/such/file")}},
             {{Path("there.png")}, {Path("there.png")}},
             {{QUrl::fromLocalFile(Path("a b")).toString(QUrl::FullyEncoded)}, {Path("a b")}},
         }) {
        const CommandLine commandLine = ReadCommandLine(c.words);
        EXPECT_EQ(commandLine.files, c.files) << c.words.join(' ').toStdString();
        EXPECT_EQ(commandLine.text, c.words.join(' '));
    }
}

TEST(CommandLine, HelpAndVersionArePrinted) {
    const auto answer = [](const QStringList& words) {
        return PrintedAnswer(words, QStringLiteral("9.8.7"), [] { return QStringLiteral("Walls\n"); })
            .value_or(QString());
    };
    EXPECT_TRUE(answer({"--version"}).startsWith("Pictorel 9.8.7\nQt 6."));
    EXPECT_TRUE(answer({"--version"}).endsWith("\nWalls\n"));
    EXPECT_EQ(answer({"photo.jpg", "-v"}), answer({"--version"}));
    EXPECT_TRUE(answer({"--help"}).contains("homepage"));
    EXPECT_EQ(answer({"-h"}), answer({"--help"}));
    EXPECT_EQ(answer({"--", "--help"}), QString());
    EXPECT_EQ(answer({"help", "--Version", "homepage"}), QString());
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
