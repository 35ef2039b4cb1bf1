// Goes on past steps that fail, see CarryOn.h.
#include "platform/CarryOn.h"

#include <QDebug>

namespace pictorel {

void LogSkipped(const std::exception& error) noexcept {
    qWarning("Skipped: %s", error.what());
}

} // namespace pictorel
