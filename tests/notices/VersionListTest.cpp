// The version check against a real server: what it asks, and what it makes of every way of answering.
#include "controls/WebBrowser.h"
#include "notices/LocalServer.h"
#include "notices/UpdateCheck.h"

#include <QElapsedTimer>
#include <QTcpSocket>
#include <QTest>
#include <gtest/gtest.h>

namespace pictorel {
namespace {

constexpr int kBound = 3000;  // milliseconds that a load may take
constexpr int kMargin = 1000; // of a busy machine
constexpr int kQuick = 1000;

struct Titles : StringTable {
    QString address;

    using StringTable::Entry;
    QString Entry(int number) const override {
        return number == static_cast<int>(Text::Title) ? QStringLiteral("Photo Thing") : address;
    }
};

class VersionList : public testing::Test {
  protected:
    // Milliseconds that the check against the server's page took; its outcome is in `available`.
    qint64 Check(const QString& address) {
        strings.address = address;
        QElapsedTimer timer;
        timer.start();
        available = check.CheckForUpdate(browser);
        return timer.elapsed();
    }

    Titles strings;
    WebBrowser browser{nullptr};
    UpdateCheck check{strings, QStringLiteral("2.0")};
    bool available = false;
};

TEST_F(VersionList, IsAskedForWithTheProductAndItsVersion) {
    QByteArray asked;
    LocalServer server([&](QTcpSocket& client, const QByteArray& path) {
        asked = path;
        client.write(LocalServer::Page("9.9/New/\n"));
    });
    EXPECT_LT(Check(server.Address("/list?of=ProductName&at=version")), kQuick);
    EXPECT_EQ(asked, "/list?of=Photo%20Thing&at=2.0");
    EXPECT_TRUE(available);
    EXPECT_TRUE(check.UpdateNotes.startsWith(" Version 9.9\r\n"));
}

TEST_F(VersionList, EveryPageThatAnnouncesNothingIsQuick) {
    const QByteArray huge = "9.9/" + QByteArray(300000, 'x') + "/";
    for (const QByteArray& answer :
         {LocalServer::Page("0"), LocalServer::Page(""), LocalServer::Page(" \r\n0\r\n "),
          LocalServer::Page("2.0/Same/"), LocalServer::Page(huge), LocalServer::Page("9.9/\xFF\xFE/"),
          LocalServer::Page("9.9/x/", "image/png"),
          QByteArray("HTTP/1.1 404 Not Found\r\nContent-Length: 6\r\nConnection: close\r\n\r\n9.9/x/"),
          QByteArray("HTTP/1.1 200 OK\r\nContent-Length: 100\r\nConnection: close\r\n\r\n9.9/cut off/"),
          QByteArray("this is no web server\r\n\r\n")}) {
        LocalServer server([&](QTcpSocket& client, const QByteArray&) {
            client.write(answer);
            client.disconnectFromHost();
        });
        EXPECT_LT(Check(server.Address()), kQuick) << answer.left(80).toStdString();
        EXPECT_FALSE(available) << answer.left(80).toStdString();
    }
}

TEST_F(VersionList, RedirectsAreFollowedButNotForEver) {
    LocalServer server([](QTcpSocket& client, const QByteArray& path) {
        const int left = path.mid(1).toInt();
        client.write(left == 0 ? LocalServer::Page("<html><body><p>9.9/New/</p></body></html>", "text/html")
                               : LocalServer::Redirect("/" + QByteArray::number(left - 1)));
    });
    Check(server.Address("/4"));
    EXPECT_TRUE(available);
    Check(server.Address("/40"));
    EXPECT_FALSE(available);
    EXPECT_LT(server.Requests(), 20); // of 46 that the chains ask for
}

TEST_F(VersionList, ABadAddressIsNoDelay) {
    quint16 freePort = 0;
    {
        QTcpServer server;
        server.listen(QHostAddress::LocalHost);
        freePort = server.serverPort();
    }
    for (const QString& address : {QStringLiteral("http://127.0.0.1:%1/").arg(freePort), QString(),
                                   QStringLiteral("file:///etc/passwd"), QStringLiteral("http://"),
                                   QStringLiteral("no address"), QStringLiteral("gopher://127.0.0.1/")}) {
        EXPECT_LT(Check(address), kQuick) << address.toStdString();
        EXPECT_FALSE(available);
    }
}

TEST_F(VersionList, AServerThatHangsOrTricklesIsLeftAfterTheBoundAndTheWindowLives) {
    for (const bool trickles : {false, true}) {
        LocalServer server([&](QTcpSocket& client, const QByteArray&) {
            auto* const drip = new QTimer(&client);
            QObject::connect(drip, &QTimer::timeout, &client, [&client] { client.write("x"); });
            if (trickles) {
                client.write("HTTP/1.1 200 OK\r\nContent-Length: 100000\r\n\r\n9.9/New/\r\n");
                drip->start(100);
            }
        });
        int ticks = 0;
        QTimer life;
        QObject::connect(&life, &QTimer::timeout, [&] { ++ticks; });
        life.start(50);
        const qint64 took = Check(server.Address());
        EXPECT_GE(took, kBound - 100);
        EXPECT_LT(took, kBound + kMargin);
        EXPECT_FALSE(available);
        EXPECT_GT(ticks, 20);
    }
}

TEST_F(VersionList, AStoppedLoadEndsTheWaitAtOnce) {
    LocalServer server([](QTcpSocket&, const QByteArray&) {});
    QTimer::singleShot(100, [&] { browser.Stop(); });
    EXPECT_LT(Check(server.Address()), kQuick);
    EXPECT_FALSE(available);
}

TEST_F(VersionList, ThePersonMayNameAnotherListOrNone) {
    LocalServer server(
        [](QTcpSocket& client, const QByteArray&) { client.write(LocalServer::Page("9.9/New/")); });
    qputenv("PICTOREL_UPDATE_URL", server.Address().toLatin1());
    Check(QStringLiteral("http://127.0.0.1:1/"));
    EXPECT_TRUE(available);
    qputenv("PICTOREL_UPDATE_URL", "");
    Check(server.Address());
    EXPECT_FALSE(available);
    EXPECT_EQ(server.Requests(), 1);
    qunsetenv("PICTOREL_UPDATE_URL");
}

} // namespace
} // namespace pictorel
