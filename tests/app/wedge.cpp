// SPDX-License-Identifier: MIT
#include "tests/app/wedge.h"

#include <QTest>

#include <xcb/xcb.h>
#include <xcb/xcbext.h>

#include <array>
#include <cstdlib>
#include <optional>
#include <utility>

namespace harrowby::app::test {

namespace {

/// XTestFakeInput of the XTEST protocol.
struct FakeInput
{
    quint8 major = 0;
    quint8 minor = 2;
    quint16 length = 0;
    quint8 type = 0;
    quint8 detail = 0;
    quint16 unused = 0;
    quint32 delay = 0; ///< milliseconds that the server waits before
    quint32 root = 0;
    std::array<quint8, 8> unused2{};
    quint16 x = 0;
    quint16 y = 0;
    std::array<quint8, 7> unused3{};
    quint8 device = 0;
};
static_assert(sizeof(FakeInput) == 36);

xcb_extension_t xtest{"XTEST", 0};

/// The same number as the Unicode character in Latin-1; for Enter and Tab the keys' own.
quint32 keysymOf(QChar character)
{
    if (character == u'\r')
        return 0xFF0D;
    return character == u'\t' ? 0xFF09 : character.unicode();
}

struct Key
{
    int keycode = 0;
    bool shifted = false;
};

using Mapping = std::unique_ptr<xcb_get_keyboard_mapping_reply_t, decltype(&std::free)>;

/// To be asked before anything is typed: the answer waits for what is on its way.
Mapping mappingOf(xcb_connection_t *server)
{
    const xcb_setup_t *setup = xcb_get_setup(server);
    const auto count = static_cast<quint8>(setup->max_keycode - setup->min_keycode + 1);
    const auto asked = xcb_get_keyboard_mapping(server, setup->min_keycode, count);
    return {xcb_get_keyboard_mapping_reply(server, asked, nullptr), &std::free};
}

/// In the first group of the layout.
std::optional<Key> keyOf(const xcb_get_keyboard_mapping_reply_t &mapping, int firstKeycode, quint32 keysym)
{
    const xcb_keysym_t *keysyms = xcb_get_keyboard_mapping_keysyms(&mapping);
    const int width = mapping.keysyms_per_keycode;
    const int count = xcb_get_keyboard_mapping_keysyms_length(&mapping) / width;
    for (int level = 0; level < 2; ++level) {
        for (int key = 0; key < count; ++key) {
            if (keysyms[key * width + level] == keysym)
                return Key{firstKeycode + key, level == 1};
        }
    }
    return {};
}

} // namespace

Wedge::Wedge(const QString &display) : m_server(xcb_connect(display.toLatin1().constData(), nullptr), &xcb_disconnect)
{
}

Wedge::~Wedge() = default;

void Wedge::fake(int event, int keycode, int delay)
{
    FakeInput request;
    request.type = static_cast<quint8>(event);
    request.detail = static_cast<quint8>(keycode);
    request.delay = static_cast<quint32>(delay);
    static constexpr xcb_protocol_request_t protocol{2, &xtest, 2, 1};
    std::array<iovec, 4> parts{};
    parts[2] = {&request, sizeof(request)};
    parts[3] = {nullptr, 0};
    xcb_send_request(m_server.get(), 0, &parts[2], &protocol);
}

void Wedge::press(int keycode, int shiftKeycode, int delay)
{
    if (shiftKeycode != 0)
        fake(XCB_KEY_PRESS, shiftKeycode, std::exchange(delay, 0));
    fake(XCB_KEY_PRESS, keycode, delay);
    fake(XCB_KEY_RELEASE, keycode, 0);
    if (shiftKeycode != 0)
        fake(XCB_KEY_RELEASE, shiftKeycode, 0);
}

bool Wedge::begin(const QString &text, int gap, int pause)
{
    constexpr quint32 leftShift = 0xFFE1;
    const Mapping mapping = mappingOf(m_server.get());
    if (!mapping)
        return false;
    const int first = xcb_get_setup(m_server.get())->min_keycode;
    const auto shift = keyOf(*mapping, first, leftShift);
    for (const QChar character : text) {
        const auto key = keyOf(*mapping, first, keysymOf(character));
        if (!key || !shift)
            return false;
        press(key->keycode, key->shifted ? shift->keycode : 0, std::exchange(pause, gap));
    }
    return xcb_flush(m_server.get()) > 0;
}

void Wedge::finish()
{
    const std::unique_ptr<xcb_get_input_focus_reply_t, decltype(&std::free)> last(
        xcb_get_input_focus_reply(m_server.get(), xcb_get_input_focus(m_server.get()), nullptr), &std::free);
}

bool Wedge::type(const QString &text, int gap, int pause)
{
    const bool typed = begin(text, gap, pause);
    finish();
    constexpr int breath = 60; // an Enter right behind would be the reader's second one
    QTest::qWait(breath);
    return typed;
}

} // namespace harrowby::app::test
