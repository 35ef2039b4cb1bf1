// Gives the targets that draw text an application without a screen, since fonts need one.
#include <QGuiApplication>

extern "C" int LLVMFuzzerInitialize(int* /*count*/, char*** /*words*/) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static int count = 1;
    static char name[] = "fuzz";
    static char* words[] = {name, nullptr};
    static const auto* const application = new QGuiApplication(count, words); // lives as long as the process
    return application == nullptr ? 1 : 0;
}
