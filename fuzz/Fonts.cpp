// Gives the targets that draw text an application without a screen, since fonts need one.
#include <QGuiApplication>

// The font library keeps what it read until the process ends, which a leak checker takes for a leak.
extern "C" const char* __lsan_default_suppressions() { // the checker's own name
    return "leak:libfontconfig\n";
}

extern "C" int LLVMFuzzerInitialize(int* /*count*/, char*** /*words*/) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static int count = 1;
    static char name[] = "fuzz";
    static char* words[] = {name, nullptr};
    static const auto* const application = new QGuiApplication(count, words); // lives as long as the process
    return application == nullptr ? 1 : 0;
}
