// SPDX-License-Identifier: MIT
#include "app/server/input_actions.h"

#include <QCoreApplication>
#include <QEvent>

#include <utility>

namespace harrowby::app {

InputActions::InputActions(std::function<void()> beginAction, QObject *parent) :
    QObject(parent), m_beginAction(std::move(beginAction))
{
    QCoreApplication::instance()->installEventFilter(this);
}

bool InputActions::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::KeyPress:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease: // at which a button acts
    case QEvent::MouseButtonDblClick:
    case QEvent::TouchBegin:
    case QEvent::TouchEnd:
    case QEvent::Wheel: // a list reads on
        m_beginAction();
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

} // namespace harrowby::app
