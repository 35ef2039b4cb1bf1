// Lets pending window events run in the middle of a handler.
#pragma once

namespace pictorel {

void PumpEvents();

} // namespace pictorel
