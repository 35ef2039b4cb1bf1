// Runs the tests with a Qt application that needs no screen: text needs fonts.
#include <QGuiApplication>
#include <gtest/gtest.h>

int main(int count, char** words) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleTest(&count, words);
    const QGuiApplication application(count, words);
    return RUN_ALL_TESTS();
}
