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

// Samples of 0..largest become 0..1, greys of the narrow range of television too, and differences -1/2..1/2.
struct Scale {
    float black;
    float factor;
};
Scale ScaleOf(const Plane& plane) {
    return {0, 1 / plane.Largest()};
}
Scale ScaleOfNarrow(const Plane& plane) {
    const auto unit = static_cast<float>(1 << plane.bits) / 256;
    return {16 * unit, 1 / (219 * unit)};
}
Scale ScaleOfDifference(const Plane& plane) {
    return {static_cast<float>(1 << (plane.bits - 1)), 1 / plane.Largest()};
}

enum class Kind { Grey, Rgb, Differences };

struct Planes {
    Kind kind;
    std::array<Plane, 3> colours; // Y alone; R, G, B; Y, Cb, Cr
    Plane alpha;
};

Planes PlanesOf(const heif_image* image) {
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
            planes.kind = planes.colours[1].rows == nullptr ? Kind::Grey : Kind::Differences;
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
            row_[2 * static_cast<std::size_t>(i)] =
                here + 0.25F * near_[static_cast<std::size_t>(std::max(i - 1, 0))];
            if (2 * i + 1 < width_) {
                row_[2 * static_cast<std::size_t>(i) + 1] =
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
    BandReader(const Planes& planes, bool isFullRange, int width, int height)
        : planes_(planes), isFullRange_(isFullRange), width_(width) {
        for (const Plane& plane : planes.colours) {
            if (plane.rows != nullptr) {
                sources_.emplace_back(plane, width, height);
            }
        }
        if (HasAlpha()) {
            sources_.emplace_back(planes.alpha, width, height);
        }
        for (auto& component : mixed_) {
            component.resize(planes.kind == Kind::Differences ? static_cast<std::size_t>(width) : 0);
        }
    }

    // Sample is std::uint8_t for B, G, R, A and std::uint16_t for R, G, B, A.
    template <class Sample>
    void Read(int y, Sample* out) {
        const std::array<const float*, 3> rgb = Colours(y);
        constexpr bool kIsBytes = sizeof(Sample) == 1;
        constexpr float kLargest = kIsBytes ? 255 : 65535;
        constexpr float kHalf = 0.5F; // to round by cutting off
        const auto put = [&](const float* in, int component) {
            for (int x = 0; x < width_; ++x) {
                out[4 * x + component] =
                    static_cast<Sample>(std::clamp(in[x] * kLargest + kHalf, 0.0F, kLargest));
            }
        };
        put(rgb[0], kIsBytes ? 2 : 0);
        put(rgb[1], 1);
        put(rgb[2], kIsBytes ? 0 : 2);
        if (HasAlpha()) {
            put(sources_.back().Take(y, ScaleOf(planes_.alpha)), 3);
            return;
        }
        for (int x = 0; x < width_; ++x) {
            out[4 * x + 3] = static_cast<Sample>(kLargest);
        }
    }

  private:
    bool HasAlpha() const { return planes_.alpha.rows != nullptr; }

    std::array<const float*, 3> Colours(int y) {
        const auto take = [&](std::size_t i, Scale (*scale)(const Plane&)) {
            return sources_[i].Take(y, scale(planes_.colours[i]));
        };
        switch (planes_.kind) {
            case Kind::Grey: {
                const float* const grey = take(0, isFullRange_ ? ScaleOf : ScaleOfNarrow);
                return {grey, grey, grey};
            }
            case Kind::Rgb:
                return {take(0, ScaleOf), take(1, ScaleOf), take(2, ScaleOf)};
            default:
                Mix(take(0, ScaleOf), take(1, ScaleOfDifference), take(2, ScaleOfDifference));
                return {mixed_[0].data(), mixed_[1].data(), mixed_[2].data()};
        }
    }

    void Mix(const float* luma, const float* cb, const float* cr) { // BT.601
        constexpr float kRed = 0.299F;
        constexpr float kBlue = 0.114F;
        constexpr float kGreen = 1 - kRed - kBlue;
        float* const red = mixed_[0].data();
        float* const green = mixed_[1].data();
        float* const blue = mixed_[2].data();
        for (int x = 0; x < width_; ++x) {
            red[x] = luma[x] + 2 * (1 - kRed) * cr[x];
            green[x] =
                luma[x] - 2 * (1 - kBlue) * kBlue / kGreen * cb[x] - 2 * (1 - kRed) * kRed / kGreen * cr[x];
            blue[x] = luma[x] + 2 * (1 - kBlue) * cb[x];
        }
    }

    const Planes& planes_;
    bool isFullRange_;
    int width_;
    std::vector<RowSource> sources_;
    std::array<std::vector<float>, 3> mixed_;
};

} // namespace

PixelArray PictureOfPlanes(const heif_image* image, bool isFullRange, ByteView iccProfile) {
    Planes planes = PlanesOf(image);
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
        BandReader band(planes, isFullRange, width, height);
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
