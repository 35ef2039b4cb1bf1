// How often the colours of a picture occur, see ColourHistogram.h.
#include "picture/codecs/gif/ColourHistogram.h"

#include "picture/ForEachBand.h"

#include <mutex>

namespace pictorel::codecs {
namespace {

constexpr int kDrop = 8 - ColourHistogram::kBits;

std::size_t CellOf(const std::uint8_t* pixel) noexcept {
    constexpr int kBits = ColourHistogram::kBits;
    return static_cast<std::size_t>(pixel[0] >> kDrop << (2 * kBits) | pixel[1] >> kDrop << kBits |
                                    pixel[2] >> kDrop);
}

} // namespace

ColourHistogram::ColourHistogram(const PixelArray& picture) : cells_(kCells) {
    constexpr int kSlices = 4; // each counts for itself, which costs 4 MiB
    std::mutex mutex;
    const int rowsPerSlice = (picture.Height() + kSlices - 1) / kSlices;
    const std::size_t sliceBytes = picture.RowBytes() * static_cast<std::size_t>(rowsPerSlice);
    ForEachBand(kSlices, sliceBytes, [&](int first, int end) {
        Cells cells(kCells);
        for (int y = first * rowsPerSlice; y < std::min(end * rowsPerSlice, picture.Height()); ++y) {
            CountRow(picture.Row(y), picture.Width(), cells);
        }
        const std::lock_guard lock(mutex);
        for (std::size_t i = 0; i < kCells; ++i) {
            cells_[i].count += cells[i].count;
            for (std::size_t k = 0; k < 3; ++k) {
                cells_[i].sum[k] += cells[i].sum[k];
            }
        }
    });
}

void ColourHistogram::CountRow(const std::uint8_t* pixel, int width, Cells& cells) {
    constexpr unsigned kLowBits = (1U << kDrop) - 1;
    for (int x = 0; x < width; ++x, pixel += PixelArray::kComponents) {
        if (pixel[3] < kOpaqueFrom) {
            continue;
        }
        Cell& cell = cells[CellOf(pixel)];
        ++cell.count;
        for (std::size_t k = 0; k < 3; ++k) {
            cell.sum[k] += pixel[k] & kLowBits;
        }
    }
}

std::array<float, 3> ColourHistogram::Mean(std::size_t cell) const noexcept {
    constexpr std::size_t kMask = (std::size_t{1} << kBits) - 1;
    std::array<float, 3> mean{};
    const auto count = static_cast<float>(cells_[cell].count);
    for (std::size_t k = 0; k < 3; ++k) {
        const std::size_t base = (cell >> (2 * kBits - k * kBits) & kMask) << kDrop;
        mean[k] = static_cast<float>(base) + static_cast<float>(cells_[cell].sum[k]) / count;
    }
    return mean;
}

} // namespace pictorel::codecs
