// The mark at the left of a message box.
#pragma once

#include "platform/Messages.h"

#include <QPixmap>

namespace pictorel {

// 40 x 40 logical pixels, drawn for a screen of this device pixel ratio. Drawn here and not loaded, because a
// box also has to say that the folder of pictures is missing.
QPixmap MessageMark(MessageIcon icon, double devicePixelRatio);

} // namespace pictorel
