// The switch of every control that depends on an open picture.
#pragma once

#include "controls/Control.h"

#include <functional>
#include <vector>

namespace pictorel {

class PictureControls {
  public:
    // In the order of switching.
    explicit PictureControls(std::vector<Control*> controls) : controls_(std::move(controls)) {}

    void SetEditingEnabled(bool enabled);

    // What settles the states that do not only depend on there being a picture; runs after each switching on.
    void SetFollower(std::function<void()> follower) { follower_ = std::move(follower); }

  private:
    std::vector<Control*> controls_;
    std::function<void()> follower_;
};

} // namespace pictorel
