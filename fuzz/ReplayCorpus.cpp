// Runs the fuzz target once on every file of the folders named: the corpus as a test, with a bound on its
// memory.
#include <sys/resource.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
#ifdef PICTOREL_WITH_METAFILES
extern "C" int LLVMFuzzerInitialize(int* count, char*** words);
#endif

namespace {

// What the limits let a file of a few kilobytes cost: pictures that small files may honestly be, in the
// memory of a library that takes four bytes a sample.
constexpr long kMostKilobytes = 1200L << 10;

int Replay(const std::filesystem::path& folder) {
    int files = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (!entry.is_regular_file()) {
            continue;
        }
        std::ifstream in(entry.path(), std::ios::binary);
        const std::vector<char> bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
        std::printf("%s\n",
                    entry.path().filename().c_str()); // before it runs: the last one named is the culprit
        std::fflush(stdout);
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
        ++files;
    }
    return files;
}

} // namespace

int main(int count, char** arguments) {
    int files = 0;
#ifdef PICTOREL_WITH_METAFILES
    LLVMFuzzerInitialize(&count, &arguments);
#endif
    for (int i = 1; i < count; ++i) {
        files += Replay(arguments[i]);
    }
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    std::printf("%d files, %ld MB at most\n", files, usage.ru_maxrss >> 10);
    return files > 0 && usage.ru_maxrss <= kMostKilobytes ? 0 : 1;
}
