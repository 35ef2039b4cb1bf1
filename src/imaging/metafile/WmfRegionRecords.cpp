#include "imaging/metafile/WmfRecords.h"
namespace pictorel::metafile {
std::span<const WmfRow> WmfRegionRows() noexcept {
    return {};
}
} // namespace pictorel::metafile
