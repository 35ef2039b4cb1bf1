// Runs steps one after the other and goes on past those that fail: the manner of event handlers.
#pragma once

#include <exception>
#include <utility>

namespace pictorel {

// Writes to the log what a step that failed was about.
void LogSkipped(const std::exception& error) noexcept;

// Runs every step in order. A step that throws is dropped where it threw and the next one runs; the log says
// what was dropped, the person is told nothing, which is what the handlers that use this promise. A value
// that a failing step was to set stays as it was.
template <typename... Steps>
void CarryOn(Steps&&... steps) {
    const auto run = [](auto&& step) {
        try {
            step();
        } catch (const std::exception& error) {
            LogSkipped(error);
        }
    };
    (run(std::forward<Steps>(steps)), ...);
}

// Runs a routine that stops at its first error: its own result, or false where it threw.
template <typename Routine>
bool StopAtFirstError(Routine&& routine) {
    try {
        return std::forward<Routine>(routine)();
    } catch (const std::exception& error) {
        LogSkipped(error);
        return false;
    }
}

} // namespace pictorel
