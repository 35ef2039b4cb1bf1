#include "imaging/metafile/WmfRecords.h"
namespace pictorel::metafile {
std::span<const WmfRow> WmfObjectRows() noexcept {
    return {};
}
} // namespace pictorel::metafile
