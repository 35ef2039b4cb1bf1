// Carries EXIF between TIFF directories and blocks, see TiffMetadata.h.
#include "picture/codecs/tiff/TiffMetadata.h"

#include <algorithm>
#include <array>

namespace pictorel::codecs {
namespace {

constexpr std::array<std::uint16_t, 15> kDescriptive{tifftags::kImageDescription,
                                                     tifftags::kMake,
                                                     tifftags::kModel,
                                                     tifftags::kDateTime,
                                                     tifftags::kArtist,
                                                     tifftags::kHostComputer,
                                                     tifftags::kRating,
                                                     tifftags::kCopyright,
                                                     tifftags::kExifDirectory,
                                                     tifftags::kGpsDirectory,
                                                     40091, // title, comment, author, keywords and subject,
                                                     40092, // as the file manager of Windows writes them
                                                     40093,
                                                     40094,
                                                     40095};

constexpr std::array<std::uint16_t, 3> kPointers{tifftags::kExifDirectory, tifftags::kGpsDirectory,
                                                 tifftags::kInteroperabilityDirectory};

template <std::size_t kSize>
bool Holds(const std::array<std::uint16_t, kSize>& tags, std::uint16_t tag) noexcept {
    return std::find(tags.begin(), tags.end(), tag) != tags.end();
}

// Copies directories into a block; sub-directories first, since their parents hold their offsets.
class BlockBuilder {
  public:
    explicit BlockBuilder(const TiffStructure& structure)
        : structure_(structure), writer_(block_, structure.IsLittleEndian()) {
        const std::uint8_t order = structure.IsLittleEndian() ? 'I' : 'M';
        block_ = {order, order};
        writer_.Number(42, 2);
        writer_.Number(0, 4); // the offset of the first directory, set by Finish()
    }

    // Returns the offset of the copy.
    std::uint32_t Copy(const std::vector<TiffEntry>& entries, int depth) {
        std::vector<TiffEntry> kept;
        std::vector<ByteBuffer> pointers;
        pointers.reserve(kPointers.size());
        for (const TiffEntry& entry : entries) {
            if (!Holds(kPointers, entry.tag)) {
                // Types beyond 12 are BigTIFF's own.
                if (!entry.value.empty() && entry.type <= 12 && Afford(entry.value.size())) {
                    kept.push_back(entry);
                }
                continue;
            }
            const auto target = structure_.Directory(structure_.FirstNumber(entry).value_or(0));
            if (target && depth < kDeepest && pointers.size() < kPointers.size()) {
                const std::uint32_t offset = Copy(target->entries, depth + 1);
                ByteBuffer& bytes = pointers.emplace_back();
                TiffStructureWriter(bytes, structure_.IsLittleEndian()).Number(offset, 4);
                kept.push_back({.tag = entry.tag,
                                .type = tifftags::kTypeLong,
                                .count = 1,
                                .value = bytes,
                                .valueBytes = 4});
            }
        }
        return writer_.Directory(std::move(kept));
    }

    ByteBuffer Finish(std::uint32_t firstDirectory) {
        writer_.NumberAt(4, firstDirectory, 4);
        return tooLarge_ ? ByteBuffer{} : std::move(block_);
    }

  private:
    static constexpr int kDeepest = 2; // the page, EXIF, interoperability
    static constexpr std::size_t kLargest = std::size_t{4} << 20;

    // Entries may all point to the same megabytes.
    bool Afford(std::size_t bytes) {
        constexpr std::size_t kEntry = 12;
        spent_ += bytes + kEntry;
        tooLarge_ = tooLarge_ || spent_ > kLargest;
        return !tooLarge_;
    }

    const TiffStructure& structure_;
    ByteBuffer block_;
    TiffStructureWriter writer_;
    std::size_t spent_ = 0;
    bool tooLarge_ = false;
};

} // namespace

std::vector<TiffEntry> DescriptiveEntries(const TiffDirectory& directory) {
    std::vector<TiffEntry> entries;
    for (const TiffEntry& entry : directory.entries) {
        const auto same = [&](const TiffEntry& other) { return other.tag == entry.tag; };
        if (Holds(kDescriptive, entry.tag) && !entry.value.empty() &&
            std::none_of(entries.begin(), entries.end(), same)) {
            entries.push_back(entry);
        }
    }
    return entries;
}

ByteBuffer ExifOfPage(const TiffStructure& structure, const TiffDirectory& page) {
    std::vector<TiffEntry> entries = DescriptiveEntries(page);
    if (entries.empty()) {
        return {};
    }
    ByteBuffer upright;
    TiffStructureWriter(upright, structure.IsLittleEndian()).Number(1, 2);
    entries.push_back({.tag = tifftags::kOrientation,
                       .type = tifftags::kTypeShort,
                       .count = 1,
                       .value = upright,
                       .valueBytes = 2});
    for (const std::uint16_t tag :
         {tifftags::kXResolution, tifftags::kYResolution, tifftags::kResolutionUnit}) {
        if (const TiffEntry* const entry = page.Find(tag)) {
            entries.push_back(*entry);
        }
    }
    BlockBuilder builder(structure);
    return builder.Finish(builder.Copy(entries, 0));
}

} // namespace pictorel::codecs
