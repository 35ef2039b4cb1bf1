// The notices and side windows around the main window.
#include "app/ApplicationStrings.h"
#include "app/Browser.h"
#include "app/EditorWindow.h"
#include "controls/NoticeWindow.h"
#include "controls/WebBrowser.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QLabel>
#include <QPlainTextEdit>
#include <QScreen>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>
#include <gtest/gtest.h>

namespace pictorel {
namespace {

// Announces version 9.9 at an address that the editor is told to ask.
class VersionList {
  public:
    VersionList() {
        server_.listen(QHostAddress::LocalHost);
        QObject::connect(&server_, &QTcpServer::newConnection, &server_, [this] {
            QTcpSocket* const client = server_.nextPendingConnection();
            QObject::connect(client, &QTcpSocket::readyRead, client, [client] {
                client->write(
                    "HTTP/1.1 200 OK\r\nContent-Type: text/plain\r\nContent-Length: 15\r\n\r\n"
                    "9.9/Wider brush");
                client->disconnectFromHost();
            });
        });
        qputenv("PICTOREL_UPDATE_URL",
                QStringLiteral("http://127.0.0.1:%1/").arg(server_.serverPort()).toLatin1());
    }
    ~VersionList() { qputenv("PICTOREL_UPDATE_URL", ""); }

  private:
    QTcpServer server_;
};

// Runs `act` on the modal window of that name as soon as it is there.
template <typename Act>
void When(const QString& name, Act act) {
    auto* const timer = new QTimer(qApp);
    QObject::connect(timer, &QTimer::timeout, timer, [=] {
        QWidget* const modal = QApplication::activeModalWidget();
        if (modal != nullptr && modal->objectName() == name && modal->isActiveWindow()) {
            timer->deleteLater();
            timer->stop();
            act(*modal);
        }
    });
    timer->start(5);
}

QString Link(int number) {
    return ApplicationStrings().Entry(21 + number);
}

NoticeWindow* ShownNotice() {
    for (QWidget* const window : QApplication::topLevelWidgets()) {
        if (auto* const notice = dynamic_cast<NoticeWindow*>(window); notice != nullptr) {
            return notice;
        }
    }
    return nullptr;
}

TEST(Splash, StandsCentredForItsTimeAndLeavesNothing) {
    frmMain window;
    QRect place;
    QStringList filesWhileShown;
    QTimer look;
    QElapsedTimer shown;
    qint64 last = 0;
    QObject::connect(&look, &QTimer::timeout, [&] {
        const NoticeWindow* const notice = ShownNotice();
        if (notice == nullptr) {
            return;
        }
        if (place.isNull()) {
            shown.start();
            place = notice->geometry();
            filesWhileShown = QDir(window.Document().GetTempFolder()).entryList({"tmp*"});
        }
        last = shown.elapsed();
    });
    look.start(5);
    EXPECT_EQ(window.Start().Form_Load({}), StartResult::Started);
    EXPECT_EQ(place.size(), QSize(579, 403));
    const QPoint off = place.center() - QGuiApplication::primaryScreen()->geometry().center();
    EXPECT_LE(off.manhattanLength(), 2);
    EXPECT_TRUE(filesWhileShown.isEmpty()) << filesWhileShown.join(u' ').toStdString();
    EXPECT_GT(last, 3200); // fades in and out for 500 ms each, stands for 2500 ms
    EXPECT_LT(last, 4500);
    window.close();
}

TEST(Tag, PointsFromTheWindowsCornerAndGoesWhenOpenIsClicked) {
    EditorWindow editor;
    ASSERT_TRUE(editor.WaitUntil([] { return ShownNotice() != nullptr; }));
    EXPECT_EQ(ShownNotice()->geometry(),
              QRect(editor.Window().frameGeometry().topLeft() + QPoint(40, 100), QSize(360, 112)));
    EXPECT_TRUE(ShownNotice()->windowFlags().testFlag(Qt::WindowTransparentForInput));
    editor.person.WillCancelFileDialog();
    editor.Click("Cmd_Panel", 0);
    EXPECT_EQ(ShownNotice(), nullptr);
}

TEST(UpdateNotice, SaysWhatIsNewAndOpensTheDownloadPage) {
    const VersionList list;
    Browser browser;
    QString headline;
    QString notes;
    When(QStringLiteral("frmUpdates"), [&](QWidget& notice) {
        headline = notice.findChild<QLabel*>(QStringLiteral("lbl_UpdateMsg"))->text();
        notes = notice.findChild<QPlainTextEdit*>(QStringLiteral("Txt_UpdateMsg"))->toPlainText();
        QTest::mouseClick(notice.findChild<QWidget*>(QStringLiteral("Cmd_Msg_2")), Qt::LeftButton);
        QTest::mouseClick(notice.findChild<QWidget*>(QStringLiteral("Cmd_Msg_1")), Qt::LeftButton);
    });
    EditorWindow editor;
    EXPECT_EQ(headline, "There is a new version of Pictorel available !");
    EXPECT_EQ(notes.trimmed(), "Version 9.9");
    EXPECT_EQ(browser.asked, QStringList{Link(2)});
    EXPECT_FALSE(editor.WaitUntil([] { return ShownNotice() != nullptr; }, 1200)) << "no tag in this run";
}

TEST(UpdateNotice, EscapeMeansLaterAndStartUpGoesOn) {
    const VersionList list;
    Browser browser;
    When(QStringLiteral("frmUpdates"), [](QWidget& notice) {
        QTest::keyClick(notice.findChild<QWidget*>(QStringLiteral("Cmd_Msg_0")), Qt::Key_Escape);
    });
    EditorWindow editor;
    EXPECT_TRUE(browser.asked.isEmpty());
    EXPECT_TRUE(editor.Get("Cmd_Panel", 0).IsEnabled());
    EXPECT_TRUE(editor.WaitUntil([] { return ShownNotice() != nullptr; })) << "the tag is shown";
}

TEST(VersionCheck, ClosingTheWindowEndsTheWait) {
    QTcpServer silent;
    silent.listen(QHostAddress::LocalHost);
    frmMain window;
    window.show();
    auto* const browser = window.findChild<WebBrowser*>(QStringLiteral("WebBrowser1"));
    QElapsedTimer timer;
    timer.start();
    QTimer::singleShot(100, &window, &QWidget::close);
    browser->Navigate(QStringLiteral("http://127.0.0.1:%1/").arg(silent.serverPort()));
    EXPECT_TRUE(QTest::qWaitFor([&] { return browser->CurrentState() == WebBrowser::Complete; }, 2000));
    EXPECT_FALSE(window.isVisible());
}

TEST(SideWindows, CloseByEscapeByEnterAndByTheirButton) {
    EditorWindow editor;
    struct SideWindow {
        int button; // of the tool bar
        const char* name;
        const char* close;
    };
    for (const SideWindow& side : {SideWindow{7, "frmAbout", "CmdOK"}, {6, "frmTools", "CmdClose"}}) {
        for (const Qt::Key key : {Qt::Key_Escape, Qt::Key_Return, Qt::Key_Enter, Qt::Key_unknown}) {
            bool seen = false;
            When(QString(side.name), [&](QWidget& window) {
                seen = true;
                if (key != Qt::Key_unknown) {
                    QTest::keyClick(window.focusWidget() != nullptr ? window.focusWidget() : &window, key);
                } else {
                    QTest::mouseClick(window.findChild<QWidget*>(QString(side.close)), Qt::LeftButton);
                }
                if (window.isVisible()) {
                    ADD_FAILURE() << side.name << " stays after key " << key;
                    window.close();
                }
            });
            editor.Click("Cmd_Panel", side.button);
            EXPECT_TRUE(seen) << side.name;
        }
    }
}

TEST(SideWindows, OpenTheirLinks) {
    Browser browser;
    EditorWindow editor;
    const auto follow = [](QWidget& window, const char* label) {
        emit window.findChild<QLabel*>(QString(label))->linkActivated(QString());
    };
    QString version;
    When("frmAbout", [&](QWidget& about) {
        version = about.findChild<QLabel*>("lblVersion")->text();
        follow(about, "Lbl_SiteAddress");
        EXPECT_TRUE(about.isVisible());
        about.close();
    });
    editor.Click("Cmd_Panel", 7);
    When("frmTools", [&](QWidget& tools) {
        follow(tools, "Lbl_Tool_4");
        follow(tools, "Lbl_Tool_5");
        tools.close();
    });
    editor.Click("Cmd_Panel", 6);
    editor.Click("Cmd_Recommend", 0);
    editor.Click("Cmd_Recommend", 1);
    for (const int outside : {0, 8}) {
        OpenWebLink(static_cast<std::uint8_t>(outside), ApplicationStrings());
    }
    EXPECT_EQ(version, "Version 2.0");
    EXPECT_EQ(browser.asked, QStringList({Link(1), Link(4), Link(5), Link(7), Link(6)}));
}

TEST(StringTable, LiesOpenInNoProgram) {
    QFile program(QCoreApplication::applicationFilePath());
    ASSERT_TRUE(program.open(QIODevice::ReadOnly));
    const QByteArray bytes = program.readAll();
    int entries = 0;
    for (int number = 13; number <= 40; ++number) { // entry 12, the title, is in the window's design too
        const QString text = ApplicationStrings().Entry(number);
        if (!text.isEmpty()) {
            ++entries;
            EXPECT_FALSE(bytes.contains(text.toUtf8())) << number;
            EXPECT_FALSE(
                bytes.contains(QByteArray(reinterpret_cast<const char*>(text.utf16()), 2 * text.size())))
                << number;
        }
        if (text.startsWith(QStringLiteral("https://"))) {
            EXPECT_FALSE(bytes.contains(QUrl(text).host().toUtf8())) << number;
            EXPECT_TRUE(QUrl(text).host().endsWith(QStringLiteral(".example"))) << number;
        }
    }
    EXPECT_GE(entries, 10);
}

} // namespace
} // namespace pictorel
