// A folder of a test's own, removed with the object, and short ways to look at files in it.
#pragma once

#include <stdlib.h> // NOLINT(modernize-deprecated-headers): mkdtemp

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace pictorel::test {

class TemporaryFolder {
  public:
    TemporaryFolder() : path_((std::filesystem::temp_directory_path() / "objects-test-XXXXXX").string()) {
        if (::mkdtemp(path_.data()) == nullptr) {
            throw std::runtime_error("There is no temporary folder.");
        }
    }
    ~TemporaryFolder() {
        std::error_code error;
        std::filesystem::remove_all(path_, error);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    std::string Path(std::string_view name) const { return path_ + '/' + std::string(name); }

    std::string Make(std::string_view name, std::string_view content) const {
        std::string path = Path(name);
        std::filesystem::create_directories(std::filesystem::path(path).parent_path());
        std::ofstream(path, std::ios::binary) << content;
        return path;
    }

    // The names of all that is in the folder, in order.
    std::vector<std::string> Names() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(path_)) {
            names.push_back(entry.path().filename().string());
        }
        std::sort(names.begin(), names.end());
        return names;
    }

  private:
    std::string path_;
};

inline std::string ContentOf(const std::string& fileName) {
    std::ifstream file(fileName, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace pictorel::test
