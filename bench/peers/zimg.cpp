// zimg: three byte planes, Lanczos with three lobes, two threads of one half each. Taking the pixels apart
// into planes and together again is not counted, to its advantage.
#include "PeerMain.h"

#include <zimg.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <thread>

namespace {

struct Planes {
    int width, height;
    std::ptrdiff_t stride;
    std::array<std::uint8_t*, 3> data;

    Planes(int w, int h) : width(w), height(h), stride((w + 63) / 64 * 64), data{} {
        for (auto& plane : data) {
            plane = static_cast<std::uint8_t*>(std::aligned_alloc(64, static_cast<std::size_t>(stride) * h));
        }
    }
};

zimg_image_format Format(int width, int height) {
    zimg_image_format format;
    zimg_image_format_default(&format, ZIMG_API_VERSION);
    format.width = static_cast<unsigned>(width);
    format.height = static_cast<unsigned>(height);
    format.pixel_type = ZIMG_PIXEL_BYTE;
    format.color_family = ZIMG_COLOR_RGB;
    format.matrix_coefficients = ZIMG_MATRIX_RGB;
    format.pixel_range = ZIMG_RANGE_FULL;
    return format;
}

void ResizeHalf(const Planes& from, const Planes& to, int top, int bottom) {
    zimg_image_format in = Format(from.width, from.height);
    const double rows = static_cast<double>(from.height) / to.height;
    in.active_region = {0, top * rows, static_cast<double>(from.width), (bottom - top) * rows};
    const zimg_image_format out = Format(to.width, bottom - top);
    zimg_graph_builder_params parameters;
    zimg_graph_builder_params_default(&parameters, ZIMG_API_VERSION);
    parameters.resample_filter = ZIMG_RESIZE_LANCZOS;
    parameters.filter_param_a = 3;
    parameters.dither_type = ZIMG_DITHER_NONE;
    zimg_filter_graph* const graph = zimg_filter_graph_build(&in, &out, &parameters);
    std::size_t size = 0;
    zimg_filter_graph_get_tmp_size(graph, &size);
    void* const work = std::aligned_alloc(64, (size + 63) / 64 * 64);
    zimg_image_buffer_const source{};
    zimg_image_buffer target{};
    source.version = target.version = ZIMG_API_VERSION;
    for (int p = 0; p < 3; ++p) {
        source.plane[p] = {from.data[p], from.stride, ZIMG_BUFFER_MAX};
        target.plane[p] = {to.data[p] + top * to.stride, to.stride, ZIMG_BUFFER_MAX};
    }
    zimg_filter_graph_process(graph, &source, &target, work, nullptr, nullptr, nullptr, nullptr);
    std::free(work);
    zimg_filter_graph_free(graph);
}

} // namespace

int main(int, char* words[]) {
    Planes from(std::atoi(words[2]), std::atoi(words[3]));
    Planes to(std::atoi(words[4]), std::atoi(words[5]));
    std::vector<std::uint8_t> packed(static_cast<std::size_t>(from.width) * from.height * 4);
    std::ifstream(words[1], std::ios::binary)
        .read(reinterpret_cast<char*>(packed.data()), static_cast<std::streamsize>(packed.size()));
    for (std::size_t i = 0; i < packed.size() / 4; ++i) {
        const auto at = static_cast<std::ptrdiff_t>(i / from.width) * from.stride +
                        static_cast<std::ptrdiff_t>(i % from.width);
        for (int p = 0; p < 3; ++p) {
            from.data[p][at] = packed[4 * i + p];
        }
    }
    const int status = RunPeer("zimg", words, [&](Job&) {
        const int middle = to.height / 2;
        std::thread upper([&] { ResizeHalf(from, to, 0, middle); });
        ResizeHalf(from, to, middle, to.height);
        upper.join();
    });
    std::vector<std::uint8_t> result(static_cast<std::size_t>(to.width) * to.height * 4, 255);
    for (std::size_t i = 0; i < result.size() / 4; ++i) {
        const auto at =
            static_cast<std::ptrdiff_t>(i / to.width) * to.stride + static_cast<std::ptrdiff_t>(i % to.width);
        for (int p = 0; p < 3; ++p) {
            result[4 * i + p] = to.data[p][at];
        }
    }
    std::ofstream(words[6], std::ios::binary)
        .write(reinterpret_cast<const char*>(result.data()), static_cast<std::streamsize>(result.size()));
    return status;
}
