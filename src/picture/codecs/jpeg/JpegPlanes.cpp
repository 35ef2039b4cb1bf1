// Enlarges oddly sampled JPEG components, see JpegPlanes.h.
#include "picture/codecs/jpeg/JpegPlanes.h"

#include "picture/ForEachBand.h"
#include "picture/codecs/jpeg/JpegLibrary.h"

#include <algorithm>
#include <cmath>
#include <span>

namespace pictorel::codecs {
namespace {

std::span<const jpeg_component_info> ComponentsOf(const jpeg_decompress_struct& library) noexcept {
    return {library.comp_info, static_cast<std::size_t>(library.num_components)};
}

std::uint8_t Clamped(double level) noexcept {
    return static_cast<std::uint8_t>(std::lround(std::clamp(level, 0.0, 255.0)));
}

// Y, Cb, Cr to R, G, B where they stand; formulas: ITU-T T.871 (JFIF), section 7.
void LumaToRgb(std::array<std::uint8_t, 4>& pixel) noexcept {
    const double y = pixel[0];
    const double cb = pixel[1] - 128.0;
    const double cr = pixel[2] - 128.0;
    pixel[0] = Clamped(y + 1.402 * cr);
    pixel[1] = Clamped(y - 0.344136 * cb - 0.714136 * cr);
    pixel[2] = Clamped(y + 1.772 * cb);
}

// Where a sample of the picture lies among the fewer samples of a plane: between `first` and `second`, at
// `part` of `whole` from the first. Samples stand for the middle of their area.
struct Position {
    int first;
    int second;
    int part;
    int whole;
};
Position PositionOf(int at, int samples, int most, int end) noexcept {
    const int whole = 2 * most;
    const int scaled = (2 * at + 1) * samples - most; // in parts of `whole`
    const int before = scaled < 0 ? -1 : scaled / whole;
    return {std::clamp(before, 0, end - 1), std::clamp(before + 1, 0, end - 1), scaled - before * whole,
            whole};
}

} // namespace

bool JpegPlanes::AreNeeded(const jpeg_decompress_struct& library) noexcept {
    const auto components = ComponentsOf(library);
    return components.size() <= kMostPlanes &&
           std::any_of(components.begin(), components.end(), [&](const jpeg_component_info& c) {
               return library.max_h_samp_factor % c.h_samp_factor != 0 ||
                      library.max_v_samp_factor % c.v_samp_factor != 0;
           });
}

void JpegPlanes::MakeRoom(const jpeg_decompress_struct& library) {
    isInk_ = library.jpeg_color_space == JCS_CMYK || library.jpeg_color_space == JCS_YCCK;
    isLuma_ = library.jpeg_color_space == JCS_YCbCr || library.jpeg_color_space == JCS_YCCK;
    widest_ = library.max_h_samp_factor;
    tallest_ = library.max_v_samp_factor;
    const auto components = ComponentsOf(library);
    count_ = components.size();
    const auto mcuWidth = static_cast<JDIMENSION>(widest_ * DCTSIZE);
    const JDIMENSION mcusAcross = (library.image_width + mcuWidth - 1) / mcuWidth;
    for (std::size_t i = 0; i < count_; ++i) {
        const jpeg_component_info& component = components[i];
        Plane& plane = planes_[i];
        plane.across = component.h_samp_factor;
        plane.down = component.v_samp_factor;
        plane.width = static_cast<int>(component.downsampled_width);
        plane.height = static_cast<int>(component.downsampled_height);
        plane.stride = std::size_t{mcusAcross} * static_cast<std::size_t>(plane.across) * DCTSIZE;
        plane.samples.resize(plane.stride * library.total_iMCU_rows * static_cast<std::size_t>(plane.down) *
                             DCTSIZE);
    }
}

void JpegPlanes::Read(jpeg_decompress_struct& library) {
    MakeRoom(library);
    constexpr std::size_t kMostRows = std::size_t{MAX_SAMP_FACTOR} * DCTSIZE;
    std::array<std::array<JSAMPROW, kMostRows>, kMostPlanes> rows{};
    std::array<JSAMPARRAY, kMostPlanes> arrays{};
    const auto mcuRows = static_cast<JDIMENSION>(tallest_ * DCTSIZE);
    while (library.output_scanline < library.output_height) {
        const std::size_t mcuRow = library.output_scanline / mcuRows;
        for (std::size_t i = 0; i < count_; ++i) {
            Plane& plane = planes_[i];
            const auto count = static_cast<std::size_t>(plane.down) * DCTSIZE;
            for (std::size_t y = 0; y < count; ++y) {
                rows[i][y] = plane.samples.data() + (mcuRow * count + y) * plane.stride;
            }
            arrays[i] = rows[i].data();
        }
        jpeg_read_raw_data(&library, arrays.data(), mcuRows);
    }
}

void JpegPlanes::EnlargeRow(const Plane& plane, int y, std::uint8_t* out, int pixels) const {
    const Position down = PositionOf(y, plane.down, tallest_, plane.height);
    const std::uint8_t* const upper =
        plane.samples.data() + static_cast<std::size_t>(down.first) * plane.stride;
    const std::uint8_t* const lower =
        plane.samples.data() + static_cast<std::size_t>(down.second) * plane.stride;
    for (int x = 0; x < pixels; ++x) {
        const Position across = PositionOf(x, plane.across, widest_, plane.width);
        const auto between = [&across](const std::uint8_t* row) {
            return row[across.first] * (across.whole - across.part) + row[across.second] * across.part;
        };
        const int whole = across.whole * down.whole;
        const int sum = between(upper) * (down.whole - down.part) + between(lower) * down.part;
        out[x] = static_cast<std::uint8_t>((sum + whole / 2) / whole);
    }
}

void JpegPlanes::Show(const JpegTarget& target, int rows) const {
    const auto pixels = static_cast<std::size_t>(target.width);
    constexpr std::size_t kWorkPerByte = 8; // interpolating is far more than copying
    ForEachBand(rows, pixels * PixelArray::kComponents * kWorkPerByte, [&](int first, int end) {
        std::vector<std::uint8_t> samples(count_ * pixels);
        for (int y = first; y < end; ++y) {
            for (std::size_t i = 0; i < count_; ++i) {
                EnlargeRow(planes_[i], y, samples.data() + i * pixels, target.width);
            }
            std::uint8_t* out = target.rows + y * target.stride;
            for (std::size_t x = 0; x < pixels; ++x, out += PixelArray::kComponents) {
                std::array<std::uint8_t, 4> pixel{0, 0, 0, 255};
                for (std::size_t i = 0; i < count_; ++i) {
                    pixel[i] = samples[i * pixels + x];
                }
                if (isLuma_) {
                    LumaToRgb(pixel);
                }
                if (isInk_) {
                    const int turned = isLuma_ ? 255 : 0; // what YCCK holds is the light that inks leave
                    for (std::size_t i = 0; i < 3; ++i) {
                        out[i] = static_cast<std::uint8_t>(std::abs(turned - pixel[i]));
                    }
                } else {
                    std::copy(pixel.rbegin() + 1, pixel.rend(), out); // B, G, R
                }
                out[3] = pixel[3];
            }
        }
    });
}

} // namespace pictorel::codecs
