// The fonts of the machine, read before the walls go up: drawings hold text.
#pragma once

namespace pictorel::decoder {

// Makes this program one that can draw text, without a screen, with every font of the machine open; where
// there are very many, with those that a few seconds allow, the common ones first.
void LoadFonts();

} // namespace pictorel::decoder
