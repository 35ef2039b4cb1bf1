// Whether what lies under a translucent window shines through it.
#pragma once

namespace pictorel {

// False only on an X11 desktop on which no compositing manager runs: there, what a translucent window leaves
// open shows as black.
bool HasCompositor();

} // namespace pictorel
