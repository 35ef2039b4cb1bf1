#include "imaging/metafile/EmfRecords.h"
namespace pictorel::metafile {
std::span<const EmfRow> EmfShapeRows() noexcept {
    return {};
}
} // namespace pictorel::metafile
