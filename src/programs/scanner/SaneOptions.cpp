// The settings of an open scanner, see SaneOptions.h.
#include "programs/scanner/SaneOptions.h"

#include <sane/saneopts.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <string_view>
#include <vector>

namespace pictorel::scanner {
namespace {

// The glass of the largest desktop scanners is A3. A longer range is that of a feeder, whose own setting fits
// the paper better than its limit.
constexpr double kLongestGlass = 450; // millimetres

struct Option {
    SANE_Int index;
    const SANE_Option_Descriptor* description; // the library's; valid until an option is set
};

std::optional<Option> FindOption(SANE_Handle device, std::string_view name) {
    SANE_Word count = 0;
    if (sane_control_option(device, 0, SANE_ACTION_GET_VALUE, &count, nullptr) != SANE_STATUS_GOOD) {
        return std::nullopt;
    }
    for (SANE_Int i = 1; i < count; ++i) {
        const SANE_Option_Descriptor* const description = sane_get_option_descriptor(device, i);
        if (description != nullptr && description->name != nullptr && name == description->name) {
            return SANE_OPTION_IS_ACTIVE(description->cap) ? std::optional(Option{i, description})
                                                           : std::nullopt;
        }
    }
    return std::nullopt;
}

bool IsNumber(const SANE_Option_Descriptor& option) {
    return (option.type == SANE_TYPE_INT || option.type == SANE_TYPE_FIXED) &&
           option.size == static_cast<SANE_Int>(sizeof(SANE_Word));
}

double ToNumber(const SANE_Option_Descriptor& option, SANE_Word word) {
    return option.type == SANE_TYPE_FIXED ? SANE_UNFIX(word) : word;
}

SANE_Word ToWord(const SANE_Option_Descriptor& option, double number) {
    return static_cast<SANE_Word>(
        std::lround(option.type == SANE_TYPE_FIXED ? number * (1 << SANE_FIXED_SCALE_SHIFT) : number));
}

SANE_Word NearestOfRange(const SANE_Range& range, SANE_Word wanted) {
    const std::int64_t inside = std::clamp(wanted, range.min, std::max(range.min, range.max));
    if (range.quant <= 0) {
        return static_cast<SANE_Word>(inside);
    }
    const std::int64_t steps = (inside - range.min + range.quant / 2) / range.quant;
    const std::int64_t whole = (std::int64_t{range.max} - range.min) / range.quant;
    return static_cast<SANE_Word>(range.min + std::min(steps, whole) * range.quant);
}

// Of two values equally near the larger one: more than was asked for rather than less.
SANE_Word NearestOfList(const SANE_Word* list, SANE_Word wanted) {
    SANE_Word best = wanted;
    for (SANE_Word i = 1; i <= list[0]; ++i) { // the first word is the list's length
        const auto distance = [&](SANE_Word value) { return std::abs(std::int64_t{value} - wanted); };
        if (i == 1 || distance(list[i]) < distance(best) ||
            (distance(list[i]) == distance(best) && list[i] > best)) {
            best = list[i];
        }
    }
    return best;
}

SANE_Word Nearest(const SANE_Option_Descriptor& option, SANE_Word wanted) {
    if (option.constraint_type == SANE_CONSTRAINT_RANGE && option.constraint.range != nullptr) {
        return NearestOfRange(*option.constraint.range, wanted);
    }
    if (option.constraint_type == SANE_CONSTRAINT_WORD_LIST && option.constraint.word_list != nullptr) {
        return NearestOfList(option.constraint.word_list, wanted);
    }
    return wanted;
}

void SetNumber(SANE_Handle device, std::string_view name, double wanted) {
    const auto option = FindOption(device, name);
    if (option && IsNumber(*option->description) && SANE_OPTION_IS_SETTABLE(option->description->cap)) {
        SANE_Word word = Nearest(*option->description, ToWord(*option->description, wanted));
        sane_control_option(device, option->index, SANE_ACTION_SET_VALUE, &word, nullptr);
    }
}

double NumberOf(SANE_Handle device, std::string_view name) {
    const auto option = FindOption(device, name);
    SANE_Word word = 0;
    if (!option || !IsNumber(*option->description) ||
        sane_control_option(device, option->index, SANE_ACTION_GET_VALUE, &word, nullptr) !=
            SANE_STATUS_GOOD) {
        return 0;
    }
    return ToNumber(*option->description, word);
}

bool ContainsWord(std::string_view text, std::string_view word) {
    const auto sameLetter = [](char a, char b) { return (a | 0x20) == (b | 0x20); };
    return std::search(text.begin(), text.end(), word.begin(), word.end(), sameLetter) != text.end();
}

// The entry that is the wish, else the first that contains it ("24bit Color"), else nothing.
const char* ChooseMode(const SANE_Option_Descriptor& option, const std::string& wish) {
    const char* containing = nullptr;
    if (option.constraint_type != SANE_CONSTRAINT_STRING_LIST || option.constraint.string_list == nullptr) {
        return nullptr;
    }
    for (const SANE_String_Const* entry = option.constraint.string_list; *entry != nullptr; ++entry) {
        if (wish == *entry) {
            return *entry;
        }
        // "Color Lineart" and "Color Halftone" hold eight colours.
        const bool coarse = ContainsWord(*entry, "lineart") || ContainsWord(*entry, "halftone");
        if (containing == nullptr && !coarse && ContainsWord(*entry, wish)) {
            containing = *entry;
        }
    }
    return containing;
}

void SetMode(SANE_Handle device, const std::string& wish) {
    const auto option = FindOption(device, SANE_NAME_SCAN_MODE);
    if (!option || option->description->type != SANE_TYPE_STRING ||
        !SANE_OPTION_IS_SETTABLE(option->description->cap)) {
        return;
    }
    const char* mode = ChooseMode(*option->description, wish);
    if (mode == nullptr) {
        mode = ChooseMode(*option->description, SANE_VALUE_SCAN_MODE_GRAY);
    }
    if (mode != nullptr) {
        // The library wants a buffer of the option's full size.
        const auto size = static_cast<std::size_t>(std::max<SANE_Int>(option->description->size, 0));
        const std::string_view text(mode);
        std::vector<char> value(std::max(size, text.size() + 1)); // all zero
        std::copy(text.begin(), text.end(), value.begin());
        sane_control_option(device, option->index, SANE_ACTION_SET_VALUE, value.data(), nullptr);
    }
}

void SetSwitch(SANE_Handle device, std::string_view name, bool on) {
    const auto option = FindOption(device, name);
    if (option && option->description->type == SANE_TYPE_BOOL &&
        SANE_OPTION_IS_SETTABLE(option->description->cap)) {
        SANE_Word word = on ? SANE_TRUE : SANE_FALSE;
        sane_control_option(device, option->index, SANE_ACTION_SET_VALUE, &word, nullptr);
    }
}

void SetToEndOfRange(SANE_Handle device, std::string_view name, bool toMaximum) {
    const auto option = FindOption(device, name);
    if (!option || !IsNumber(*option->description) || option->description->unit != SANE_UNIT_MM ||
        option->description->constraint_type != SANE_CONSTRAINT_RANGE ||
        option->description->constraint.range == nullptr) {
        return;
    }
    const SANE_Range& range = *option->description->constraint.range;
    if (ToNumber(*option->description, range.max) <= kLongestGlass) {
        SetNumber(device, name, ToNumber(*option->description, toMaximum ? range.max : range.min));
    }
}

} // namespace

void ApplyWishes(SANE_Handle device, const ScanWishes& wishes) {
    SetSwitch(device, SANE_NAME_PREVIEW, false);
    SetMode(device, wishes.mode);
    SetNumber(device, SANE_NAME_BIT_DEPTH, wishes.depth);
    for (const char* const name :
         {SANE_NAME_SCAN_RESOLUTION, SANE_NAME_SCAN_X_RESOLUTION, SANE_NAME_SCAN_Y_RESOLUTION}) {
        SetNumber(device, name, wishes.dotsPerInch);
    }
    SetToEndOfRange(device, SANE_NAME_SCAN_TL_X, false);
    SetToEndOfRange(device, SANE_NAME_SCAN_TL_Y, false);
    SetToEndOfRange(device, SANE_NAME_SCAN_BR_X, true);
    SetToEndOfRange(device, SANE_NAME_SCAN_BR_Y, true);
}

Resolution CurrentResolution(SANE_Handle device) {
    const double both = NumberOf(device, SANE_NAME_SCAN_RESOLUTION);
    const double x = NumberOf(device, SANE_NAME_SCAN_X_RESOLUTION);
    const double y = NumberOf(device, SANE_NAME_SCAN_Y_RESOLUTION);
    return {x > 0 ? x : both, y > 0 ? y : both};
}

} // namespace pictorel::scanner
