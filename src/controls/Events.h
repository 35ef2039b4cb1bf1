// Binds handlers to controls; the bindings die with their owner, and no exception crosses the event loop.
#pragma once

#include <QObject>

#include <exception>
#include <type_traits>
#include <utility>

namespace pictorel {

// A handler that lets no exception out, callable with the arguments that it takes or with any it does not
// look at.
template <typename Handler>
struct Guard {
    Handler handler;

    template <typename... Arguments>
    requires std::is_invocable_v<Handler&, Arguments...> || std::is_invocable_v<Handler&>
    void operator()(Arguments&&... arguments) {
        try {
            if constexpr (std::is_invocable_v<Handler&, Arguments...>) {
                handler(std::forward<Arguments>(arguments)...);
            } else {
                handler();
            }
        } catch (const std::exception& error) {
            qWarning("A handler failed: %s", error.what());
        }
    }
};

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
        return Guard<Handler>{std::move(handler)};
    }

  private:
    QObject owner_;
};

} // namespace pictorel
