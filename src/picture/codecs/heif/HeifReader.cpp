// Reading HEIF files through libheif, see Heif.h.
#include "picture/ImagingError.h"
#include "picture/codecs/ByteReader.h"
#include "picture/codecs/Cicp.h"
#include "picture/codecs/Exif.h"
#include "picture/codecs/PixelSupport.h"
#include "picture/codecs/Xmp.h"
#include "picture/codecs/heif/Heif.h"
#include "picture/codecs/heif/HeifChroma.h"
#include "picture/codecs/heif/HeifLibrary.h"
#include "picture/codecs/heif/HeifPlanes.h"

#include <algorithm>
#include <array>
#include <new>
#include <optional>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace pictorel::codecs {
namespace {

// A flat AV1 picture of photo size takes a byte for 35,000 pixels.
constexpr std::int64_t kMostPixelsPerByte = std::int64_t{1} << 16;
constexpr std::size_t kLargestProfile = std::size_t{16} << 20;
constexpr std::size_t kLargestExif = std::size_t{16} << 20;

void Check(const heif_error& error) {
    if (error.code == heif_error_Ok) {
        return;
    }
    if (error.subcode == heif_suberror_Security_limit_exceeded) {
        throw ImagingError(ImagingFailure::TooLarge,
                           std::string("The HEIF file is too large: ") + error.message);
    }
    if (error.code == heif_error_Memory_allocation_error) {
        throw std::bad_alloc();
    }
    throw ImagingError(ImagingFailure::UnsupportedFormat,
                       std::string("The HEIF file cannot be read: ") + error.message);
}

HeifContext OpenFile(ByteView file) {
    HeifContext context(heif_context_alloc());
    if (!context) {
        throw std::bad_alloc();
    }
    heif_context_set_maximum_image_size_limit(context.get(), kMaximumSide);
    heif_context_set_max_decoding_threads(
        context.get(), static_cast<int>(std::max(1U, std::thread::hardware_concurrency())));
    Check(heif_context_read_from_memory_without_copy(context.get(), file.data(), file.size(), nullptr));
    return context;
}

HeifHandle PrimaryPicture(heif_context* context) {
    heif_image_handle* made = nullptr;
    Check(heif_context_get_primary_image_handle(context, &made));
    return HeifHandle(made);
}

HeifImage DecodeAs(const heif_image_handle* handle, heif_colorspace colours, heif_chroma chroma) {
    const HeifOptions options(heif_decoding_options_alloc());
    if (!options) {
        throw std::bad_alloc();
    }
    heif_image* made = nullptr;
    Check(heif_decode_image(handle, &made, colours, chroma, options.get()));
    return HeifImage(made);
}

// Both calls below may leave an object behind, which holds nothing of use, where they fail.
std::optional<Cicp> SpaceTold(const heif_error& error, heif_color_profile_nclx* told) {
    const HeifNclx nclx(told);
    return error.code == heif_error_Ok && nclx
               ? std::optional(Cicp{nclx->color_primaries, nclx->transfer_characteristics,
                                    nclx->matrix_coefficients, nclx->full_range_flag != 0})
               : std::nullopt;
}

std::optional<Cicp> SpaceOfFile(const heif_image_handle* handle) {
    heif_color_profile_nclx* told = nullptr;
    const heif_error error = heif_image_handle_get_nclx_color_profile(handle, &told);
    return SpaceTold(error, told);
}

std::optional<Cicp> SpaceOfData(const heif_image* image) {
    heif_color_profile_nclx* told = nullptr;
    const heif_error error = heif_image_get_nclx_color_profile(image, &told);
    return SpaceTold(error, told);
}

struct Decoded {
    HeifImage image;
    Cicp space; // what the file's own box says holds over what the codec's data say
};

// What the library hands out as it was coded, unless asked for something else: colour differences by BT.601
// over the full range. From all others it would come to these by way of red, green and blue.
bool IsPlain(const Cicp& space) {
    constexpr std::array kBt601{kUnspecified, 5, 6};
    return space.isFullRange && std::find(kBt601.begin(), kBt601.end(), space.matrix) != kBt601.end();
}

Decoded Decode(const heif_image_handle* handle, HeifChroma chroma) {
    struct Asked {
        heif_colorspace colours;
        heif_chroma chroma;
    };
    constexpr std::array<Asked, 4> kByChroma{{{heif_colorspace_undefined, heif_chroma_undefined}, // greys
                                              {heif_colorspace_YCbCr, heif_chroma_420},
                                              {heif_colorspace_YCbCr, heif_chroma_422},
                                              {heif_colorspace_YCbCr, heif_chroma_444}}};
    constexpr Asked kRgb{heif_colorspace_RGB, heif_chroma_444};
    const auto told = SpaceOfFile(handle);
    const bool isPlain = chroma == HeifChroma::None || !told || IsPlain(*told);
    const Asked asked = isPlain ? kByChroma[static_cast<std::size_t>(chroma)] : kRgb;
    HeifImage image = DecodeAs(handle, asked.colours, asked.chroma);
    const Cicp space = told ? *told : SpaceOfData(image.get()).value_or(Cicp{});
    return {std::move(image), space};
}

ByteBuffer IccProfileOf(const heif_image_handle* handle) {
    const std::size_t bytes = heif_image_handle_get_raw_color_profile_size(handle);
    if (bytes == 0 || bytes > kLargestProfile) {
        return {};
    }
    ByteBuffer profile(bytes);
    return heif_image_handle_get_raw_color_profile(handle, profile.data()).code == heif_error_Ok
               ? profile
               : ByteBuffer();
}

struct Attached {
    ByteBuffer exif; // as the item has it: an offset first
    ByteBuffer xmp;
};

Attached AttachedTo(const heif_image_handle* handle) {
    constexpr int kMostItems = 64;
    std::array<heif_item_id, kMostItems> ids{};
    const int count =
        heif_image_handle_get_list_of_metadata_block_IDs(handle, nullptr, ids.data(), kMostItems);
    Attached attached;
    for (int i = 0; i < count; ++i) {
        const heif_item_id id = ids[static_cast<std::size_t>(i)];
        const std::string_view type = heif_image_handle_get_metadata_type(handle, id);
        const std::string_view content = heif_image_handle_get_metadata_content_type(handle, id);
        const bool isExif = type == "Exif";
        const bool isXmp = type == "mime" && content == "application/rdf+xml";
        const std::size_t bytes = heif_image_handle_get_metadata_size(handle, id);
        ByteBuffer& place = isExif ? attached.exif : attached.xmp;
        if ((!isExif && !isXmp) || !place.empty() || bytes == 0 ||
            bytes > (isExif ? kLargestExif : kLargestXmp)) {
            continue;
        }
        place.resize(bytes);
        if (heif_image_handle_get_metadata(handle, id, place.data()).code != heif_error_Ok) {
            place.clear();
        }
    }
    return attached;
}

} // namespace

// A file type box that names, as its own or as compatible, a brand of still pictures or of sequences of them.
bool IsHeif(ByteView file) noexcept {
    constexpr std::array<std::string_view, 13> kBrands{"heic", "heix", "heim", "heis", "hevc", "hevx", "hevm",
                                                       "hevs", "mif1", "mif2", "msf1", "avif", "avis"};
    constexpr std::size_t kTypeAt = 4;
    constexpr std::size_t kMajorBrandAt = 8;
    constexpr std::size_t kMinorVersionAt = 12;
    constexpr std::size_t kMostBytes = 256;
    if (!StartsWith(Slice(file, kTypeAt), "ftyp")) {
        return false;
    }
    const std::size_t end = std::min<std::size_t>({BigEndian32(file, 0), file.size(), kMostBytes});
    for (std::size_t at = kMajorBrandAt; at + 4 <= end; at += 4) {
        const ByteView brand = Slice(file, at, 4);
        if (at != kMinorVersionAt && std::any_of(kBrands.begin(), kBrands.end(), [&](std::string_view known) {
                return StartsWith(brand, known);
            })) {
            return true;
        }
    }
    return false;
}

PixelArray ReadHeif(ByteView file, const ReadOptions& /*options*/) {
    const HeifContext context = OpenFile(file);
    const HeifHandle handle = PrimaryPicture(context.get());
    CheckClaimedSize(heif_image_handle_get_width(handle.get()), heif_image_handle_get_height(handle.get()),
                     file.size(), kMostPixelsPerByte);
    const auto [image, space] = Decode(handle.get(), FinestChroma(file));
    ByteBuffer profile = IccProfileOf(handle.get());
    const bool isIcc = !profile.empty();
    if (!isIcc) {
        profile = MakeCicpProfile(space.primaries, space.transfer);
    }
    PixelArray picture = PictureOfPlanes(image.get(), space.isFullRange, profile);
    if (heif_image_handle_is_premultiplied_alpha(handle.get()) != 0 && picture.HasAlpha()) {
        Unpremultiply(picture);
    }
    // Turns and mirrors are properties of the picture, and applied; the EXIF block says the same once more.
    const Attached attached = AttachedTo(handle.get());
    KeepMetadata(picture, ExifOfBox(attached.exif), attached.xmp);
    return picture;
}

} // namespace pictorel::codecs
