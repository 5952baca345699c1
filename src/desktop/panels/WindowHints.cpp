#include "desktop/panels/WindowHints.h"

#include <QGuiApplication>
#include <QWidget>
#include <array>
#include <cstdlib>
#include <cstring>
#include <qguiapplication_platform.h>
#include <xcb/xcb.h>

namespace quarn::desktop {

namespace {

xcb_atom_t atom(xcb_connection_t* display, const char* name) {
    const auto request = xcb_intern_atom(display, 0, static_cast<uint16_t>(std::strlen(name)), name);
    auto* const reply = xcb_intern_atom_reply(display, request, nullptr);
    const xcb_atom_t result = reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
    std::free(reply); // NOLINT: the library allocates it so
    return result;
}

} // namespace

void keepOutOfTaskbar(QWidget& window) {
    auto* const x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    xcb_connection_t* const display =
        x11 ? x11->connection() : nullptr; // a platform may have one without the other
    if (!display) return;
    static const std::array hints{atom(display, "_NET_WM_STATE_SKIP_TASKBAR"),
                                  atom(display, "_NET_WM_STATE_SKIP_PAGER")};
    static const xcb_atom_t state = atom(display, "_NET_WM_STATE");
    // The window manager reads the property when the window appears. What Qt sets of it comes on top.
    xcb_change_property(display, XCB_PROP_MODE_REPLACE, static_cast<xcb_window_t>(window.winId()), state,
                        XCB_ATOM_ATOM, 32, hints.size(), hints.data());
}

} // namespace quarn::desktop
