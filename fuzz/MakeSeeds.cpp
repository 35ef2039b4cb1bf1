// Writes a few small pictures in every format that the editor writes: make_seeds FOLDER fills FOLDER/FORMAT/.
#include "picture/codecs/Codec.h"
#ifdef PICTOREL_WITH_METAFILES
#include "picture/metafile/Metafile.h"
#endif

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

using pictorel::PixelArray;

struct Seed {
    const char* name;
    int width;
    int height;
    int step; // between the colours of neighbours: 0 is one colour, which makes runs
    bool withAlpha;
    bool withDetails;
};
constexpr Seed kSeeds[] = {
    {"one", 1, 1, 9, false, false},       {"plain", 9, 7, 0, false, false},
    {"colours", 13, 11, 7, false, false}, {"alpha", 10, 9, 5, true, false},
    {"details", 8, 6, 3, false, true},    {"tall", 2, 40, 11, false, false},
    {"large", 48, 33, 1, false, false},
};

PixelArray MakePicture(const Seed& seed) {
    PixelArray picture(seed.width, seed.height);
    std::uint8_t* const rows = picture.WritableRows();
    for (int y = 0; y < seed.height; ++y) {
        for (int x = 0; x < seed.width; ++x) {
            std::uint8_t* const pixel = rows + y * picture.Stride() + x * PixelArray::kComponents;
            pixel[0] = static_cast<std::uint8_t>(40 + seed.step * x);
            pixel[1] = static_cast<std::uint8_t>(200 - seed.step * y);
            pixel[2] = static_cast<std::uint8_t>(seed.step * (x + y));
            pixel[3] = seed.withAlpha ? static_cast<std::uint8_t>(30 * x) : std::uint8_t{255};
        }
    }
    picture.SetHasAlpha(seed.withAlpha);
    if (seed.withDetails) {
        pictorel::Metadata details;
        details.dotsPerInchX = details.dotsPerInchY = 300;
        details.exif = {'I', 'I', 42, 0, 8, 0, 0, 0, 1, 0, 0x12, 1, 3, 0, 1, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0};
        picture.SetDetails(std::move(details));
    }
    return picture;
}

} // namespace

int main(int count, char** arguments) {
    if (count != 2) {
        std::fputs("usage: make_seeds FOLDER\n", stderr);
        return 2;
    }
#ifdef PICTOREL_WITH_METAFILES
    const pictorel::codecs::CodecTable formats(pictorel::metafile::MetafileCodecs());
#else
    const pictorel::codecs::CodecTable formats;
#endif
    for (const auto& codec : formats.Rows()) {
        if (codec.write == nullptr) {
            continue;
        }
        std::string extension(codec.extension);
        std::transform(extension.begin(), extension.end(), extension.begin(),
                       [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
        const std::filesystem::path folder = std::filesystem::path(arguments[1]) / extension;
        std::filesystem::create_directories(folder);
        for (const Seed& seed : kSeeds) {
            const auto bytes = codec.write(MakePicture(seed), {});
            std::ofstream out(folder / seed.name, std::ios::binary);
            out.write(reinterpret_cast<const char*>(bytes.data()),
                      static_cast<std::streamsize>(bytes.size()));
        }
    }
    return 0;
}
