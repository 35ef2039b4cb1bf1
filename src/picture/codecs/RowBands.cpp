// Rows packed in bands, see RowBands.h.
#include "picture/codecs/RowBands.h"

#include "picture/ForEachBand.h"
#include "picture/codecs/FileMemory.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace pictorel::codecs {
namespace {

constexpr std::size_t kBandBytes = std::size_t{1} << 20;
constexpr std::size_t kTrailerBytes = 1024; // for what a format puts behind its rows

ByteBuffer PackBand(int firstRow, int endRow, std::size_t longestRow, const PackRow& packRow) {
    ByteBuffer band(static_cast<std::size_t>(endRow - firstRow) * longestRow);
    std::uint8_t* out = band.data();
    for (int row = firstRow; row < endRow; ++row) {
        out = packRow(row, out);
    }
    band.resize(static_cast<std::size_t>(out - band.data()));
    return band;
}

} // namespace

void AppendRows(ByteBuffer& file, int rows, std::size_t longestRow, const PackRow& packRow) {
    const int rowsPerBand = std::max(1, static_cast<int>(kBandBytes / longestRow));
    const int count = (rows + rowsPerBand - 1) / rowsPerBand;
    std::vector<ByteBuffer> bands(static_cast<std::size_t>(count));
    ForEachBand(count, std::max(kBandBytes, longestRow), [&](int first, int end) {
        for (int i = first; i < end; ++i) {
            bands[static_cast<std::size_t>(i)] =
                PackBand(i * rowsPerBand, std::min((i + 1) * rowsPerBand, rows), longestRow, packRow);
        }
    });
    const std::size_t total =
        std::accumulate(bands.begin(), bands.end(), file.size(),
                        [](std::size_t sum, const ByteBuffer& band) { return sum + band.size(); });
    ReserveFile(file, total + kTrailerBytes);
    for (ByteBuffer& band : bands) {
        file.insert(file.end(), band.begin(), band.end());
        band = {}; // so that a picture's worth of bytes is never held twice for long
    }
}

} // namespace pictorel::codecs
