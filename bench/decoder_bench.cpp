// What the decoder's room costs: a file decoded here, through the decoder program, and, where it is a JPEG
// file, by libjpeg-turbo on one thread; the shortest and the middle of interleaved runs, and their ratios.
// Usage: decoder_bench picture [runs].
#include "editor/decoding/DecoderProcess.h"
#include "picture/BufferPool.h"
#include "picture/codecs/Codec.h"

#include <turbojpeg.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace {

using pictorel::PixelArray;

// Of the picture in every large page at least, as the view would.
unsigned Touch(const PixelArray& picture) {
    unsigned sum = 0;
    for (int y = 0; y < picture.Height(); y += 16) {
        sum += picture.Row(y)[0];
    }
    return sum;
}

pictorel::codecs::ByteBuffer ContentOf(const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    pictorel::codecs::ByteBuffer bytes(std::filesystem::file_size(name));
    file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return bytes;
}

unsigned Inside(const std::string& name) {
    const auto bytes = ContentOf(name);
    const auto* const codec = pictorel::codecs::FindCodecByContent(bytes);
    return codec == nullptr ? 0 : Touch(codec->read(bytes, {}));
}

unsigned ThroughTheRoom(pictorel::DecoderProcess& decoder, const std::string& name) {
    const auto picture = decoder.Decode(name);
    return picture ? Touch(*picture) : 0;
}

// Into memory that it had before, as its own measuring program does.
unsigned ByTurbo(const std::string& name, PixelArray& picture) {
    const auto bytes = ContentOf(name);
    const tjhandle handle = tjInitDecompress();
    int width = 0;
    int height = 0;
    int sampling = 0;
    int space = 0;
    tjDecompressHeader3(handle, bytes.data(), bytes.size(), &width, &height, &sampling, &space);
    if (picture.Width() != width || picture.Height() != height) {
        picture = PixelArray(width, height);
    }
    tjDecompress2(handle, bytes.data(), bytes.size(), picture.WritableRows(), width,
                  static_cast<int>(picture.Stride()), height, TJPF_BGRA, 0);
    tjDestroy(handle);
    return Touch(picture);
}

struct Contestant {
    const char* name;
    std::function<unsigned()> run;
    std::vector<double> milliseconds;
};

} // namespace

int main(int count, char** words) {
    if (count < 2) {
        std::fputs("Usage: decoder_bench picture [runs]\n", stderr);
        return EXIT_FAILURE;
    }
    const std::string name = words[1];
    const int runs = count > 2 ? std::atoi(words[2]) : 15;
    const auto folder = std::filesystem::canonical("/proc/self/exe").parent_path();
    pictorel::DecoderProcess decoder((folder / "pictorel_decoder").string());
    PixelArray ofTurbo;
    std::vector<Contestant> contestants;
    if (name.ends_with(".jpg")) {
        contestants.push_back({"libjpeg-turbo, one thread", [&] { return ByTurbo(name, ofTurbo); }, {}});
    }
    contestants.push_back({"inside", [&] { return Inside(name); }, {}});
    contestants.push_back({"through the room", [&] { return ThroughTheRoom(decoder, name); }, {}});
    for (int i = 0; i < runs; ++i) {
        for (Contestant& contestant : contestants) {
            // Fresh memory for ours, as at the first picture; the program for the next has time to start.
            pictorel::TrimBufferPool();
            std::this_thread::sleep_for(std::chrono::milliseconds(150));
            const auto start = std::chrono::steady_clock::now();
            contestant.run();
            const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
            contestant.milliseconds.push_back(time.count());
        }
    }
    for (Contestant& contestant : contestants) {
        auto& all = contestant.milliseconds;
        std::sort(all.begin(), all.end());
        auto& first = contestants.front().milliseconds;
        std::printf("%-26s least %7.1f ms (%.2f)  middle %7.1f ms\n", contestant.name, all.front(),
                    all.front() / *std::min_element(first.begin(), first.end()), all[all.size() / 2]);
    }
    return EXIT_SUCCESS;
}
