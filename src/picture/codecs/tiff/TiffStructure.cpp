// Walks and writes the directories of TIFF files, see TiffStructure.h.
#include "picture/codecs/tiff/TiffStructure.h"

#include "picture/codecs/ByteReader.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace pictorel::codecs {
namespace {

constexpr std::array<std::string_view, 4> kSignatures{
    std::string_view("II*\0", 4), std::string_view("MM\0*", 4), // classic, offsets of four bytes
    std::string_view("II+\0", 4), std::string_view("MM\0+", 4), // BigTIFF, offsets of eight bytes
};

// Bytes of one value of each type, by its number; 0 for numbers that are no type.
constexpr std::array<std::uint8_t, 19> kTypeBytes{0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8, 4, 0, 0, 8, 8, 8};

// How wide the numbers of a directory are.
struct Widths {
    int entryCount;
    int offset; // and the count of values, and the room for a value in its entry
    std::uint64_t Entry() const noexcept { return 4 + 2 * static_cast<std::uint64_t>(offset); }
};
constexpr Widths kClassic{2, 4};
constexpr Widths kBig{8, 8};

} // namespace

const TiffEntry* TiffDirectory::Find(std::uint16_t tag) const noexcept {
    const auto found =
        std::find_if(entries.begin(), entries.end(), [tag](const TiffEntry& e) { return e.tag == tag; });
    return found == entries.end() ? nullptr : &*found;
}

bool TiffStructure::Recognises(ByteView file) noexcept {
    return std::any_of(kSignatures.begin(), kSignatures.end(),
                       [file](std::string_view signature) { return StartsWith(file, signature); });
}

TiffStructure::TiffStructure(ByteView file) noexcept
    : file_(file),
      littleEndian_(StartsWith(file, "I")),
      big_(StartsWith(file, kSignatures[2]) || StartsWith(file, kSignatures[3])) {}

std::uint64_t TiffStructure::Number(std::uint64_t offset, int bytes) const noexcept {
    std::uint64_t value = 0;
    for (int i = 0; i < bytes; ++i) {
        const int place = littleEndian_ ? bytes - 1 - i : i;
        value = value << 8 | ByteAt(file_, offset + static_cast<std::uint64_t>(place));
    }
    return value;
}

std::uint64_t TiffStructure::FirstDirectory() const noexcept {
    return big_ ? Number(8, kBig.offset) : Number(4, kClassic.offset);
}

std::optional<TiffDirectory> TiffStructure::Directory(std::uint64_t offset) const {
    const Widths& widths = big_ ? kBig : kClassic;
    const auto countBytes = static_cast<std::uint64_t>(widths.entryCount);
    if (offset == 0 || offset > file_.size() || file_.size() - offset < countBytes) {
        return {};
    }
    const std::uint64_t claimed = Number(offset, widths.entryCount);
    const std::uint64_t start = offset + countBytes;
    const std::uint64_t entries = std::min(claimed, (file_.size() - start) / widths.Entry());
    TiffDirectory directory;
    directory.entries.reserve(entries);
    for (std::uint64_t i = 0; i < entries; ++i) {
        const std::uint64_t at = start + i * widths.Entry();
        const auto room = static_cast<std::uint64_t>(widths.offset);
        TiffEntry entry{.tag = static_cast<std::uint16_t>(Number(at, 2)),
                        .type = static_cast<std::uint16_t>(Number(at + 2, 2)),
                        .count = Number(at + 4, widths.offset)};
        const std::uint64_t unit = entry.type < kTypeBytes.size() ? kTypeBytes[entry.type] : 0;
        entry.valueBytes = unit != 0 && entry.count > UINT64_MAX / unit ? UINT64_MAX : entry.count * unit;
        const std::uint64_t place =
            entry.valueBytes <= room ? at + 4 + room : Number(at + 4 + room, widths.offset);
        if (place <= file_.size() && entry.valueBytes <= file_.size() - place) {
            entry.value = file_.subspan(place, entry.valueBytes);
        }
        directory.entries.push_back(entry);
    }
    directory.next = entries == claimed ? Number(start + entries * widths.Entry(), widths.offset) : 0;
    return directory;
}

std::optional<std::uint64_t> TiffStructure::FirstNumber(const TiffEntry& entry) const noexcept {
    constexpr std::array<std::uint16_t, 6> kUnsigned{1, tifftags::kTypeShort, tifftags::kTypeLong, 13, 16,
                                                     18};
    if (entry.value.empty() || std::find(kUnsigned.begin(), kUnsigned.end(), entry.type) == kUnsigned.end()) {
        return {};
    }
    return Number(static_cast<std::uint64_t>(entry.value.data() - file_.data()), kTypeBytes[entry.type]);
}

void TiffStructureWriter::Number(std::uint64_t value, int bytes) {
    const std::size_t offset = out_.size();
    out_.resize(offset + static_cast<std::size_t>(bytes));
    NumberAt(offset, value, bytes);
}

void TiffStructureWriter::NumberAt(std::size_t offset, std::uint64_t value, int bytes) {
    for (int i = 0; i < bytes; ++i) {
        const int shift = 8 * (littleEndian_ ? i : bytes - 1 - i);
        out_[offset + static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(value >> shift);
    }
}

void TiffStructureWriter::Align() {
    out_.resize((out_.size() + 1) / 2 * 2);
}

std::uint32_t TiffStructureWriter::Directory(std::vector<TiffEntry> entries) {
    std::stable_sort(entries.begin(), entries.end(),
                     [](const TiffEntry& a, const TiffEntry& b) { return a.tag < b.tag; });
    Align();
    const std::size_t offset = out_.size();
    Number(entries.size(), kClassic.entryCount);
    std::size_t at = out_.size();
    out_.resize(at + entries.size() * kClassic.Entry());
    Number(0, kClassic.offset); // no next directory
    for (const TiffEntry& entry : entries) {
        NumberAt(at, entry.tag, 2);
        NumberAt(at + 2, entry.type, 2);
        NumberAt(at + 4, entry.count, 4);
        if (entry.value.size() <= 4) {
            std::copy(entry.value.begin(), entry.value.end(),
                      out_.begin() + static_cast<std::ptrdiff_t>(at) + 8);
        } else {
            Align();
            NumberAt(at + 8, out_.size(), 4);
            out_.insert(out_.end(), entry.value.begin(), entry.value.end());
        }
        at += kClassic.Entry();
    }
    return static_cast<std::uint32_t>(offset);
}

} // namespace pictorel::codecs
