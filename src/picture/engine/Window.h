// The part of an operation's result that is wanted.
#pragma once

#include <optional>

namespace pictorel::engine {

// In pixels of the whole result, inside of it and not empty. An operation that moves pixels across the whole
// picture makes just these, out of a source that is whole: what is seen of a large picture costs no more than
// of a small one. The result is what cutting the window out of the whole result would leave, within a level
// or two of rounding.
struct Window {
    int left;
    int top;
    int width;
    int height;

    int Right() const noexcept { return left + width; }
    int Bottom() const noexcept { return top + height; }
};

using OptionalWindow = std::optional<Window>;

} // namespace pictorel::engine
