#include "imaging/metafile/EmfRecords.h"
namespace pictorel::metafile {
std::span<const EmfRow> EmfObjectRows() noexcept {
    return {};
}
} // namespace pictorel::metafile
