// Lets pending window events run, see PumpEvents.h.
#include "platform/PumpEvents.h"

#include <QCoreApplication>

namespace pictorel {

void PumpEvents() {
    QCoreApplication::processEvents();
}

} // namespace pictorel
