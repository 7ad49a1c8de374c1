// SPDX-License-Identifier: MIT
#include "app/banner/banner.h"

#include "app/banner/banner_view.h"

#include <QApplication>

namespace harrowby::app {

void Banner::say(BannerTopic topic, const QString &text, BannerTone tone)
{
    if (text.isEmpty())
        return clear(topic);
    m_lines.insert(topic, {text, tone});
    if (m_lines.lastKey() == topic)
        show();
}

void Banner::clear(BannerTopic topic)
{
    const bool wasShown = !m_lines.isEmpty() && m_lines.lastKey() == topic;
    m_lines.remove(topic);
    if (wasShown)
        show();
}

QString Banner::text() const
{
    return m_lines.isEmpty() ? QString() : m_lines.last().text;
}

QWidget *Banner::createView()
{
    m_view = new BannerView;
    show();
    return m_view;
}

void Banner::show()
{
    if (!m_view)
        return;
    const Line line = m_lines.isEmpty() ? Line() : m_lines.last();
    m_view->showLine(line.text, line.tone);
}

void soundRefusal()
{
    QApplication::beep();
}

} // namespace harrowby::app
