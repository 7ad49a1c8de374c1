// SPDX-License-Identifier: MIT
#include "app/readers/code_line.h"

#include <utility>

namespace harrowby::app {

void CodeLine::add(QChar character, const std::function<void(const Outcome &)> &told)
{
    const bool ends = character == u'\r' || character == u'\n' || character == u'\t';
    if (!ends) {
        if (m_text.size() <= longest)
            m_text += character;
        return;
    }
    const bool spoiled = std::exchange(m_spoiled, false);
    const QString text = std::exchange(m_text, {});
    if (text.isEmpty() || spoiled)
        return;
    const bool tooLong = text.size() > longest;
    told({.code = tooLong ? QString() : text, .tooLong = tooLong});
}

void CodeLine::clear()
{
    m_text.clear();
    m_spoiled = false;
}

} // namespace harrowby::app
