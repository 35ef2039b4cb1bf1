#include "imaging/metafile/EmfRecords.h"
namespace pictorel::metafile {
std::span<const EmfRow> EmfTextRows() noexcept {
    return {};
}
} // namespace pictorel::metafile
