// Binds handlers to controls; the bindings die with their owner, and no exception crosses the event loop.
#pragma once

#include <QObject>

#include <exception>
#include <type_traits>
#include <utility>

namespace pictorel {

class Events {
  public:
    // Runs `handler` whenever `sender` raises the signal, with its arguments or with none, as it takes them.
    // What escapes the handler ends there: every handler that owes the person a message shows it itself.
    template <typename Sender, typename Signal, typename Handler>
    void On(Sender& sender, Signal signal, Handler handler) {
        QObject::connect(&sender, signal, &owner_, Guarded(std::move(handler)));
    }

    // The handler as a function that lets no exception out, for calls that are not signals.
    template <typename Handler>
    static auto Guarded(Handler handler) {
        // The result type is written out: whoever asks only whether a call fits must not look inside.
        return [handler = std::move(handler)](auto&&... arguments) -> void {
            try {
                if constexpr (std::is_invocable_v<const Handler&, decltype(arguments)...>) {
                    handler(std::forward<decltype(arguments)>(arguments)...);
                } else {
                    handler();
                }
            } catch (const std::exception& error) {
                qWarning("A handler failed: %s", error.what());
            }
        };
    }

  private:
    QObject owner_;
};

} // namespace pictorel
