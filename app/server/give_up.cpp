// SPDX-License-Identifier: MIT
#include "app/server/give_up.h"

#include <QGuiApplication>

#include <cstdlib>
#include <utility>

#include <xcb/xcb.h>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr xcb_keysym_t escapeSymbol = 0xff1b;

struct Free
{
    void operator()(void *memory) const noexcept { std::free(memory); }
};

template <typename T>
using Reply = std::unique_ptr<T, Free>;

/// The key that gives this symbol without a modifier; 0 when none does.
xcb_keycode_t keyOf(xcb_connection_t *connection, xcb_keysym_t symbol)
{
    const xcb_setup_t *setup = xcb_get_setup(connection);
    const auto count = static_cast<std::uint8_t>(setup->max_keycode - setup->min_keycode + 1);
    const Reply<xcb_get_keyboard_mapping_reply_t> keys(xcb_get_keyboard_mapping_reply(
        connection, xcb_get_keyboard_mapping(connection, setup->min_keycode, count), nullptr));
    if (!keys || keys->keysyms_per_keycode == 0)
        return 0;
    const xcb_keysym_t *symbols = xcb_get_keyboard_mapping_keysyms(keys.get());
    for (int key = 0; key < count; ++key) {
        if (symbols[key * keys->keysyms_per_keycode] == symbol)
            return static_cast<xcb_keycode_t>(setup->min_keycode + key);
    }
    return 0;
}

bool isSame(const WaitSign::Button &one, const WaitSign::Button &other)
{
    return one.window == other.window && one.place == other.place;
}

} // namespace

void GiveUpButton::Disconnect::operator()(xcb_connection_t *connection) const noexcept
{
    xcb_disconnect(connection); // window and grabs end with it
}

GiveUpButton::GiveUpButton(QByteArray display) : m_display(std::move(display)) {}

GiveUpButton::~GiveUpButton() = default;

bool GiveUpButton::canBeOffered() const
{
    return QGuiApplication::platformName() == "xcb"_L1;
}

void GiveUpButton::offer(const std::optional<WaitSign::Button> &button)
{
    if (button && m_place && isSame(*button, *m_place))
        return;
    m_connection.reset();
    m_place.reset();
    if (button && button->window != 0 && canBeOffered())
        listen(*button);
}

void GiveUpButton::listen(const WaitSign::Button &button)
{
    m_connection.reset(xcb_connect(m_display.isEmpty() ? nullptr : m_display.constData(), nullptr));
    xcb_connection_t *connection = m_connection.get();
    if (xcb_connection_has_error(connection) != 0)
        return m_connection.reset();
    const auto bearer = static_cast<xcb_window_t>(button.window);
    const QRect &place = button.place;
    m_window = xcb_generate_id(connection);
    const std::uint32_t events = XCB_EVENT_MASK_BUTTON_PRESS;
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, m_window, bearer, static_cast<std::int16_t>(place.x()),
                      static_cast<std::int16_t>(place.y()), static_cast<std::uint16_t>(place.width()),
                      static_cast<std::uint16_t>(place.height()), 0, XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT,
                      XCB_CW_EVENT_MASK, &events);
    xcb_map_window(connection, m_window);
    if (const xcb_keycode_t escape = keyOf(connection, escapeSymbol); escape != 0)
        xcb_grab_key(connection, 0, bearer, XCB_MOD_MASK_ANY, escape, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    xcb_flush(connection);
    m_place = button;
}

bool GiveUpButton::wasPressed()
{
    bool pressed = false;
    while (m_connection) {
        const Reply<xcb_generic_event_t> event(xcb_poll_for_event(m_connection.get()));
        if (!event)
            break;
        const int type = event->response_type & 0x7f;
        pressed = pressed || type == XCB_BUTTON_PRESS || type == XCB_KEY_PRESS;
    }
    return pressed;
}

} // namespace harrowby::app
