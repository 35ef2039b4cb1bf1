#include "imaging/metafile/EmfRecords.h"
namespace pictorel::metafile {
std::span<const EmfRow> EmfRegionRows() noexcept {
    return {};
}
} // namespace pictorel::metafile
