// Finding what a Windows metafile's record does, see WmfRecords.h.
#include "picture/metafile/wmf/WmfRecords.h"

#include <algorithm>
#include <vector>

namespace pictorel::metafile {
namespace {

std::vector<WmfRow> SortedRows() {
    std::vector<WmfRow> rows;
    for (const auto group :
         {WmfStateRows(), WmfObjectRows(), WmfShapeRows(), WmfRegionRows(), WmfBitmapRows(), WmfTextRows()}) {
        rows.insert(rows.end(), group.begin(), group.end());
    }
    std::sort(rows.begin(), rows.end(), [](const WmfRow& a, const WmfRow& b) { return a.type < b.type; });
    return rows;
}

} // namespace

const WmfRow* FindWmfRow(std::uint16_t type) noexcept {
    static const std::vector<WmfRow> kRows = SortedRows();
    const auto wanted = static_cast<WmfType>(type);
    const auto found = std::lower_bound(kRows.begin(), kRows.end(), wanted,
                                        [](const WmfRow& row, WmfType value) { return row.type < value; });
    return found != kRows.end() && found->type == wanted ? &*found : nullptr;
}

} // namespace pictorel::metafile
