// JPEG files made and read by libjpeg itself, see MadeJpeg.h.
#include "picture/codecs/MadeJpeg.h"

#include <jpeglib.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

namespace pictorel::codecs::testing {
namespace {

// The library's own errors are faults of a test here: it is not asked to do anything doubtful.
void Fail(j_common_ptr library) {
    std::array<char, JMSG_LENGTH_MAX> text{};
    library->err->format_message(library, text.data());
    std::fprintf(stderr, "libjpeg: %s\n", text.data());
    std::abort();
}

struct Space {
    J_COLOR_SPACE in;
    J_COLOR_SPACE stored;
    int inComponents;
};

Space SpaceOf(JpegSpace space) {
    constexpr std::array<Space, 5> kSpaces{{{JCS_GRAYSCALE, JCS_GRAYSCALE, 1},
                                            {JCS_EXT_BGRX, JCS_RGB, 4},
                                            {JCS_EXT_BGRX, JCS_YCbCr, 4},
                                            {JCS_CMYK, JCS_CMYK, 4},
                                            {JCS_CMYK, JCS_YCCK, 4}}};
    return kSpaces[static_cast<std::size_t>(space)];
}

} // namespace

ByteBuffer MadeJpeg(const PixelArray& picture, const JpegRecipe& recipe) {
    jpeg_compress_struct library{};
    jpeg_error_mgr errors{};
    library.err = jpeg_std_error(&errors);
    errors.error_exit = Fail;
    jpeg_create_compress(&library);
    unsigned char* memory = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&library, &memory, &size);
    const Space space = SpaceOf(recipe.space);
    library.image_width = static_cast<JDIMENSION>(picture.Width());
    library.image_height = static_cast<JDIMENSION>(picture.Height());
    library.input_components = space.inComponents;
    library.in_color_space = space.in;
    jpeg_set_defaults(&library);
    jpeg_set_colorspace(&library, space.stored);
    jpeg_set_quality(&library, recipe.quality, TRUE);
    library.comp_info[0].h_samp_factor = recipe.sampling[0];
    library.comp_info[0].v_samp_factor = recipe.sampling[1];
    library.restart_in_rows = recipe.restartRows;
    library.restart_interval = static_cast<unsigned>(recipe.restartInterval);
    library.arith_code = recipe.arithmetic ? TRUE : FALSE;
    if (recipe.progressive) {
        jpeg_simple_progression(&library);
    }
    if (!recipe.adobeMarker) {
        library.write_Adobe_marker = FALSE;
    }
    if (recipe.density > 0) {
        library.density_unit = static_cast<UINT8>(recipe.densityUnit);
        library.X_density = library.Y_density = static_cast<UINT16>(recipe.density);
    }
    jpeg_start_compress(&library, TRUE);
    for (const JpegMarker& marker : recipe.markers) {
        jpeg_write_marker(&library, marker.marker, marker.payload.data(),
                          static_cast<unsigned>(marker.payload.size()));
    }
    if (!recipe.icc.empty()) {
        jpeg_write_icc_profile(&library, recipe.icc.data(), static_cast<unsigned>(recipe.icc.size()));
    }
    std::vector<JSAMPLE> greys(static_cast<std::size_t>(picture.Width()));
    while (library.next_scanline < library.image_height) {
        const std::uint8_t* pixels = picture.Row(static_cast<int>(library.next_scanline));
        for (std::size_t x = 0; x < greys.size(); ++x) {
            greys[x] = pixels[x * 4 + 1];
        }
        JSAMPROW row = recipe.space == JpegSpace::Grey ? greys.data() : const_cast<JSAMPROW>(pixels);
        jpeg_write_scanlines(&library, &row, 1);
    }
    jpeg_finish_compress(&library);
    jpeg_destroy_compress(&library);
    ByteBuffer file(memory, memory + size);
    std::free(memory);
    return file;
}

ByteBuffer MadeGradientJpeg(int width, int height, const Samplings& samplings, const JpegRecipe& recipe) {
    jpeg_compress_struct library{};
    jpeg_error_mgr errors{};
    library.err = jpeg_std_error(&errors);
    errors.error_exit = Fail;
    jpeg_create_compress(&library);
    unsigned char* memory = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&library, &memory, &size);
    library.image_width = static_cast<JDIMENSION>(width);
    library.image_height = static_cast<JDIMENSION>(height);
    library.input_components = 3;
    library.in_color_space = SpaceOf(recipe.space).stored;
    jpeg_set_defaults(&library);
    jpeg_set_colorspace(&library, library.in_color_space);
    jpeg_set_quality(&library, 100, TRUE);
    library.raw_data_in = TRUE;
    if (recipe.progressive) {
        jpeg_simple_progression(&library);
    }
    int widest = 1;
    int tallest = 1;
    for (std::size_t c = 0; c < samplings.size(); ++c) {
        library.comp_info[c].h_samp_factor = samplings[c][0];
        library.comp_info[c].v_samp_factor = samplings[c][1];
        widest = std::max(widest, samplings[c][0]);
        tallest = std::max(tallest, samplings[c][1]);
    }
    jpeg_start_compress(&library, TRUE);
    while (library.next_scanline < library.image_height) {
        std::array<std::vector<std::vector<JSAMPLE>>, 3> planes;
        std::array<std::vector<JSAMPROW>, 3> rows;
        std::array<JSAMPARRAY, 3> arrays{};
        for (std::size_t c = 0; c < planes.size(); ++c) {
            const double stepX = 1.0 * widest / samplings[c][0];
            const double stepY = 1.0 * tallest / samplings[c][1];
            for (int j = 0; j < samplings[c][1] * DCTSIZE; ++j) {
                auto& row = planes[c].emplace_back(library.comp_info[c].width_in_blocks * DCTSIZE +
                                                   std::size_t{MAX_SAMP_FACTOR} * DCTSIZE);
                for (std::size_t i = 0; i < row.size(); ++i) {
                    const double x = (static_cast<double>(i) + 0.5) * stepX - 0.5;
                    const double y = library.next_scanline + (j + 0.5) * stepY - 0.5;
                    row[i] =
                        static_cast<JSAMPLE>(std::clamp(GradientLevel(static_cast<int>(c), x, y), 0, 255));
                }
            }
            for (auto& row : planes[c]) {
                rows[c].push_back(row.data());
            }
            arrays[c] = rows[c].data();
        }
        jpeg_write_raw_data(&library, arrays.data(), static_cast<JDIMENSION>(tallest * DCTSIZE));
    }
    jpeg_finish_compress(&library);
    jpeg_destroy_compress(&library);
    ByteBuffer file(memory, memory + size);
    std::free(memory);
    return file;
}

PixelArray LibraryPixels(ByteView file) {
    jpeg_decompress_struct library{};
    jpeg_error_mgr errors{};
    library.err = jpeg_std_error(&errors);
    errors.error_exit = Fail;
    errors.output_message = [](j_common_ptr) {};
    jpeg_create_decompress(&library);
    jpeg_mem_src(&library, file.data(), file.size());
    jpeg_read_header(&library, TRUE);
    library.out_color_space = library.num_components == 4 ? JCS_CMYK : JCS_EXT_BGRA;
    jpeg_start_decompress(&library);
    PixelArray picture(static_cast<int>(library.output_width), static_cast<int>(library.output_height));
    std::uint8_t* const rows = picture.WritableRows();
    while (library.output_scanline < library.output_height) {
        JSAMPROW row = rows + static_cast<std::ptrdiff_t>(library.output_scanline) * picture.Stride();
        jpeg_read_scanlines(&library, &row, 1);
    }
    jpeg_destroy_decompress(&library);
    return picture;
}

PixelArray MadePicture(int width, int height) {
    PixelArray picture(width, height);
    std::uint8_t* const rows = picture.WritableRows();
    std::uint32_t noise = 12345;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            noise = noise * 1664525U + 1013904223U;
            const double wave = 60 * std::sin(x * 0.05 + 2 * std::sin(y * 0.03));
            const int grain = static_cast<int>(noise >> 28);
            const int edge = (x / 37 + y / 23) % 5 == 0 ? 70 : 0;
            const std::array<int, 4> pixel{static_cast<int>(90 + wave) + grain + x % 60,
                                           60 + edge + grain + y % 90,
                                           static_cast<int>(120 - wave) + edge - grain, 255};
            for (std::size_t i = 0; i < pixel.size(); ++i) {
                rows[y * picture.Stride() + x * 4 + static_cast<int>(i)] =
                    static_cast<std::uint8_t>(std::clamp(pixel[i], 0, 255));
            }
        }
    }
    return picture;
}

PixelArray MadeNoise(int width, int height) {
    PixelArray picture(width, height);
    std::uint8_t* const rows = picture.WritableRows();
    std::uint32_t noise = 99;
    for (int y = 0; y < height; ++y) {
        for (int i = 0; i < width * 4; ++i) {
            noise = noise * 1664525U + 1013904223U;
            rows[y * picture.Stride() + i] = static_cast<std::uint8_t>(noise >> 24);
        }
    }
    return picture;
}

PixelArray Solid(int width, int height, std::array<std::uint8_t, 4> pixel) {
    PixelArray picture(width, height);
    std::uint8_t* const rows = picture.WritableRows();
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            std::copy(pixel.begin(), pixel.end(), rows + y * picture.Stride() + x * 4);
        }
    }
    return picture;
}

int Difference(const PixelArray& a, const PixelArray& b, int rows) {
    if (a.Width() != b.Width() || a.Height() != b.Height()) {
        return 256;
    }
    int largest = 0;
    for (int y = 0; y < rows; ++y) {
        for (std::size_t i = 0; i < a.RowBytes(); ++i) {
            largest = std::max(largest, std::abs(int{a.Row(y)[i]} - int{b.Row(y)[i]}));
        }
    }
    return largest;
}

} // namespace pictorel::codecs::testing
