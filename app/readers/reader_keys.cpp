// SPDX-License-Identifier: MIT
#include "app/readers/reader_keys.h"

#include <QString>

#include <linux/input-event-codes.h>

#include <array>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr int released = 0;
constexpr int pressed = 1;

/// Keys that lie side by side have codes that follow one another.
struct Row
{
    int first;
    QStringView plain;
    QStringView shifted;
};

constexpr std::array rows{
    Row{KEY_1, u"1234567890-=", u"!@#$%^&*()_+"},
    Row{KEY_Q, u"qwertyuiop[]", u"QWERTYUIOP{}"},
    Row{KEY_A, u"asdfghjkl;'`", u"ASDFGHJKL:\"~"},
    Row{KEY_BACKSLASH, u"\\zxcvbnm,./", u"|ZXCVBNM<>?"},
    Row{KEY_SPACE, u" ", u" "},
    Row{KEY_KPASTERISK, u"*", u"*"},
    Row{KEY_KP7, u"789-456+1230.", u"789-456+1230."},
    Row{KEY_KPSLASH, u"/", u"/"},
    Row{KEY_102ND, u"\\", u"|"},
    Row{KEY_ENTER, u"\r", u"\r"},
    Row{KEY_KPENTER, u"\r", u"\r"},
    Row{KEY_TAB, u"\t", u"\t"},
};

} // namespace

std::optional<QChar> ReaderKeys::key(int code, int value)
{
    if (code == KEY_LEFTSHIFT || code == KEY_RIGHTSHIFT) {
        (code == KEY_LEFTSHIFT ? m_leftShift : m_rightShift) = value != released;
        return {};
    }
    if (value != pressed)
        return {};
    if (code == KEY_CAPSLOCK)
        m_capsLock = !m_capsLock;
    for (const Row &row : rows) {
        const int place = code - row.first;
        if (place < 0 || place >= row.plain.size())
            continue;
        const bool capital = m_capsLock && row.plain[place].isLetter();
        const bool shifted = (m_leftShift || m_rightShift) != capital;
        return (shifted ? row.shifted : row.plain)[place];
    }
    return {};
}

} // namespace harrowby::app
