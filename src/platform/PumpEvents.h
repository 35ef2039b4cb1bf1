// Lets events run in the middle of a handler.
#pragma once

namespace pictorel {

// Paints and lays out what is pending. What the person does meanwhile, and what sockets bring, waits until
// the handler has ended.
void PaintPendingEvents();

// Lets everything run, the person's input too: for a start-up whose controls are all off, and for nothing
// else.
void LetAllEventsRun();

} // namespace pictorel
