// Times reading and writing of every format beside Qt, ImageMagick and Pillow, on whole files in memory: the
// shortest of several runs each, and ours against the best of the others.
// Usage: formats_bench PICTURE.ppm [RUNS [FORMAT...]].
#include "FormatPeer.h"
#include "PpmFile.h"
#include "picture/ImagingError.h"
#include "picture/metafile/Metafile.h"

#include <QGuiApplication>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <limits>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace {

using namespace pictorel;
using codecs::ByteBuffer;

constexpr double kNone = 0; // milliseconds where a library does not know the format

struct Times {
    double decode = kNone;
    double encode = kNone;
    std::size_t bytes = 0; // written
};

enum Library { kOurs, kQt, kMagick, kPillow, kLibraries };

struct Row {
    std::string format;
    std::array<Times, kLibraries> of{};
};

// The shortest time of some work in milliseconds; kNone where it says that it cannot.
template <class Work>
double Shortest(int runs, const Work& work) {
    double best = std::numeric_limits<double>::max();
    for (int i = 0; i < runs; ++i) {
        const auto start = std::chrono::steady_clock::now();
        if (!work()) {
            return kNone;
        }
        const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - start;
        best = std::min(best, took.count());
    }
    return best;
}

Times MeasureOurs(const codecs::Codec& codec, const PixelArray& picture, const ByteBuffer& file, int runs) {
    Times times;
    times.decode = Shortest(runs, [&] { return !codec.read(file, {}).IsEmpty(); });
    if (codec.write != nullptr) {
        times.encode = Shortest(runs, [&] {
            times.bytes = codec.write(picture, {}).size();
            return true;
        });
    }
    return times;
}

Times MeasurePeer(bench::FormatPeer* peer, const std::string& format, const ByteBuffer& file, int runs) {
    Times times;
    if (peer != nullptr) {
        times.decode = Shortest(runs, [&] { return peer->Decode(format, file); });
        times.encode = Shortest(runs, [&] {
            const auto written = peer->Encode(format);
            times.bytes = written ? written->size() : 0;
            return written.has_value();
        });
    }
    return times;
}

// In a folder of our own, in memory where the machine has such a place.
class WorkFolder {
  public:
    WorkFolder() {
        std::string pattern =
            std::filesystem::exists("/dev/shm") ? "/dev/shm/formats_XXXXXX" : "/tmp/formats_XXXXXX";
        if (mkdtemp(pattern.data()) == nullptr) {
            throw std::runtime_error("cannot make a folder for the files");
        }
        path_ = pattern;
    }
    ~WorkFolder() { std::filesystem::remove_all(path_); }
    WorkFolder(const WorkFolder&) = delete;
    WorkFolder& operator=(const WorkFolder&) = delete;

    void Save(const std::string& name, const ByteBuffer& bytes) const {
        std::ofstream(path_ / name, std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    }
    const std::filesystem::path& Path() const { return path_; }

  private:
    std::filesystem::path path_;
};

// Pillow runs as a program of its own, which times itself.
void MeasurePillow(const WorkFolder& folder, const std::string& script, int runs, std::vector<Row>& rows) {
    std::string command =
        "/usr/bin/python3 '" + script + "' " + folder.Path().string() + ' ' + std::to_string(runs);
    for (const Row& row : rows) {
        command += ' ' + row.format;
    }
    FILE* const pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) {
        return;
    }
    std::array<char, 256> line{};
    while (std::fgets(line.data(), line.size(), pipe) != nullptr) {
        std::istringstream words(line.data());
        std::string format;
        Times times;
        words >> format >> times.decode >> times.encode >> times.bytes;
        for (Row& row : rows) {
            if (row.format == format) {
                row.of[kPillow] = times;
            }
        }
    }
    pclose(pipe);
}

void PrintPart(const Row& row, const char* part, double Times::*time, bool withSize) {
    std::printf("%-4s %-7s", row.format.c_str(), part);
    double best = kNone;
    for (std::size_t i = 0; i < row.of.size(); ++i) {
        const double value = row.of[i].*time;
        if (value == kNone) {
            std::printf("        -");
            continue;
        }
        std::printf(" %8.0f", value);
        if (i != kOurs && (best == kNone || value < best)) {
            best = value;
        }
    }
    best == kNone ? std::printf("      -") : std::printf(" %6.2f", row.of[kOurs].*time / best);
    for (std::size_t i = 0; withSize && i < row.of.size(); ++i) {
        row.of[i].bytes == 0 ? std::printf("      -")
                             : std::printf(" %6.1f", static_cast<double>(row.of[i].bytes) / 1e6);
    }
    std::printf("\n");
}

// What is decoded: ImageMagick's file where it writes the format, since that is nobody's own, else ours.
ByteBuffer FileToDecode(const codecs::Codec& codec, const PixelArray& picture, bench::FormatPeer* magick) {
    const std::string extension(codec.extension);
    if (magick != nullptr && extension != "J2K") { // whose lossless form it does not write
        if (auto file = magick->Encode(extension); file && codec.sniff(*file)) {
            return std::move(*file);
        }
    }
    return codec.write(picture, {});
}

void Run(const std::string& ppm, int runs, const std::vector<std::string>& wanted) {
    const PixelArray picture = bench::ReadPpm(ppm);
    const auto qt = bench::MakeQtPeer(picture);
    const auto magick = bench::MakeMagickPeer(picture);
    const WorkFolder folder;
    std::filesystem::copy_file(ppm, folder.Path() / "picture.ppm");
    std::vector<Row> rows;
    std::vector<codecs::Codec> all(codecs::Codecs().begin(), codecs::Codecs().end());
    all.insert(all.end(), metafile::MetafileCodecs().begin(), metafile::MetafileCodecs().end());
    for (const codecs::Codec& codec : all) {
        const std::string format(codec.extension);
        if (!wanted.empty() && std::find(wanted.begin(), wanted.end(), format) == wanted.end()) {
            continue;
        }
        const ByteBuffer file = FileToDecode(codec, picture, magick.get());
        folder.Save("decode." + format, file);
        Row& row = rows.emplace_back(Row{format});
        row.of[kOurs] = MeasureOurs(codec, picture, file, runs);
        row.of[kQt] = MeasurePeer(qt.get(), format, file, runs);
        row.of[kMagick] = MeasurePeer(magick.get(), format, file, runs);
    }
    MeasurePillow(folder, PICTOREL_BENCH_FOLDER "/formats_pillow.py", runs, rows);
    std::printf(
        "%d x %d, milliseconds, least of %d; ratio of ours to the best of the others; megabytes written\n"
        "             ours       Qt   Magick   Pillow  ratio   ours     Qt Magick Pillow\n",
        picture.Width(), picture.Height(), runs);
    for (const Row& row : rows) {
        PrintPart(row, "decode", &Times::decode, false);
        PrintPart(row, "encode", &Times::encode, true);
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fputs("usage: formats_bench PICTURE.ppm [RUNS [FORMAT...]]\n", stderr);
        return 2;
    }
    setenv("QT_QPA_PLATFORM", "offscreen", 0); // metafiles need fonts, not a screen
    const QGuiApplication application(argc, argv);
    try {
        const int runs = argc > 2 ? std::max(1, std::atoi(argv[2])) : 3;
        Run(argv[1], runs, std::vector<std::string>(argv + std::min(argc, 3), argv + argc));
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
