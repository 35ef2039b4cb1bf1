// The records of enhanced metafiles that do something, in groups of rows.
#pragma once

#include "picture/metafile/Fields.h"
#include "picture/metafile/canvas/DeviceContext.h"
#include "picture/metafile/emf/EmfFormat.h"

#include <span>

namespace pictorel::metafile {

enum class RecordKind { Setting, Drawing, Bitmap };

struct EmfRow {
    EmfType type;
    std::size_t leastBytes; // of a record that can be played, with its type and length
    RecordKind kind;

    // Fields count from the start of the record.
    void (*play)(DeviceContext& context, const Fields& fields);
};

std::span<const EmfRow> EmfStateRows() noexcept;
std::span<const EmfRow> EmfObjectRows() noexcept;
std::span<const EmfRow> EmfShapeRows() noexcept;
std::span<const EmfRow> EmfPolyRows() noexcept;
std::span<const EmfRow> EmfPathRows() noexcept;
std::span<const EmfRow> EmfRegionRows() noexcept;
std::span<const EmfRow> EmfBitmapRows() noexcept;
std::span<const EmfRow> EmfTextRows() noexcept;

// The row of this record type, or null.
const EmfRow* FindEmfRow(std::uint32_t type) noexcept;

} // namespace pictorel::metafile
