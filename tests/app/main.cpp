// Runs the window's tests with a Qt application that needs no screen.
#include <QApplication>
#include <QStyleFactory>
#include <gtest/gtest.h>

int main(int count, char** words) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("SANE_CONFIG_DIR", "/nowhere"); // no test looks for real scanners
    qputenv("PICTOREL_UPDATE_URL", "");     // no start here asks the network
    testing::InitGoogleTest(&count, words);
    const QApplication application(count, words);
    QApplication::setApplicationVersion(QStringLiteral("2.0.5"));
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QApplication::setQuitOnLastWindowClosed(false);
    return RUN_ALL_TESTS();
}
