// Asks the X server for its compositing manager, see Compositor.h.
#include "controls/Compositor.h"

#include <QGuiApplication>
#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>
#include <string_view>

namespace pictorel {
namespace {

// By convention (Extended Window Manager Hints, 1.3) a compositing manager owns this selection of the screen.
constexpr std::string_view kManagerSelection = "_NET_WM_CM_S0";

struct Free {
    void operator()(void* reply) const { std::free(reply); }
};

template <typename Reply>
using ReplyPointer = std::unique_ptr<Reply, Free>;

} // namespace

bool HasCompositor() {
    const auto* const x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    xcb_connection_t* const server = x11 != nullptr ? x11->connection() : nullptr;
    if (server == nullptr) { // no X11 desktop, or none to be seen
        return true;
    }
    const auto asked = xcb_intern_atom(server, 0, kManagerSelection.size(), kManagerSelection.data());
    const ReplyPointer<xcb_intern_atom_reply_t> atom(xcb_intern_atom_reply(server, asked, nullptr));
    if (atom == nullptr) {
        return false;
    }
    const ReplyPointer<xcb_get_selection_owner_reply_t> owner(
        xcb_get_selection_owner_reply(server, xcb_get_selection_owner(server, atom->atom), nullptr));
    return owner != nullptr && owner->owner != XCB_WINDOW_NONE;
}

} // namespace pictorel
