// Runs steps one after the other and goes on past those that fail: the manner of event handlers.
#pragma once

#include <exception>
#include <utility>

namespace pictorel {

// Runs every step in order. A step that throws is dropped where it threw and the next one runs; nothing is
// reported, which is what the handlers that use this promise. A value that a failing step was to set stays as
// it was.
template <typename... Steps>
void CarryOn(Steps&&... steps) {
    const auto run = [](auto&& step) {
        try {
            step();
        } catch (const std::exception&) { // NOLINT(bugprone-empty-catch): dropping it is the purpose
        }
    };
    (run(std::forward<Steps>(steps)), ...);
}

// Runs a routine that stops at its first error: its own result, or false where it threw.
template <typename Routine>
bool StopAtFirstError(Routine&& routine) {
    try {
        return std::forward<Routine>(routine)();
    } catch (const std::exception&) {
        return false;
    }
}

} // namespace pictorel
