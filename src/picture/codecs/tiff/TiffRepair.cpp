// Writes directories anew, see TiffRepair.h.
#include "picture/codecs/tiff/TiffRepair.h"

#include <tiffio.h>

#include <algorithm>
#include <array>
#include <functional>
#include <limits>
#include <map>
#include <vector>

namespace pictorel::codecs {
namespace {

using Numbers = std::vector<std::uint64_t>;

constexpr std::size_t kMostNumbers = std::size_t{1} << 20; // in one list
// Numbers that are written anew. Others, which the library needs for decoding, stay as they are.
constexpr std::array<std::uint16_t, 4> kLongs{TIFFTAG_IMAGEWIDTH, TIFFTAG_IMAGELENGTH, TIFFTAG_TILEWIDTH,
                                              TIFFTAG_TILELENGTH};
constexpr std::array<std::uint16_t, 8> kShorts{
    TIFFTAG_COMPRESSION,     TIFFTAG_PHOTOMETRIC,  TIFFTAG_FILLORDER, TIFFTAG_ORIENTATION,
    TIFFTAG_SAMPLESPERPIXEL, TIFFTAG_PLANARCONFIG, TIFFTAG_PREDICTOR, TIFFTAG_INKSET};
constexpr std::array<std::uint16_t, 17> kKept{
    TIFFTAG_MINSAMPLEVALUE,   TIFFTAG_MAXSAMPLEVALUE,      TIFFTAG_XRESOLUTION,    TIFFTAG_YRESOLUTION,
    TIFFTAG_GROUP3OPTIONS,    TIFFTAG_GROUP4OPTIONS,       TIFFTAG_RESOLUTIONUNIT, TIFFTAG_COLORMAP,
    TIFFTAG_SMINSAMPLEVALUE,  TIFFTAG_SMAXSAMPLEVALUE,     TIFFTAG_JPEGTABLES,     TIFFTAG_YCBCRCOEFFICIENTS,
    TIFFTAG_YCBCRSUBSAMPLING, TIFFTAG_REFERENCEBLACKWHITE, TIFFTAG_ICCPROFILE,     TIFFTAG_LERC_PARAMETERS,
    TIFFTAG_NUMBEROFINKS};

class Repair {
  public:
    Repair(const TiffStructure& structure, const TiffDirectory& page, ByteView file)
        : structure_(structure), page_(page), file_(file) {}

    std::optional<RepairedTiff> Run() {
        if (structure_.IsBig() || file_.size() > std::numeric_limits<std::uint32_t>::max() / 2) {
            return {};
        }
        for (const std::uint16_t tag : kLongs) {
            Keep(tag, tifftags::kTypeLong);
        }
        for (const std::uint16_t tag : kShorts) {
            Keep(tag, tifftags::kTypeShort);
        }
        MendNumbers();
        if (!MendSamples() || !MendBlocks()) {
            return {};
        }
        return Written();
    }

  private:
    // All numbers of an entry, whatever its type of integer; those below zero are none.
    Numbers NumbersOf(std::uint16_t tag) const {
        const TiffEntry* const entry = page_.Find(tag);
        if (entry == nullptr || entry->value.empty() || entry->count > kMostNumbers) {
            return {};
        }
        constexpr std::array<std::uint16_t, 8> kIntegers{TIFF_BYTE,   TIFF_SHORT, TIFF_LONG, TIFF_SBYTE,
                                                         TIFF_SSHORT, TIFF_SLONG, TIFF_IFD,  TIFF_UNDEFINED};
        if (std::find(kIntegers.begin(), kIntegers.end(), entry->type) == kIntegers.end()) {
            return {};
        }
        const auto width = static_cast<std::uint64_t>(entry->valueBytes / entry->count);
        const auto at = static_cast<std::uint64_t>(entry->value.data() - file_.data());
        Numbers numbers;
        for (std::uint64_t i = 0; i < entry->count; ++i) {
            numbers.push_back(structure_.Number(at + i * width, static_cast<int>(width)));
        }
        return numbers;
    }

    std::uint64_t First(std::uint16_t tag, std::uint64_t fallback) const {
        const Numbers numbers = NumbersOf(tag);
        return numbers.empty() ? fallback : numbers.front();
    }

    void Set(std::uint16_t tag, std::uint16_t type, const Numbers& numbers) {
        ByteBuffer& bytes = made_[tag];
        bytes.clear();
        TiffStructureWriter writer(bytes, structure_.IsLittleEndian());
        const int width = type == tifftags::kTypeShort ? 2 : 4;
        for (const std::uint64_t number : numbers) {
            writer.Number(number, width);
        }
        entries_[tag] = {
            .tag = tag, .type = type, .count = numbers.size(), .value = bytes, .valueBytes = bytes.size()};
    }

    void Keep(std::uint16_t tag, std::uint16_t type) {
        if (const Numbers numbers = NumbersOf(tag); !numbers.empty()) {
            Set(tag, type, {numbers.front()});
        }
    }

    void MendNumbers() {
        if (First(TIFFTAG_COMPRESSION, COMPRESSION_NONE) == 0) {
            Set(TIFFTAG_COMPRESSION, tifftags::kTypeShort, {COMPRESSION_NONE});
        }
        const std::uint64_t order = First(TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
        if (order != PLANARCONFIG_CONTIG && order != PLANARCONFIG_SEPARATE) {
            entries_.erase(TIFFTAG_PLANARCONFIG);
        }
        if (First(TIFFTAG_PREDICTOR, PREDICTOR_NONE) > PREDICTOR_FLOATINGPOINT) {
            entries_.erase(TIFFTAG_PREDICTOR);
        }
        for (const std::uint16_t tag : kKept) {
            const TiffEntry* const entry = page_.Find(tag);
            if (entry != nullptr && !entry->value.empty()) {
                entries_[tag] = *entry;
            }
        }
        if (First(TIFFTAG_COMPRESSION, COMPRESSION_NONE) == COMPRESSION_JPEG) {
            entries_.erase(TIFFTAG_YCBCRSUBSAMPLING); // the JPEG data say it themselves
            if (First(TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB) == PHOTOMETRIC_RGB &&
                First(TIFFTAG_SAMPLESPERPIXEL, 1) == 3) {
                Set(TIFFTAG_PHOTOMETRIC, tifftags::kTypeShort, {PHOTOMETRIC_YCBCR}); // which they mostly hold
            }
        }
    }

    // The lists with a number for each sample. False where samples differ in size, which is no slip.
    bool MendSamples() {
        const Numbers bits = NumbersOf(TIFFTAG_BITSPERSAMPLE);
        if (std::adjacent_find(bits.begin(), bits.end(), std::not_equal_to<>()) != bits.end()) {
            return false;
        }
        const std::uint64_t bitCount = std::max<std::uint64_t>(bits.size(), 1);
        const std::uint64_t samples =
            std::min<std::uint64_t>(First(TIFFTAG_SAMPLESPERPIXEL, bitCount), UINT16_MAX);
        Set(TIFFTAG_SAMPLESPERPIXEL, tifftags::kTypeShort, {samples});
        for (const std::uint16_t tag : {TIFFTAG_BITSPERSAMPLE, TIFFTAG_SAMPLEFORMAT}) {
            if (const Numbers numbers = NumbersOf(tag); !numbers.empty()) {
                Set(tag, tifftags::kTypeShort, Numbers(samples, numbers.front()));
            }
        }
        if (Numbers extra = NumbersOf(TIFFTAG_EXTRASAMPLES); !extra.empty()) {
            extra.resize(std::min<std::size_t>(extra.size(), samples));
            std::replace_if(
                extra.begin(), extra.end(), [](std::uint64_t kind) { return kind > EXTRASAMPLE_UNASSALPHA; },
                std::uint64_t{EXTRASAMPLE_UNSPECIFIED});
            Set(TIFFTAG_EXTRASAMPLES, tifftags::kTypeShort, extra);
        }
        return true;
    }

    // Where the strips or tiles stand and how long they are. False where nothing says where.
    bool MendBlocks() {
        const bool tiled = page_.Find(TIFFTAG_TILEWIDTH) != nullptr;
        Numbers offsets = NumbersOf(TIFFTAG_STRIPOFFSETS);
        if (offsets.empty()) {
            offsets = NumbersOf(TIFFTAG_TILEOFFSETS);
        }
        if (offsets.empty()) {
            return false;
        }
        Numbers counts = NumbersOf(tiled ? TIFFTAG_TILEBYTECOUNTS : TIFFTAG_STRIPBYTECOUNTS);
        if (counts.size() < offsets.size()) {
            counts = CountsBetween(offsets);
        }
        Set(tiled ? TIFFTAG_TILEOFFSETS : TIFFTAG_STRIPOFFSETS, tifftags::kTypeLong, offsets);
        Set(tiled ? TIFFTAG_TILEBYTECOUNTS : TIFFTAG_STRIPBYTECOUNTS, tifftags::kTypeLong, counts);
        if (!tiled) {
            const std::uint64_t height = First(TIFFTAG_IMAGELENGTH, 0);
            const std::uint64_t rows = First(TIFFTAG_ROWSPERSTRIP, 0);
            const bool separate = First(TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) == PLANARCONFIG_SEPARATE;
            const std::uint64_t planes =
                separate ? std::max<std::uint64_t>(First(TIFFTAG_SAMPLESPERPIXEL, 1), 1) : 1;
            const std::uint64_t strips = std::max<std::uint64_t>(offsets.size() / planes, 1);
            Set(TIFFTAG_ROWSPERSTRIP, tifftags::kTypeLong,
                {rows != 0 ? rows : std::max<std::uint64_t>((height + strips - 1) / strips, 1)});
        }
        return true;
    }

    // Each goes on to the next one, or to the end of the file.
    Numbers CountsBetween(const Numbers& offsets) const {
        Numbers sorted = offsets;
        sorted.push_back(file_.size());
        std::sort(sorted.begin(), sorted.end());
        Numbers counts;
        for (const std::uint64_t offset : offsets) {
            const auto next = std::upper_bound(sorted.begin(), sorted.end(), offset);
            counts.push_back(next == sorted.end() ? 0 : *next - offset);
        }
        return counts;
    }

    RepairedTiff Written() const {
        RepairedTiff repaired;
        repaired.file.assign(file_.begin(), file_.end());
        std::vector<TiffEntry> entries;
        for (const auto& [tag, entry] : entries_) {
            entries.push_back(entry);
        }
        repaired.directoryOffset =
            TiffStructureWriter(repaired.file, structure_.IsLittleEndian()).Directory(entries);
        return repaired;
    }

    const TiffStructure& structure_;
    const TiffDirectory& page_;
    ByteView file_;
    std::map<std::uint16_t, TiffEntry> entries_;
    std::map<std::uint16_t, ByteBuffer> made_; // the values of entries written anew
};

} // namespace

std::optional<RepairedTiff> RepairTiff(const TiffStructure& structure, const TiffDirectory& page,
                                       ByteView file) {
    return Repair(structure, page, file).Run();
}

} // namespace pictorel::codecs
