// The colours of JPEG 2000 pictures, see J2kColouring.h.
#include "picture/codecs/j2k/J2kColouring.h"

#include "picture/ForEachBand.h"
#include "picture/codecs/PixelSupport.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace pictorel::codecs {
namespace {

constexpr int kWhite = 65535;

struct SpaceTraits {
    std::size_t colours;
    std::size_t samplesAPixel; // of the layout
    J2kSpace space;
    SampleLayout layout;
};
constexpr SpaceTraits kSpaceTraits[] = {
    {3, 4, J2kSpace::Unsaid, SampleLayout::Rgba16}, {1, 1, J2kSpace::Grey, SampleLayout::Grey16},
    {3, 4, J2kSpace::Rgb, SampleLayout::Rgba16},    {3, 4, J2kSpace::Ycc, SampleLayout::Rgba16},
    {4, 4, J2kSpace::Cmyk, SampleLayout::Cmyk16},   {3, 3, J2kSpace::Lab, SampleLayout::Lab16},
};

constexpr bool TraitsStandInOrder() {
    for (std::size_t i = 0; i < std::size(kSpaceTraits); ++i) {
        if (static_cast<std::size_t>(kSpaceTraits[i].space) != i) {
            return false;
        }
    }
    return true;
}
static_assert(TraitsStandInOrder());

const SpaceTraits& TraitsOf(J2kSpace space) {
    return kSpaceTraits[static_cast<std::size_t>(space)];
}

std::uint16_t Clamped(float level) {
    return static_cast<std::uint16_t>(std::clamp(std::lround(level), 0L, long{kWhite}));
}

// ITU-R BT.601, as the standard's sYCC has it.
void YccToRgb(std::uint16_t* pixel, int neutralBlue, int neutralRed) {
    const auto luma = static_cast<float>(pixel[0]);
    const auto blue = static_cast<float>(pixel[1] - neutralBlue);
    const auto red = static_cast<float>(pixel[2] - neutralRed);
    pixel[0] = Clamped(luma + 1.402F * red);
    pixel[1] = Clamped(luma - 0.344136F * blue - 0.714136F * red);
    pixel[2] = Clamped(luma + 1.772F * blue);
}

// The ranges that hold where the file gives none: a* spans 170 about the middle of its samples, b* 200 about
// three eighths of them.
void ToPlainLab(std::uint16_t* pixel, int neutralA, int neutralB) {
    constexpr float kUnit = 256;
    const float a = static_cast<float>(pixel[1] - neutralA) / kWhite * 170;
    const float b = static_cast<float>(pixel[2] - neutralB) / kWhite * 200;
    pixel[1] = Clamped((a + 128) * kUnit);
    pixel[2] = Clamped((b + 128) * kUnit);
}

// A grey, or three components of which two are coarser, tell what they are without boxes.
J2kSpace GuessSpace(const J2kStream& stream, const Jp2Boxes& boxes) {
    if (boxes.space != J2kSpace::Unsaid) {
        return boxes.space;
    }
    const std::size_t unmapped =
        boxes.palette.columns.empty() ? stream.components.size() : boxes.palette.columns.size();
    const std::size_t channels = boxes.channels.empty() ? unmapped : boxes.channels.size();
    if (channels < 3) {
        return J2kSpace::Grey;
    }
    const bool isSubsampled = stream.components.size() >= 3 && stream.components[0].stepX == stream.stepX &&
                              stream.components[1].stepX > stream.stepX &&
                              stream.components[2].stepX > stream.stepX;
    return isSubsampled ? J2kSpace::Ycc : J2kSpace::Rgb;
}

} // namespace

J2kColouring::J2kColouring(const J2kStream& stream, const Jp2Boxes& boxes)
    : stream_(stream), boxes_(boxes), space_(GuessSpace(stream, boxes)) {
    AssignChannels();
    samplesAPixel_ = TraitsOf(space_).samplesAPixel;
    isPlain_ = IsPlainBytes();
    converter_ = ColourConverter(TraitsOf(space_).layout, isPlain_ ? ByteView{} : boxes.icc);
}

// Every channel of the file, in its order.
std::vector<J2kChannel> J2kColouring::FindChannels() const {
    std::vector<Jp2Boxes::Channel> found = boxes_.channels;
    const auto columns = static_cast<int>(boxes_.palette.columns.size());
    const auto isWrong = [&](const Jp2Boxes::Channel& c) {
        return c.component >= static_cast<int>(stream_.components.size()) || c.column >= columns;
    };
    if (found.empty() || std::any_of(found.begin(), found.end(), isWrong)) {
        found.clear();
        for (int i = 0; i < columns;
             ++i) { // a palette that nobody says the use of is that of the first component
            found.push_back({0, i});
        }
        for (int i = 0; columns == 0 && i < static_cast<int>(stream_.components.size()); ++i) {
            found.push_back({i, Jp2Boxes::kNoColumn});
        }
    }
    found.resize(std::min<std::size_t>(found.size(), 8)); // more than any picture has
    std::vector<J2kChannel> channels;
    channels.reserve(found.size());
    for (const Jp2Boxes::Channel& channel : found) {
        channels.emplace_back(stream_, boxes_.palette, channel);
    }
    return channels;
}

void J2kColouring::AssignChannels() {
    std::vector<J2kChannel> channels = FindChannels();
    colours_ = TraitsOf(space_).colours;
    if (channels.size() < colours_) { // it says more colours than it has
        space_ = J2kSpace::Grey;
        colours_ = 1;
    }
    std::vector<std::size_t> order(colours_);
    for (std::size_t i = 0; i < colours_; ++i) {
        order[i] = i;
    }
    const bool isOneMore = channels.size() == colours_ + 1; // several more are who knows what
    std::size_t alphaAt = isOneMore && boxes_.definitions.empty() ? colours_ : channels.size();
    alpha_ = alphaAt < channels.size() ? Alpha::Unsure : Alpha::None;
    for (const Jp2Boxes::Definition& definition : boxes_.definitions) {
        const auto channel = static_cast<std::size_t>(definition.channel);
        const auto colour = static_cast<std::size_t>(definition.association) - 1;
        if (channel >= channels.size()) {
            continue;
        }
        if (definition.role == Jp2Boxes::Role::Colour && colour < colours_) {
            order[colour] = channel;
        } else if (definition.role == Jp2Boxes::Role::Alpha) {
            alphaAt = channel;
            alpha_ = Alpha::Plain;
        } else if (definition.role == Jp2Boxes::Role::PremultipliedAlpha) {
            alphaAt = channel;
            alpha_ = Alpha::Premultiplied;
        }
    }
    for (const std::size_t channel : order) {
        channels_.push_back(channels[channel]);
    }
    if (alpha_ != Alpha::None) {
        channels_.push_back(channels[alphaAt]);
    }
}

bool J2kColouring::IsPlainBytes() const {
    const bool isGrey = space_ == J2kSpace::Grey && boxes_.icc.empty();
    return (space_ == J2kSpace::Rgb || isGrey) && boxes_.palette.columns.empty() &&
           std::all_of(channels_.begin(), channels_.end(), [this](const J2kChannel& channel) {
               const J2kComponent& c = stream_.components[channel.Component()];
               return c.bits == 8 && !c.isSigned && c.stepX == stream_.stepX && c.stepY == stream_.stepY;
           });
}

J2kColouring::Planes J2kColouring::PlanesOf(const J2kTile& tile) const {
    Planes planes;
    std::size_t at = 0;
    for (std::size_t i = 0; i < stream_.components.size(); ++i) {
        const J2kArea area = tile.AreaOf(stream_.components[i], i);
        planes.push_back({tile.samples.data() + at, area, tile.halvings[i]});
        at += static_cast<std::size_t>(area.Width() * area.Height()) *
              static_cast<std::size_t>(stream_.components[i].SampleBytes());
    }
    return planes;
}

void J2kColouring::Convert(const J2kTile& tile, PixelArray& picture) const {
    const J2kArea part = stream_.PixelsOf(tile.area);
    if (part.x0 < 0 || part.y0 < 0 || part.x1 > picture.Width() || part.y1 > picture.Height()) {
        Refuse("The JPEG 2000 file has a tile outside its picture.");
    }
    const Planes planes = PlanesOf(tile);
    const bool isPlain =
        isPlain_ && std::all_of(tile.halvings.begin(), tile.halvings.end(), [](int h) { return h == 0; });
    std::uint8_t* const first =
        picture.WritableRows() + part.y0 * picture.Stride() + part.x0 * PixelArray::kComponents;
    const auto bytesPerRow =
        static_cast<std::size_t>(part.Width()) * PixelArray::kComponents * (isPlain ? 2U : 16U);
    ForEachBand(static_cast<int>(part.Height()), bytesPerRow, [&](int begin, int end) {
        for (int row = begin; row < end; ++row) {
            std::uint8_t* const bgra = first + row * picture.Stride();
            if (isPlain) {
                ConvertPlainRow(planes, row, bgra, static_cast<int>(part.Width()));
            } else {
                ConvertAnyRow(planes, part, row, bgra);
            }
        }
    });
}

void J2kColouring::ConvertPlainRow(const Planes& planes, std::int64_t row, std::uint8_t* bgra,
                                   int pixels) const {
    const auto rowOf = [&](std::size_t source) {
        const J2kPlane& plane = planes[channels_[std::min(source, channels_.size() - 1)].Component()];
        return plane.data + row * plane.area.Width();
    };
    const std::uint8_t* const red = rowOf(0);
    const std::uint8_t* const green = colours_ == 1 ? red : rowOf(1);
    const std::uint8_t* const blue = colours_ == 1 ? red : rowOf(2);
    const std::uint8_t* const alpha = alpha_ == Alpha::None ? nullptr : rowOf(colours_);
    for (int x = 0; x < pixels; ++x, bgra += PixelArray::kComponents) {
        bgra[0] = blue[x];
        bgra[1] = green[x];
        bgra[2] = red[x];
        bgra[3] = alpha == nullptr ? std::uint8_t{255} : alpha[x];
    }
}

void J2kColouring::ConvertAnyRow(const Planes& planes, const J2kArea& part, std::int64_t row,
                                 std::uint8_t* bgra) const {
    const auto pixels = static_cast<std::size_t>(part.Width());
    Levels samples(pixels * samplesAPixel_, kWhite);
    for (std::size_t i = 0; i < colours_; ++i) {
        channels_[i].FetchRow(planes[channels_[i].Component()], part, row, samples.data() + i,
                              samplesAPixel_);
    }
    for (std::size_t x = 0; x < pixels; ++x) {
        if (space_ == J2kSpace::Ycc) {
            YccToRgb(&samples[x * samplesAPixel_], channels_[1].Neutral(), channels_[2].Neutral());
        } else if (space_ == J2kSpace::Lab) {
            ToPlainLab(&samples[x * samplesAPixel_], channels_[1].Neutral(), channels_[2].LevelAt(3));
        }
    }
    converter_.ConvertRow(samples.data(), bgra, static_cast<int>(pixels));
    if (alpha_ != Alpha::None) {
        const J2kChannel& channel = channels_[colours_];
        Levels alpha(pixels);
        channel.FetchRow(planes[channel.Component()], part, row, alpha.data(), 1);
        for (std::size_t x = 0; x < pixels; ++x) {
            bgra[x * PixelArray::kComponents + 3] =
                static_cast<std::uint8_t>((alpha[x] * 255U + kWhite / 2) / kWhite);
        }
    }
}

void J2kColouring::Finish(PixelArray& picture) const {
    if (alpha_ == Alpha::Unsure) {
        JudgeAlpha(picture, 0, picture.Height());
    } else if (alpha_ != Alpha::None) {
        SettleAlpha(picture);
    }
    if (alpha_ == Alpha::Premultiplied) {
        Unpremultiply(picture);
    }
    if (boxes_.icc.empty()) {
        return;
    }
    if (isPlain_) {
        ConvertToSrgb(picture, boxes_.icc);
    } else {
        Metadata details = picture.Details();
        details.icc = ProfileAfterConversion(boxes_.icc);
        picture.SetDetails(std::move(details));
    }
}

} // namespace pictorel::codecs
