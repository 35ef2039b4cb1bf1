// The zoom levels that zooming in and out goes through, step by step.
#pragma once

namespace pictorel {

// What the person at the view may reach with buttons, wheel and slider.
inline constexpr double kSmallestZoom = 0.01;
inline constexpr double kLargestZoom = 10.0;

// The nearest rung above / below `zoom`; `zoom` itself where the ladder has none, so that a step never goes
// the wrong way. A zoom within a millionth of a rung counts as standing on it.
double RungAbove(double zoom) noexcept;
double RungBelow(double zoom) noexcept;

} // namespace pictorel
