// A folder in which other people's programs judge files that we wrote.
#pragma once

#include "picture/codecs/Codec.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

namespace pictorel::codecs::testing {

class JudgeFolder {
  public:
    JudgeFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "pictorel_judge_XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr) {
            throw std::runtime_error("no folder for the judges");
        }
        path_ = pattern;
    }
    ~JudgeFolder() { std::filesystem::remove_all(path_); }
    JudgeFolder(const JudgeFolder&) = delete;
    JudgeFolder& operator=(const JudgeFolder&) = delete;

    std::filesystem::path PathOf(const std::string& name) const { return path_ / name; }

    void Save(const std::string& name, const ByteBuffer& bytes) const {
        std::ofstream(PathOf(name), std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    }

    // The exit code of a command of the shell, run in the folder.
    int Run(const std::string& command) const {
        return std::system(("cd '" + path_.string() + "' && " + command + " >/dev/null 2>&1").c_str());
    }

  private:
    std::filesystem::path path_;
};

} // namespace pictorel::codecs::testing
