#include "imaging/metafile/EmfRecords.h"
namespace pictorel::metafile {
std::span<const EmfRow> EmfPathRows() noexcept {
    return {};
}
} // namespace pictorel::metafile
