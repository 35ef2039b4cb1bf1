// From planes to pixels, see HeifPlanes.h.
#include "picture/codecs/heif/HeifPlanes.h"

#include "picture/ForEachBand.h"
#include "picture/codecs/PixelSupport.h"
#include "picture/codecs/ReadRows.h"
#include "picture/codecs/heif/HeifLibrary.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

namespace pictorel::codecs {
namespace {

struct Plane {
    const std::uint8_t* rows = nullptr; // null: there is none
    std::ptrdiff_t stride = 0;
    int width = 0;
    int height = 0;
    int bits = 8;

    float Largest() const { return static_cast<float>((1 << bits) - 1); }

    // Samples x of row y as numbers; beyond 8 bits they take two bytes.
    void Load(int y, float* out) const {
        const std::uint8_t* const row = rows + y * stride;
        if (bits <= 8) {
            std::copy_n(row, width, out);
            return;
        }
        for (int x = 0; x < width; ++x) {
            std::uint16_t sample = 0;
            std::memcpy(&sample, row + 2 * x, sizeof(sample));
            out[x] = sample;
        }
    }
};

Plane PlaneOf(const heif_image* image, heif_channel channel) {
    Plane plane;
    if (heif_image_has_channel(image, channel) == 0) {
        return plane;
    }
    int stride = 0;
    plane.rows = heif_image_get_plane_readonly(image, channel, &stride);
    plane.stride = stride;
    plane.width = heif_image_get_width(image, channel);
    plane.height = heif_image_get_height(image, channel);
    plane.bits = heif_image_get_bits_per_pixel_range(image, channel);
    if (plane.bits < 1 || plane.bits > 16 || plane.stride < plane.width * (plane.bits > 8 ? 2 : 1)) {
        Refuse("The HEIF file has samples of a size that is not supported.");
    }
    return plane;
}

// How Y and the two differences, each -1/2..1/2 of the range, make up red, green and blue 0..1.
struct Mix {
    float redOfCr = 0;
    float greenOfCb = 0;
    float greenOfCr = 0;
    float blueOfCb = 0;
};

// By the share of red and blue in Y (H.273, table 4).
constexpr Mix MixOf(double kr, double kb) {
    const double kg = 1 - kr - kb;
    return {static_cast<float>(2 * (1 - kr)), static_cast<float>(-2 * kb * (1 - kb) / kg),
            static_cast<float>(-2 * kr * (1 - kr) / kg), static_cast<float>(2 * (1 - kb))};
}

Mix MixOfMatrix(int code) {
    switch (code) {
        case matrix::kBt709:
            return MixOf(0.2126, 0.0722);
        case matrix::kFcc:
            return MixOf(0.30, 0.11);
        case matrix::kSmpte240:
            return MixOf(0.212, 0.087);
        case matrix::kBt2020:
        case matrix::kBt2020 + 1: // the constant-luminance kind, of which no encoder is known
            return MixOf(0.2627, 0.0593);
        default: // BT.601 is also what writers mean who say nothing
            return MixOf(0.299, 0.114);
    }
}

// Samples of 0..largest become 0..1, those of the narrow range of television too.
struct Scale {
    float black;
    float factor;
};
Scale ScaleOf(const Plane& plane, bool isFullRange, bool isDifference) {
    if (isFullRange) {
        const float middle = isDifference ? static_cast<float>(1 << (plane.bits - 1)) : 0;
        return {middle, 1 / plane.Largest()};
    }
    const auto unit = static_cast<float>(1 << plane.bits) / 256;
    return isDifference ? Scale{128 * unit, 1 / (224 * unit)} : Scale{16 * unit, 1 / (219 * unit)};
}

enum class Kind { Grey, Rgb, Differences, YCgCo };

struct Planes {
    Kind kind;
    std::array<Plane, 3> colours; // Y alone; R, G, B; Y, Cb, Cr (or Y, Cg, Co)
    Plane alpha;
};

Planes PlanesOf(const heif_image* image, const Cicp& space) {
    Planes planes{};
    planes.alpha = PlaneOf(image, heif_channel_Alpha);
    switch (heif_image_get_colorspace(image)) {
        case heif_colorspace_monochrome:
            planes.kind = Kind::Grey;
            planes.colours[0] = PlaneOf(image, heif_channel_Y);
            break;
        case heif_colorspace_RGB:
            planes.kind = Kind::Rgb;
            planes.colours = {PlaneOf(image, heif_channel_R), PlaneOf(image, heif_channel_G),
                              PlaneOf(image, heif_channel_B)};
            break;
        case heif_colorspace_YCbCr:
            planes.colours = {PlaneOf(image, heif_channel_Y), PlaneOf(image, heif_channel_Cb),
                              PlaneOf(image, heif_channel_Cr)};
            planes.kind = space.matrix == matrix::kYCgCo ? Kind::YCgCo : Kind::Differences;
            if (space.matrix == matrix::kIdentity) { // green, blue, red under the others' names
                planes.kind = Kind::Rgb;
                std::rotate(planes.colours.begin(), planes.colours.begin() + 2, planes.colours.end());
            } else if (planes.colours[1].rows == nullptr) {
                planes.kind = Kind::Grey;
            }
            break;
        default:
            Refuse("The HEIF file has planes of a kind that is not supported.");
    }
    return planes;
}

void Check(const Planes& planes) {
    const Plane& first = planes.colours[0];
    CheckPictureSize(first.width, first.height);
    const bool isColoured = planes.kind != Kind::Grey;
    const auto fits = [&](const Plane& plane) {
        const auto halved = [](int size, int of) { return size == of || size == (of + 1) / 2; };
        return plane.rows != nullptr && halved(plane.width, first.width) &&
               halved(plane.height, first.height);
    };
    if (first.rows == nullptr || (isColoured && !(fits(planes.colours[1]) && fits(planes.colours[2])))) {
        Refuse("The HEIF file has planes that do not belong together.");
    }
}

// A row of a plane at the picture's width: coarse samples lie in the middle of the two they stand for, and
// between them there is a slope.
class RowSource {
  public:
    RowSource(const Plane& plane, int width, int height)
        : plane_(plane),
          width_(width),
          isHalfWidth_(plane.width != width),
          isHalfHeight_(plane.height != height),
          row_(static_cast<std::size_t>(std::max(width, plane.width))),
          near_(isHalfWidth_ || isHalfHeight_ ? static_cast<std::size_t>(plane.width) : 0),
          far_(isHalfHeight_ ? static_cast<std::size_t>(plane.width) : 0) {}

    // Row y with `scale` applied.
    const float* Take(int y, Scale scale) {
        if (!isHalfWidth_ && !isHalfHeight_) {
            plane_.Load(y, row_.data());
        } else {
            TakeCoarse(y);
        }
        for (int x = 0; x < width_; ++x) {
            row_[static_cast<std::size_t>(x)] =
                (row_[static_cast<std::size_t>(x)] - scale.black) * scale.factor;
        }
        return row_.data();
    }

  private:
    void TakeCoarse(int y) {
        plane_.Load(isHalfHeight_ ? y / 2 : y, near_.data());
        if (isHalfHeight_) {
            plane_.Load(std::clamp(y / 2 + (y % 2 == 0 ? -1 : 1), 0, plane_.height - 1), far_.data());
            for (std::size_t x = 0; x < near_.size(); ++x) {
                near_[x] = 0.75F * near_[x] + 0.25F * far_[x];
            }
        }
        if (!isHalfWidth_) {
            std::copy(near_.begin(), near_.end(), row_.begin());
            return;
        }
        const int last = plane_.width - 1;
        for (int i = 0; i <= last; ++i) {
            const float here = 0.75F * near_[static_cast<std::size_t>(i)];
            row_[static_cast<std::size_t>(2 * i)] =
                here + 0.25F * near_[static_cast<std::size_t>(std::max(i - 1, 0))];
            if (2 * i + 1 < width_) {
                row_[static_cast<std::size_t>(2 * i + 1)] =
                    here + 0.25F * near_[static_cast<std::size_t>(std::min(i + 1, last))];
            }
        }
    }

    const Plane& plane_;
    int width_;
    bool isHalfWidth_;
    bool isHalfHeight_;
    std::vector<float> row_;
    std::vector<float> near_;
    std::vector<float> far_;
};

// Rows of one band of the picture, at full width, made into pixels.
class BandReader {
  public:
    BandReader(const Planes& planes, const Cicp& space, int width, int height)
        : planes_(planes), isFullRange_(space.isFullRange), mix_(MixOfMatrix(space.matrix)), width_(width) {
        for (const Plane& plane : planes.colours) {
            if (plane.rows != nullptr) {
                sources_.emplace_back(plane, width, height);
            }
        }
        if (HasAlpha()) {
            sources_.emplace_back(planes.alpha, width, height);
        }
        for (auto& component : mixed_) {
            component.resize(planes.kind == Kind::Grey ? 0 : static_cast<std::size_t>(width));
        }
    }

    // Sample is std::uint8_t for B, G, R, A and std::uint16_t for R, G, B, A.
    template <class Sample>
    void Read(int y, Sample* out) {
        const std::array<const float*, 3> rgb = Colours(y);
        constexpr bool kIsBytes = sizeof(Sample) == 1;
        constexpr float kLargest = kIsBytes ? 255 : 65535;
        const auto put = [&](const float* in, int component) {
            for (int x = 0; x < width_; ++x) {
                out[4 * x + component] = static_cast<Sample>(std::clamp(in[x], 0.0F, 1.0F) * kLargest + 0.5F);
            }
        };
        put(rgb[0], kIsBytes ? 2 : 0);
        put(rgb[1], 1);
        put(rgb[2], kIsBytes ? 0 : 2);
        if (HasAlpha()) {
            put(sources_.back().Take(y, ScaleOf(planes_.alpha, true, false)), 3);
            return;
        }
        for (int x = 0; x < width_; ++x) {
            out[4 * x + 3] = static_cast<Sample>(kLargest);
        }
    }

  private:
    bool HasAlpha() const { return planes_.alpha.rows != nullptr; }

    std::array<const float*, 3> Colours(int y) {
        const auto take = [&](std::size_t i, bool isDifference) {
            return sources_[i].Take(y, ScaleOf(planes_.colours[i], isFullRange_, isDifference));
        };
        const float* const first = take(0, false);
        if (planes_.kind == Kind::Grey) {
            return {first, first, first};
        }
        const bool isRgb = planes_.kind == Kind::Rgb;
        const float* const second = take(1, !isRgb);
        const float* const third = take(2, !isRgb);
        if (isRgb) {
            return {first, second, third};
        }
        planes_.kind == Kind::YCgCo ? MixGreenAndOrange(first, second, third)
                                    : MixDifferences(first, second, third);
        return {mixed_[0].data(), mixed_[1].data(), mixed_[2].data()};
    }

    void MixDifferences(const float* luma, const float* cb, const float* cr) {
        float* const red = mixed_[0].data();
        float* const green = mixed_[1].data();
        float* const blue = mixed_[2].data();
        const Mix mix = mix_;
        for (int x = 0; x < width_; ++x) {
            red[x] = luma[x] + mix.redOfCr * cr[x];
            green[x] = luma[x] + mix.greenOfCb * cb[x] + mix.greenOfCr * cr[x];
            blue[x] = luma[x] + mix.blueOfCb * cb[x];
        }
    }

    void MixGreenAndOrange(const float* luma, const float* cg, const float* co) {
        float* const red = mixed_[0].data();
        float* const green = mixed_[1].data();
        float* const blue = mixed_[2].data();
        for (int x = 0; x < width_; ++x) {
            const float rest = luma[x] - cg[x];
            red[x] = rest + co[x];
            green[x] = luma[x] + cg[x];
            blue[x] = rest - co[x];
        }
    }

    const Planes& planes_;
    bool isFullRange_;
    Mix mix_;
    int width_;
    std::vector<RowSource> sources_;
    std::array<std::vector<float>, 3> mixed_;
};

} // namespace

PixelArray PictureOfPlanes(const heif_image* image, const Cicp& space, ByteView iccProfile) {
    Planes planes = PlanesOf(image, space);
    Check(planes);
    const int width = planes.colours[0].width;
    const int height = planes.colours[0].height;
    if (planes.alpha.width != width || planes.alpha.height != height) {
        planes.alpha = {}; // belongs to another picture
    }
    PixelArray picture(width, height);
    const bool isWide = planes.colours[0].bits > 8;
    const RowReader reader(picture, iccProfile, isWide, planes.kind == Kind::Grey);
    constexpr std::size_t kWorkPerByte = 4;
    ForEachBand(height, picture.RowBytes() * kWorkPerByte, [&](int first, int end) {
        BandReader band(planes, space, width, height);
        std::vector<std::uint16_t> wide(isWide ? picture.RowBytes() : 0);
        for (int y = first; y < end; ++y) {
            if (isWide) {
                band.Read(y, wide.data());
                reader.Take(wide.data(), 0, y, width);
            } else {
                band.Read(y, reader.Place(0, y));
                reader.Take(reader.Place(0, y), 0, y, width);
            }
        }
    });
    if (planes.alpha.rows != nullptr) {
        SettleAlpha(picture);
    }
    return picture;
}

} // namespace pictorel::codecs
