#include "imaging/metafile/WmfRecords.h"
namespace pictorel::metafile {
std::span<const WmfRow> WmfTextRows() noexcept {
    return {};
}
} // namespace pictorel::metafile
