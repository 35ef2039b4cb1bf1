// Lets pending window events run in the middle of a handler.
#pragma once

namespace pictorel {

void PumpEvents();

// Paints and lays out what is pending; what the person does meanwhile waits until the handler has ended.
void PumpWindowEvents();

} // namespace pictorel
