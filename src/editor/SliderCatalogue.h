// The table of the 34 adjustment sliders, and the rules for their value texts and parameters.
#pragma once

#include "editor/OperationTable.h"

#include <QString>

#include <array>
#include <cstdint>
#include <functional>
#include <span>
#include <string_view>

namespace pictorel {

inline constexpr int kSliderCount = 34;
inline constexpr std::array kSliderGroups{1, 2, 3}; // that are reset together: Adjustments, Filters, Effects

enum class SliderPage { Adjustments, Filters, Effects };

enum class ValueText {
    Integer,          // v
    Hundredths,       // v / 100 with two decimals
    Tenths,           // v / 100 with one decimal, halves away from zero
    Percent,          // v%
    MagnitudePercent, // |v|%
    Times5Percent,    // 5 v%
    Times2p5Percent,  // 2.5 v%, halves to even
    Times10Percent,   // 10 v%
    Times2,           // 2 v
};

// What the second and third parameter of a slider's operation are.
enum class Gathering {
    OwnValue,   // (v, 0, 0)
    Vertical,   // (v, -1, 0)
    Horizontal, // (v, 0, 0): the direction flag is False
    Triple,     // the values of the three sliders from firstOfTriple on
};

struct SliderRow {
    SliderPage page;
    int resetGroup; // 1..3
    std::string_view caption;
    bool shown;
    int minimum;
    int maximum;
    int defaultValue;
    int tickSpacing;
    ValueText text;
    Operation operation;
    Gathering gathering = Gathering::OwnValue;
    int firstOfTriple = -1;
};

inline constexpr int kSharpenBlurSlider = 15;
inline constexpr int kMaximalMinimalSlider = 23;

std::span<const SliderRow, kSliderCount> SliderCatalogue() noexcept;

// Sliders of a page in the order in which they stand on it, from top to bottom; -1 stands for a gap.
std::span<const int> SlidersOfPage(SliderPage page) noexcept;

// The text of slider i's value box at `value`, with the locale's decimal separator.
QString SliderValueText(int slider, std::int32_t value);

// The parameters of slider i's operation; `valueOf` gives the value a slider has now.
Values GatherParameters(int slider, const std::function<std::int32_t(int)>& valueOf);

} // namespace pictorel
