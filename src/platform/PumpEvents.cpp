// Lets pending window events run, see PumpEvents.h.
#include "platform/PumpEvents.h"

#include <QCoreApplication>
#include <QEventLoop>

namespace pictorel {

void PumpEvents() {
    QCoreApplication::processEvents();
}

void PumpWindowEvents() {
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

} // namespace pictorel
