#include "imaging/metafile/EmfRecords.h"
namespace pictorel::metafile {
std::span<const EmfRow> EmfPolyRows() noexcept {
    return {};
}
} // namespace pictorel::metafile
