// The switch of every control that depends on an open picture, see PictureControls.h.
#include "panels/PictureControls.h"

namespace pictorel {

void PictureControls::SetEditingEnabled(bool enabled) {
    for (Control* const control : controls_) {
        control->SetEnabled(enabled);
    }
    if (enabled && follower_) {
        follower_();
    }
}

} // namespace pictorel
