#include "imaging/metafile/WmfRecords.h"
namespace pictorel::metafile {
std::span<const WmfRow> WmfShapeRows() noexcept {
    return {};
}
} // namespace pictorel::metafile
