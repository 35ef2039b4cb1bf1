// Colours of the skin for parts of controls for which palettes have no role.
#pragma once

#include <QColor>
#include <QPalette>

namespace pictorel {

// Edges, tracks and tick marks by which a control is recognised: 3 : 1 against what lies behind.
inline QColor EdgeColour(const QPalette& palette) {
    constexpr int kLessThanText = 112; // per cent darker
    return palette.color(QPalette::Disabled, QPalette::WindowText).darker(kLessThanText);
}

// Text that steps back and can still be read or clicked: 4.5 : 1.
inline QColor QuietTextColour(const QPalette& palette) {
    return palette.color(QPalette::Disabled, QPalette::HighlightedText);
}

} // namespace pictorel
