// SPDX-License-Identifier: MIT
#include "app/start/window_manager.h"

#include <QGuiApplication>
#include <QWindow>

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

struct Free
{
    void operator()(void *reply) const noexcept { std::free(reply); }
};

template <typename Reply>
using Owned = std::unique_ptr<Reply, Free>;

/// Null on another platform than X11.
xcb_connection_t *connection()
{
    auto *application = qobject_cast<QGuiApplication *>(QCoreApplication::instance());
    if (application == nullptr || QGuiApplication::platformName() != u"xcb"_s)
        return nullptr;
    const auto *x11 = application->nativeInterface<QNativeInterface::QX11Application>();
    return x11 != nullptr ? x11->connection() : nullptr;
}

xcb_window_t rootWindow(xcb_connection_t *server)
{
    return xcb_setup_roots_iterator(xcb_get_setup(server)).data->root;
}

xcb_atom_t atom(xcb_connection_t *server, QByteArrayView name)
{
    const auto asked = xcb_intern_atom(server, 1, static_cast<std::uint16_t>(name.size()), name.data());
    const Owned<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(server, asked, nullptr));
    return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

/// The window that a property names; none when there is no such property, or no such window.
xcb_window_t windowIn(xcb_connection_t *server, xcb_window_t window, xcb_atom_t property)
{
    const auto asked = xcb_get_property(server, 0, window, property, XCB_ATOM_WINDOW, 0, 1);
    xcb_generic_error_t *error = nullptr;
    const Owned<xcb_get_property_reply_t> reply(xcb_get_property_reply(server, asked, &error));
    const Owned<xcb_generic_error_t> dropped(error);
    if (!reply || xcb_get_property_value_length(reply.get()) < static_cast<int>(sizeof(xcb_window_t)))
        return XCB_WINDOW_NONE;
    return *static_cast<const xcb_window_t *>(xcb_get_property_value(reply.get()));
}

} // namespace

bool hasWindowManager()
{
    xcb_connection_t *server = connection();
    if (server == nullptr)
        return true;
    const xcb_atom_t check = atom(server, "_NET_SUPPORTING_WM_CHECK");
    if (check == XCB_ATOM_NONE)
        return false;
    // A killed window manager leaves the property behind, naming a window that no longer exists.
    const xcb_window_t manager = windowIn(server, rootWindow(server), check);
    return manager != XCB_WINDOW_NONE && windowIn(server, manager, check) == manager;
}

bool keyboardIsFree()
{
    xcb_connection_t *server = connection();
    if (server == nullptr)
        return false;
    const Owned<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(server, xcb_get_input_focus(server), nullptr));
    return reply && (reply->focus == XCB_INPUT_FOCUS_NONE || reply->focus == XCB_INPUT_FOCUS_POINTER_ROOT ||
                     reply->focus == rootWindow(server));
}

void giveKeyboard(const QWindow &window)
{
    xcb_connection_t *server = connection();
    if (server == nullptr)
        return;
    xcb_set_input_focus(server, XCB_INPUT_FOCUS_PARENT, static_cast<xcb_window_t>(window.winId()), XCB_CURRENT_TIME);
    xcb_flush(server);
}

} // namespace harrowby::app
