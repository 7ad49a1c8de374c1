// SPDX-License-Identifier: MIT
#pragma once

#include "app/keyboard/keyboard_room.h"
#include "basic/result.h"

#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QTimer>

class QComboBox;
class QFocusEvent;
class QWidget;

/// Qt's virtual keyboard, for a till without one.
namespace harrowby::app {

/// What of the keyboard is not installed, as the parts of Qt that are missing; empty when all is there.
[[nodiscard]] QStringList missingKeyboardParts(const QStringList &pluginFolders, const QStringList &qmlFolders);

/// Chooses the keyboard for the application that is made next. What fails says why it cannot be had, in
/// words for a person; nothing is changed then.
[[nodiscard]] Result<void, QString> chooseTouchKeyboard();

/// True for what a person types into.
[[nodiscard]] bool takesText(const QWidget &widget);

/// Shows the keyboard wherever text is typed and keeps the window usable above it. Lives as long as the application.
class TouchKeyboard final : public QObject
{
    Q_OBJECT

public:
    explicit TouchKeyboard(QObject *parent = nullptr);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void noteFocus(QWidget &entry, const QFocusEvent &event);
    void noteDrop(const QComboBox &list);
    void follow();
    void makeRoom();

    KeyboardRoom m_room;
    QTimer m_later;                 ///< after the focus has settled
    QPointer<QWidget> m_asking;     ///< what wants the keyboard
    QMetaObject::Connection m_pick; ///< to the list that has dropped down
};

} // namespace harrowby::app
