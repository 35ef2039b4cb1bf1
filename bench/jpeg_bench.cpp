// Compares our JPEG codec with libjpeg-turbo on one thread, on the same picture in one run: the shortest of
// several interleaved runs each, and their ratio; processor time too, since it stays true on a busy machine.
// Usage: jpeg_bench [runs [picture.ppm]].
#include "PpmFile.h"
#include "picture/ForEachBand.h"
#include "picture/codecs/jpeg/JpegCodec.h"

#include <jpeglib.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <functional>
#include <limits>
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

namespace {

using pictorel::PixelArray;
using pictorel::codecs::ByteBuffer;
using pictorel::codecs::ByteView;

std::uint32_t Hash(std::uint32_t x) {
    x = (x ^ x >> 16) * 0x7FEB352DU;
    x = (x ^ x >> 15) * 0x846CA68BU;
    return x ^ x >> 16;
}

// Smooth light, structure at several scales, edges, and the grain of a sensor after demosaicing: mostly
// common to the three colours.
PixelArray MadePhoto(int width, int height) {
    PixelArray photo(width, height);
    std::uint8_t* const rows = photo.WritableRows();
    pictorel::ForEachBand(height, photo.RowBytes() * 16, [&](int first, int end) {
        for (int y = first; y < end; ++y) {
            std::uint8_t* pixel = rows + y * photo.Stride();
            for (int x = 0; x < width; ++x, pixel += 4) {
                const float u = static_cast<float>(x) / static_cast<float>(width);
                const float v = static_cast<float>(y) / static_cast<float>(width);
                const float waves =
                    26 * std::sin(u * 830 + 6 * std::sin(v * 140)) * std::sin(v * 640 + u * 190) +
                    14 * std::sin(u * 90 + v * 60);
                const bool sky = v < 0.25F + 0.05F * std::sin(u * 11);
                const bool wall = !sky && u > 0.7F && std::fmod(u * 55 + v * 18, 2.0F) < 1;
                const float light = sky ? 150 + 60 * v : 70 + 60 * u + waves + (wall ? 70 : 0);
                const std::uint32_t noise =
                    Hash(static_cast<std::uint32_t>(y) << 16 ^ static_cast<std::uint32_t>(x));
                const auto grain = [noise](int shift) {
                    return static_cast<float>((noise >> shift & 15) + (noise >> (shift + 4) & 15)) - 15;
                };
                const float tint[3] = {sky ? 60.0F : -25.0F, 0, sky ? -40.0F : 15.0F};
                for (int c = 0; c < 3; ++c) {
                    const float value = light + tint[c] + 0.5F * grain(24) + 0.2F * grain(8 * c);
                    pixel[c] = static_cast<std::uint8_t>(std::clamp(std::lround(value), 0L, 255L));
                }
                pixel[3] = 255;
            }
        }
    });
    return photo;
}

// The library alone, into memory that is already there.
std::size_t LibraryEncode(const PixelArray& picture, int quality, int sampling, ByteBuffer& room) {
    jpeg_compress_struct library{};
    jpeg_error_mgr errors{};
    library.err = jpeg_std_error(&errors);
    jpeg_create_compress(&library);
    unsigned char* memory = room.data();
    unsigned long size = room.size();
    jpeg_mem_dest(&library, &memory, &size);
    library.image_width = static_cast<JDIMENSION>(picture.Width());
    library.image_height = static_cast<JDIMENSION>(picture.Height());
    library.input_components = 4;
    library.in_color_space = JCS_EXT_BGRX;
    jpeg_set_defaults(&library);
    jpeg_set_quality(&library, quality, TRUE);
    library.comp_info[0].h_samp_factor = sampling;
    library.comp_info[0].v_samp_factor = sampling;
    jpeg_start_compress(&library, TRUE);
    while (library.next_scanline < library.image_height) {
        auto* row = const_cast<JSAMPROW>(picture.Row(static_cast<int>(library.next_scanline)));
        jpeg_write_scanlines(&library, &row, 1);
    }
    jpeg_finish_compress(&library);
    jpeg_destroy_compress(&library);
    return size;
}

void LibraryDecode(ByteView file, PixelArray& picture) {
    jpeg_decompress_struct library{};
    jpeg_error_mgr errors{};
    library.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&library);
    jpeg_mem_src(&library, file.data(), file.size());
    jpeg_read_header(&library, TRUE);
    library.out_color_space = JCS_EXT_BGRA;
    jpeg_start_decompress(&library);
    std::uint8_t* const rows = picture.WritableRows();
    while (library.output_scanline < library.output_height) {
        JSAMPROW row = rows + static_cast<std::ptrdiff_t>(library.output_scanline) * picture.Stride();
        jpeg_read_scanlines(&library, &row, 1);
    }
    jpeg_finish_decompress(&library);
    jpeg_destroy_decompress(&library);
}

struct Times { // in milliseconds
    double elapsed = std::numeric_limits<double>::max();
    double processor = std::numeric_limits<double>::max(); // of all threads together

    void Measure(const std::function<void()>& work) {
        const auto start = std::chrono::steady_clock::now();
        const std::clock_t startProcessor = std::clock();
        work();
        const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - start;
        const double used = 1000.0 * static_cast<double>(std::clock() - startProcessor) / CLOCKS_PER_SEC;
        elapsed = std::min(elapsed, took.count());
        processor = std::min(processor, used);
    }
};

void Compare(const char* what, int runs, const std::function<void()>& library,
             const std::function<void()>& ours) {
    library(); // the first round warms up
    ours();
    Times theirTimes;
    Times ourTimes;
    for (int i = 0; i < runs; ++i) {
        theirTimes.Measure(library);
        ourTimes.Measure(ours);
    }
    std::printf("%-40s %7.1f %7.1f ms %6.3f   %7.1f %7.1f ms %6.3f\n", what, theirTimes.elapsed,
                ourTimes.elapsed, ourTimes.elapsed / theirTimes.elapsed, theirTimes.processor,
                ourTimes.processor, ourTimes.processor / theirTimes.processor);
}

void Run(int runs, const PixelArray& photo) {
    using namespace pictorel::codecs;
    ByteBuffer room(photo.RowBytes() * static_cast<std::size_t>(photo.Height()) * 2);
    PixelArray pixels(photo.Width(), photo.Height());
    const ByteBuffer working = WriteJpeg(photo, {100, true});
    std::printf(
        "%d x %d; working file of %zu bytes; elapsed, then processor time of\n"
        "libjpeg-turbo on one thread, of ours, and their ratio\n",
        photo.Width(), photo.Height(), working.size());
    const auto encodePlain = [&] { LibraryEncode(photo, 100, 1, room); };
    Compare("encode working file / plain 4:4:4 q100", runs, encodePlain, [&] {
        WriteJpeg(photo, {100, true});
    });
    Compare("encode picture file / plain 4:4:4 q100", runs, encodePlain, [&] {
        WriteJpeg(photo, {100, false});
    });
    Compare(
        "decode working file", runs, [&] { LibraryDecode(working, pixels); },
        [&] { ReadJpeg(working, {true}); });
    for (const auto& [name, quality, sampling] :
         {std::tuple("decode plain 4:4:4 q100", 100, 1), std::tuple("decode plain 4:2:0 q90", 90, 2)}) {
        const ByteView plain(room.data(), LibraryEncode(photo, quality, sampling, room));
        Compare(
            name, runs, [&] { LibraryDecode(plain, pixels); }, [&] { ReadJpeg(plain, {}); });
    }
}

} // namespace

int main(int argc, char** argv) {
    try {
        Run(argc > 1 ? std::atoi(argv[1]) : 7,
            argc > 2 ? pictorel::bench::ReadPpm(argv[2]) : MadePhoto(6000, 4000));
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
