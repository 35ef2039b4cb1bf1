// Runs the tests with a Qt application that needs no screen.
#include <QApplication>
#include <gtest/gtest.h>

int main(int count, char** words) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleTest(&count, words);
    const QApplication application(count, words);
    return RUN_ALL_TESTS();
}
