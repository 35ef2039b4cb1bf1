// The directories of a TIFF file: tags with their values, walked and written without looking at pixels.
#pragma once

#include "picture/codecs/Codec.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace pictorel::codecs {

namespace tifftags {
// The tags that we look at ourselves; libtiff reads the others.
inline constexpr std::uint16_t kNewSubfileType = 254;
inline constexpr std::uint16_t kSubfileType = 255;
inline constexpr std::uint16_t kImageWidth = 256;
inline constexpr std::uint16_t kImageLength = 257;
inline constexpr std::uint16_t kBitsPerSample = 258;
inline constexpr std::uint16_t kCompression = 259;
inline constexpr std::uint16_t kPhotometric = 262;
inline constexpr std::uint16_t kImageDescription = 270;
inline constexpr std::uint16_t kMake = 271;
inline constexpr std::uint16_t kModel = 272;
inline constexpr std::uint16_t kStripOffsets = 273;
inline constexpr std::uint16_t kOrientation = 274;
inline constexpr std::uint16_t kSamplesPerPixel = 277;
inline constexpr std::uint16_t kRowsPerStrip = 278;
inline constexpr std::uint16_t kStripByteCounts = 279;
inline constexpr std::uint16_t kXResolution = 282;
inline constexpr std::uint16_t kYResolution = 283;
inline constexpr std::uint16_t kPlanarConfiguration = 284;
inline constexpr std::uint16_t kResolutionUnit = 296;
inline constexpr std::uint16_t kSoftware = 305;
inline constexpr std::uint16_t kDateTime = 306;
inline constexpr std::uint16_t kArtist = 315;
inline constexpr std::uint16_t kHostComputer = 316;
inline constexpr std::uint16_t kPredictor = 317;
inline constexpr std::uint16_t kExtraSamples = 338;
inline constexpr std::uint16_t kXmp = 700;
inline constexpr std::uint16_t kRating = 18246;
inline constexpr std::uint16_t kCopyright = 33432;
inline constexpr std::uint16_t kExifDirectory = 34665;
inline constexpr std::uint16_t kIccProfile = 34675;
inline constexpr std::uint16_t kGpsDirectory = 34853;
inline constexpr std::uint16_t kInteroperabilityDirectory = 40965;

inline constexpr std::uint16_t kTypeByte = 1;
inline constexpr std::uint16_t kTypeAscii = 2;
inline constexpr std::uint16_t kTypeShort = 3;
inline constexpr std::uint16_t kTypeLong = 4;
inline constexpr std::uint16_t kTypeRational = 5;
inline constexpr std::uint16_t kTypeUndefined = 7;
} // namespace tifftags

// One tag. Its value is in the byte order of its file.
struct TiffEntry {
    std::uint16_t tag = 0;
    std::uint16_t type = 0;
    std::uint64_t count = 0;
    ByteView value{};             // empty where the file does not hold it all
    std::uint64_t valueBytes = 0; // that the type and the count claim
};

struct TiffDirectory {
    std::vector<TiffEntry> entries;
    std::uint64_t next = 0; // offset of the next directory, 0 after the last

    const TiffEntry* Find(std::uint16_t tag) const noexcept;
};

// A checked view of a TIFF structure, classic or BigTIFF, in either byte order.
class TiffStructure {
  public:
    // Whether the bytes begin as a TIFF file does.
    static bool Recognises(ByteView file) noexcept;

    explicit TiffStructure(ByteView file) noexcept;

    bool IsLittleEndian() const noexcept { return littleEndian_; }
    bool IsBig() const noexcept { return big_; }
    std::uint64_t FirstDirectory() const noexcept; // its offset, 0 where there is none

    // Nothing where it does not lie in the file.
    std::optional<TiffDirectory> Directory(std::uint64_t offset) const;

    // A number of `bytes` bytes at an offset; beyond the end is 0.
    std::uint64_t Number(std::uint64_t offset, int bytes) const noexcept;

    // The first value of an entry of an unsigned integer type; nothing where it has none.
    std::optional<std::uint64_t> FirstNumber(const TiffEntry& entry) const noexcept;

  private:
    ByteView file_;
    bool littleEndian_ = false;
    bool big_ = false;
};

// Appends numbers and classic directories in a byte order.
class TiffStructureWriter {
  public:
    TiffStructureWriter(ByteBuffer& out, bool littleEndian) : out_(out), littleEndian_(littleEndian) {}

    void Number(std::uint64_t value, int bytes);
    void NumberAt(std::size_t offset, std::uint64_t value, int bytes);

    // A directory of the entries, sorted by their tags, with the values that do not fit into them behind it.
    // Returns its offset.
    std::uint32_t Directory(std::vector<TiffEntry> entries);

  private:
    void Align(); // directories and values stand at even offsets

    ByteBuffer& out_;
    bool littleEndian_;
};

} // namespace pictorel::codecs
