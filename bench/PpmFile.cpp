// Reads PPM files, see PpmFile.h.
#include "PpmFile.h"

#include <fstream>
#include <stdexcept>
#include <vector>

namespace pictorel::bench {

PixelArray ReadPpm(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::string magic;
    int width = 0;
    int height = 0;
    int maximum = 0;
    file >> magic >> width >> height >> maximum;
    file.get();
    if (magic != "P6" || maximum != 255) {
        throw std::runtime_error("not a plain 8-bit PPM file: " + path);
    }
    PixelArray picture(width, height);
    std::uint8_t* const rows = picture.WritableRows();
    std::vector<char> row(static_cast<std::size_t>(width) * 3);
    for (int y = 0; y < height; ++y) {
        file.read(row.data(), static_cast<std::streamsize>(row.size()));
        for (int x = 0; x < width; ++x) {
            std::uint8_t* const pixel = rows + y * picture.Stride() + x * 4;
            for (int c = 0; c < 3; ++c) {
                pixel[c] = static_cast<std::uint8_t>(row[static_cast<std::size_t>(x * 3 + 2 - c)]);
            }
            pixel[3] = 255;
        }
    }
    return picture;
}

} // namespace pictorel::bench
