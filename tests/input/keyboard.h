// SPDX-License-Identifier: MIT
#pragma once

#include "input/code_place.h"

#include <QApplication>
#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTabBar>
#include <QVBoxLayout>
#include <QWindow>
#include <QtTest/qtestspontaneevent.h>

#include <utility>

QT_BEGIN_NAMESPACE
// NOLINTNEXTLINE(readability-redundant-declaration): not where the test library is not linked
Q_GUI_EXPORT bool qt_sendShortcutOverrideEvent(QObject *, ulong, int, Qt::KeyboardModifiers, const QString &, bool,
                                               ushort);
QT_END_NAMESPACE

namespace harrowby::test {

using namespace Qt::StringLiterals;

/// Writes down each key event that reaches a widget, the widgets that it goes on to included.
class Log : public QObject
{
public:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        const auto type = event->type();
        if (!watched->isWidgetType() ||
            (type != QEvent::ShortcutOverride && type != QEvent::KeyPress && type != QEvent::KeyRelease))
            return false;
        const auto &key = *static_cast<QKeyEvent *>(event);
        m_lines << u"%1 %2 %3 \"%4\" %5 %6 %7 %8"_s.arg(watched->objectName())
                       .arg(type)
                       .arg(key.key())
                       .arg(key.text())
                       .arg(key.modifiers().toInt())
                       .arg(key.timestamp())
                       .arg(key.nativeScanCode())
                       .arg(key.spontaneous());
        return false;
    }
    [[nodiscard]] QStringList take() { return std::exchange(m_lines, {}); }

private:
    QStringList m_lines;
};

/// A window with a control of each kind, and keys as a window system sends them.
class Window : public QWidget
{
public:
    Window()
    {
        auto *rows = new QVBoxLayout(this);
        const auto add = [&](auto *control, const QString &name) {
            control->setObjectName(name);
            rows->addWidget(control);
            return control;
        };
        text = add(new QLineEdit(this), u"text"_s);
        add(new QPlainTextEdit(this), u"longText"_s);
        auto *list = add(new QComboBox(this), u"editList"_s);
        list->setEditable(true);
        add(new QLineEdit(this), u"readOnly"_s)->setReadOnly(true);
        password = add(new QLineEdit(this), u"password"_s);
        password->setEchoMode(QLineEdit::Password);
        figure = add(new QLineEdit(this), u"figure"_s);
        harrowby::keepCodesOut(*figure);
        add(new QSpinBox(this), u"spin"_s);
        add(new QComboBox(this), u"list"_s)->addItems({u"400"_s, u"500"_s});
        auto *tabs = add(new QTabBar(this), u"tabs"_s);
        tabs->addTab(u"one"_s);
        add(new QListWidget(this), u"rows"_s)->addItems({u"400"_s, u"500"_s});
        button = add(new QPushButton(u"&Sell"_s, this), u"button"_s);
        setObjectName(u"window"_s);
        show();
        button->setFocus();
    }
    void focus(const QString &name) { findChild<QWidget *>(name)->setFocus(); }

    QLineEdit *text = nullptr;
    QLineEdit *password = nullptr;
    QLineEdit *figure = nullptr;
    QPushButton *button = nullptr;
};

struct Stroke
{
    int key = 0;
    QString text{};
    Qt::KeyboardModifiers modifiers = Qt::NoModifier;
};

inline Stroke strokeOf(QChar sign)
{
    if (sign == u'\r' || sign == u'\t')
        return {.key = sign == u'\r' ? Qt::Key_Return : Qt::Key_Tab, .text = QString(sign)};
    return {.key = sign.toUpper().unicode(),
            .text = QString(sign),
            .modifiers = sign.isUpper() ? Qt::ShiftModifier : Qt::NoModifier};
}

/// The window system: as Qt does it in QGuiApplicationPrivate::processKeyEvent().
class Keyboard
{
public:
    explicit Keyboard(QWidget &window) : m_window(window) {}

    void down(const Stroke &stroke, bool repeated = false)
    {
        if (shortcut(stroke))
            return;
        if (QApplication::activeModalWidget() == nullptr || QApplication::activeModalWidget() == &m_window)
            send(QEvent::KeyPress, stroke, repeated);
    }
    void up(const Stroke &stroke) { send(QEvent::KeyRelease, stroke, false); }
    void type(const QString &text, int gap)
    {
        for (const QChar sign : text) {
            pass(gap);
            down(strokeOf(sign));
            up(strokeOf(sign));
        }
    }
    void pass(int ms) { m_time += static_cast<quint64>(ms); }
    void stopClock() { m_hasTime = false; }

private:
    bool shortcut(const Stroke &stroke)
    {
        if (send(QEvent::ShortcutOverride, stroke, false))
            return false;
        QObject nobody;
        return qt_sendShortcutOverrideEvent(&nobody, static_cast<ulong>(m_time), stroke.key, stroke.modifiers,
                                            stroke.text, false, 1);
    }
    /// True when it was accepted.
    bool send(QEvent::Type type, const Stroke &stroke, bool repeated)
    {
        QKeyEvent event(type, stroke.key, stroke.modifiers, static_cast<quint32>(stroke.key), 1, 2, stroke.text,
                        repeated);
        event.setTimestamp(m_hasTime ? m_time : 0);
        QSpontaneKeyEvent::setSpontaneous(&event);
        qApp->notify(m_window.windowHandle(), &event);
        return event.isAccepted();
    }

    QWidget &m_window;
    quint64 m_time = 5000;
    bool m_hasTime = true;
};

} // namespace harrowby::test
