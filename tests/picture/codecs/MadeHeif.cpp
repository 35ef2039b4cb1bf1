// HEIF files made by libheif's encoders, see MadeHeif.h.
#include "MadeHeif.h"

#include <libheif/heif.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>

namespace pictorel::codecs::testing {
namespace {

void Check(const heif_error& error) {
    if (error.code != heif_error_Ok) {
        throw std::runtime_error(std::string("the encoder says: ") + error.message);
    }
}

struct Free {
    void operator()(heif_context* context) const { heif_context_free(context); }
    void operator()(heif_image* image) const { heif_image_release(image); }
    void operator()(heif_image_handle* handle) const { heif_image_handle_release(handle); }
    void operator()(heif_encoder* encoder) const { heif_encoder_release(encoder); }
    void operator()(heif_encoding_options* options) const { heif_encoding_options_free(options); }
    void operator()(heif_color_profile_nclx* nclx) const { heif_nclx_color_profile_free(nclx); }
};
template <class T>
using Handle = std::unique_ptr<T, Free>;

Cicp SpaceOf(const HeifRecipe& recipe) {
    return recipe.space.value_or(Cicp{1, 13, 6, true});
}

// Y, Cb, Cr (or G, B, R) of a pixel, each 0..1 of the full range.
std::array<double, 3> PlanesOf(const HeifRecipe& recipe, int x, int y) {
    const auto colour = HeifColour(recipe, x, y);
    const double share = recipe.isPremultiplied ? colour[3] : 1;
    const double red = colour[0] * share;
    const double green = colour[1] * share;
    const double blue = colour[2] * share;
    const int code = SpaceOf(recipe).matrix;
    if (code == 0) {
        return {green, blue, red};
    }
    const double kr = code == 1 ? 0.2126 : code == 9 ? 0.2627 : 0.299;
    const double kb = code == 1 ? 0.0722 : code == 9 ? 0.0593 : 0.114;
    const double luma = kr * red + (1 - kr - kb) * green + kb * blue;
    return {luma, 0.5 + (blue - luma) / (2 * (1 - kb)), 0.5 + (red - luma) / (2 * (1 - kr))};
}

void FillPlane(const HeifRecipe& recipe, heif_image* image, heif_channel channel, int number) {
    const bool isChroma = number == 1 || number == 2;
    const int stepX = isChroma && recipe.chroma != 444 ? 2 : 1;
    const int stepY = isChroma && recipe.chroma == 420 ? 2 : 1;
    const int width = (recipe.width + stepX - 1) / stepX;
    const int height = (recipe.height + stepY - 1) / stepY;
    Check(heif_image_add_plane(image, channel, width, height, recipe.bits));
    int stride = 0;
    std::uint8_t* const rows = heif_image_get_plane(image, channel, &stride);
    const double largest = (1 << recipe.bits) - 1;
    const double unit = (1 << recipe.bits) / 256.0;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            double value = 0;
            for (int i = 0; i < stepX * stepY; ++i) {
                const int atX = std::min(stepX * x + i % stepX, recipe.width - 1);
                const int atY = std::min(stepY * y + i / stepX, recipe.height - 1);
                value += number == 3 ? HeifColour(recipe, atX, atY)[3]
                                     : PlanesOf(recipe, atX, atY)[static_cast<std::size_t>(number)];
            }
            value /= stepX * stepY;
            const bool isNarrow = !SpaceOf(recipe).isFullRange && number != 3;
            const double level = !isNarrow  ? value * largest
                                 : isChroma ? (128 + 224 * (value - 0.5)) * unit
                                            : (16 + 219 * value) * unit;
            const auto sample = static_cast<std::uint16_t>(std::lround(std::clamp(level, 0.0, largest)));
            if (recipe.bits > 8) {
                std::memcpy(rows + y * stride + 2 * x, &sample, 2);
            } else {
                rows[y * stride + x] = static_cast<std::uint8_t>(sample);
            }
        }
    }
}

Handle<heif_image> MakeImage(const HeifRecipe& recipe) {
    const heif_chroma chroma = recipe.chroma == 400   ? heif_chroma_monochrome
                               : recipe.chroma == 420 ? heif_chroma_420
                               : recipe.chroma == 422 ? heif_chroma_422
                                                      : heif_chroma_444;
    heif_image* made = nullptr;
    Check(heif_image_create(recipe.width, recipe.height,
                            recipe.chroma == 400 ? heif_colorspace_monochrome : heif_colorspace_YCbCr, chroma,
                            &made));
    Handle<heif_image> image(made);
    FillPlane(recipe, made, heif_channel_Y, 0);
    if (recipe.chroma != 400) {
        FillPlane(recipe, made, heif_channel_Cb, 1);
        FillPlane(recipe, made, heif_channel_Cr, 2);
    }
    if (recipe.withAlpha) {
        FillPlane(recipe, made, heif_channel_Alpha, 3);
        heif_image_set_premultiplied_alpha(made, recipe.isPremultiplied ? 1 : 0);
    }
    if (!recipe.icc.empty()) {
        Check(heif_image_set_raw_color_profile(made, "prof", recipe.icc.data(), recipe.icc.size()));
    }
    return image;
}

Handle<heif_color_profile_nclx> MakeNclx(const Cicp& space) {
    Handle<heif_color_profile_nclx> nclx(heif_nclx_color_profile_alloc());
    nclx->color_primaries = static_cast<heif_color_primaries>(space.primaries);
    nclx->transfer_characteristics = static_cast<heif_transfer_characteristics>(space.transfer);
    nclx->matrix_coefficients = static_cast<heif_matrix_coefficients>(space.matrix);
    nclx->full_range_flag = space.isFullRange ? 1 : 0;
    return nclx;
}

heif_error Append(heif_context* /*context*/, const void* data, std::size_t size, void* file) {
    const auto* const bytes = static_cast<const std::uint8_t*>(data);
    static_cast<ByteBuffer*>(file)->insert(static_cast<ByteBuffer*>(file)->end(), bytes, bytes + size);
    return {heif_error_Ok, heif_suberror_Unspecified, ""};
}

} // namespace

std::array<double, 4> HeifColour(const HeifRecipe& recipe, int x, int y) {
    const double right = (x + 0.5) / recipe.width;
    const double down = (y + 0.5) / recipe.height;
    const double grey = 0.1 + 0.8 * right * down;
    const double alpha = recipe.withAlpha ? 0.3 + 0.6 * right : 1;
    return recipe.chroma == 400 ? std::array{grey, grey, grey, alpha}
                                : std::array{0.2 + 0.5 * right, 0.3 + 0.4 * down, 0.7 - 0.3 * right, alpha};
}

ByteBuffer MakeHeif(const HeifRecipe& recipe) {
    const Handle<heif_context> context(heif_context_alloc());
    const Handle<heif_image> image = MakeImage(recipe);
    const Cicp space = SpaceOf(recipe);
    const auto nclx = MakeNclx(space);
    Check(heif_image_set_nclx_color_profile(image.get(), nclx.get()));
    heif_encoder* made = nullptr;
    Check(heif_context_get_encoder_for_format(
        context.get(), recipe.isAv1 ? heif_compression_AV1 : heif_compression_HEVC, &made));
    const Handle<heif_encoder> encoder(made);
    Check(heif_encoder_set_lossy_quality(made, 95));
    Check(heif_encoder_set_parameter_string(made, "chroma",
                                            recipe.chroma == 400   ? "420"
                                            : recipe.chroma == 422 ? "422"
                                            : recipe.chroma == 444 ? "444"
                                                                   : "420"));
    if (recipe.isAv1) {
        Check(heif_encoder_set_parameter_integer(made, "speed", 8));
    }
    const Handle<heif_encoding_options> options(heif_encoding_options_alloc());
    options->output_nclx_profile = nclx.get();
    options->macOS_compatibility_workaround_no_nclx_profile = 0;
    options->image_orientation = static_cast<heif_orientation>(recipe.orientation);
    heif_image_handle* encoded = nullptr;
    Check(heif_context_encode_image(context.get(), image.get(), made, options.get(), &encoded));
    const Handle<heif_image_handle> handle(encoded);
    if (!recipe.exif.empty()) {
        Check(heif_context_add_exif_metadata(context.get(), encoded, recipe.exif.data(),
                                             static_cast<int>(recipe.exif.size())));
    }
    if (!recipe.xmp.empty()) {
        Check(heif_context_add_XMP_metadata(context.get(), encoded, recipe.xmp.data(),
                                            static_cast<int>(recipe.xmp.size())));
    }
    ByteBuffer file;
    heif_writer writer{1, Append};
    Check(heif_context_write(context.get(), &writer, &file));
    return file;
}

} // namespace pictorel::codecs::testing
