// The records of Windows metafiles that do something, in groups of rows.
#pragma once

#include "picture/metafile/canvas/DeviceContext.h"
#include "picture/metafile/emf/EmfRecords.h"
#include "picture/metafile/wmf/WmfFormat.h"

#include <span>

namespace pictorel::metafile {

struct WmfRow {
    WmfType type;
    std::size_t leastBytes; // of the fields of a record that can be played
    RecordKind kind;

    // Fields count from behind the record's length and type. Most stand in the reverse order of the
    // parameters of the call that they record.
    void (*play)(DeviceContext& context, const Fields& fields);
};

std::span<const WmfRow> WmfStateRows() noexcept;
std::span<const WmfRow> WmfObjectRows() noexcept;
std::span<const WmfRow> WmfShapeRows() noexcept;
std::span<const WmfRow> WmfRegionRows() noexcept;
std::span<const WmfRow> WmfBitmapRows() noexcept;
std::span<const WmfRow> WmfTextRows() noexcept;

// The row of this record type, or null.
const WmfRow* FindWmfRow(std::uint16_t type) noexcept;

// Two fields that stand in reverse order: y, then x.
inline QPointF ReversedPoint(const Fields& fields, std::size_t at) noexcept {
    return {double(fields.Short(at + 2)), double(fields.Short(at))};
}

} // namespace pictorel::metafile
