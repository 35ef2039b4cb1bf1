// The scanner of the tests: the library's own virtual device, set up in a private folder.
#pragma once

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <string>

namespace pictorel {

// While it lives, the scanners of this process and of those it starts are `devices` virtual ones with a glass
// of 20 x 20 mm, in the state that the settings give, each a line of the device's file ("three-pass true").
class TestScanner {
  public:
    explicit TestScanner(std::initializer_list<const char*> settings = {}, int devices = 1,
                         const char* driver = "test") {
        std::filesystem::create_directory(folder_);
        std::ofstream(folder_ / "dll.conf") << driver << '\n';
        std::ofstream file(folder_ / "test.conf");
        file << "number_of_devices " << devices
             << "\ngeometry_min 0.0\ngeometry_max 20.0\nbr_x 10.0\nbr_y 10.0\n"
             << "geometry_quant 1.0\nresolution_min 1.0\nresolution_max 1200.0\nresolution_quant 1.0\n"
             << "resolution 50.0\ntest-picture \"Color pattern\"\n";
        for (const char* const setting : settings) {
            file << setting << '\n';
        }
        ::setenv("SANE_CONFIG_DIR", folder_.c_str(), 1);
        // The virtual device keeps some of its buffers. Read by programs that this process starts.
        ::setenv("ASAN_OPTIONS", "detect_leaks=0", 1);
    }
    ~TestScanner() { std::filesystem::remove_all(folder_); }
    TestScanner(const TestScanner&) = delete;
    TestScanner& operator=(const TestScanner&) = delete;

  private:
    // The library looks at the variable once a process, so the folder is always the same one.
    std::filesystem::path folder_ =
        std::filesystem::temp_directory_path() / ("test-scanner-" + std::to_string(::getpid()));
};

inline constexpr int kTestPageSide = 157; // pixels; 20 mm at 200 dpi

} // namespace pictorel
