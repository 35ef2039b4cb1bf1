// Lets events run in the middle of a handler, see PumpEvents.h.
#include "platform/PumpEvents.h"

#include <QCoreApplication>
#include <QEventLoop>

namespace pictorel {

void PaintPendingEvents() {
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents | QEventLoop::ExcludeSocketNotifiers);
}

void LetAllEventsRun() {
    QCoreApplication::processEvents();
}

} // namespace pictorel
