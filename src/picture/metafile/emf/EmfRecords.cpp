// Finding what an enhanced metafile's record does, see EmfRecords.h.
#include "picture/metafile/emf/EmfRecords.h"

#include <array>

namespace pictorel::metafile {
namespace {

constexpr std::size_t kTypes = 128;

std::array<const EmfRow*, kTypes> RowsByType() noexcept {
    std::array<const EmfRow*, kTypes> byType{};
    for (const auto group : {EmfStateRows(), EmfObjectRows(), EmfShapeRows(), EmfPolyRows(), EmfPathRows(),
                             EmfRegionRows(), EmfBitmapRows(), EmfTextRows()}) {
        for (const EmfRow& row : group) {
            byType[static_cast<std::size_t>(row.type)] = &row;
        }
    }
    return byType;
}

} // namespace

const EmfRow* FindEmfRow(std::uint32_t type) noexcept {
    static const auto kRows = RowsByType();
    return type < kTypes ? kRows[type] : nullptr;
}

} // namespace pictorel::metafile
