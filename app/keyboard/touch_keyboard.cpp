// SPDX-License-Identifier: MIT
#include "app/keyboard/touch_keyboard.h"

#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QFocusEvent>
#include <QInputMethod>
#include <QLibraryInfo>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextEdit>
#include <QWindow>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

/// QML modules that the keyboard imports; without one of them it is an empty window over the screen.
QStringList neededModules()
{
    return {u"QtQuick/VirtualKeyboard"_s,
            u"QtQuick/VirtualKeyboard/Components"_s,
            u"QtQuick/VirtualKeyboard/Settings"_s,
            u"QtQuick/VirtualKeyboard/Styles"_s,
            u"QtQuick/Layouts"_s,
            u"QtQuick/Window"_s,
            u"QtQml/WorkerScript"_s,
            u"Qt/labs/folderlistmodel"_s};
}

bool anyHolds(const QStringList &folders, const QString &file)
{
    return std::any_of(folders.cbegin(), folders.cend(),
                       [&](const QString &folder) { return QFile::exists(folder + u'/' + file); });
}

QStringList qmlFolders()
{
    QStringList folders = {QLibraryInfo::path(QLibraryInfo::QmlImportsPath)};
    for (const char *variable : {"QML_IMPORT_PATH", "QML2_IMPORT_PATH"})
        folders << qEnvironmentVariable(variable).split(QDir::listSeparator(), Qt::SkipEmptyParts);
    return folders;
}

/// The keyboard's own window; null until it was shown for the first time.
QWindow *keyboardWindow()
{
    const QWindowList windows = QGuiApplication::topLevelWindows();
    const auto found = std::find_if(windows.cbegin(), windows.cend(), [](const QWindow *window) {
        return qstrcmp(window->metaObject()->className(), "QtVirtualKeyboard::InputView") == 0;
    });
    return found == windows.cend() ? nullptr : *found;
}

/// A modal box blocks all windows but its transient children, so the keyboard becomes one.
void attachKeyboard(const QWidget &window)
{
    QWindow *keyboard = keyboardWindow();
    QWindow *owner = window.windowHandle();
    if (keyboard != nullptr && owner != nullptr && keyboard->transientParent() != owner)
        keyboard->setTransientParent(owner);
}

/// The window that is typed into has come to another place or size.
bool placesWindow(const QObject *watched, const QEvent &event)
{
    if (event.type() != QEvent::Resize && event.type() != QEvent::Move)
        return false;
    const QWidget *focus = QApplication::focusWidget();
    return focus != nullptr && watched == focus->window();
}

} // namespace

QStringList missingKeyboardParts(const QStringList &pluginFolders, const QStringList &qmlFolders)
{
    QStringList missing;
    if (!anyHolds(pluginFolders, u"platforminputcontexts/libqtvirtualkeyboardplugin.so"_s))
        missing << u"the plugin qtvirtualkeyboard"_s;
    for (const QString &module : neededModules()) {
        if (!anyHolds(qmlFolders, module + u"/qmldir"_s))
            missing << u"the QML module "_s + QString(module).replace(u'/', u'.');
    }
    return missing;
}

Result<void, QString> chooseTouchKeyboard()
{
    const QStringList missing = missingKeyboardParts(QCoreApplication::libraryPaths(), qmlFolders());
    if (!missing.isEmpty()) {
        return Unexpected(
            u"The keyboard on the screen is not installed; the program goes on without it.\nMissing: %1."_s.arg(
                missing.join(u", "_s)));
    }
    qputenv("QT_IM_MODULE", "qtvirtualkeyboard");
    qputenv("QT_VIRTUALKEYBOARD_LAYOUT_PATH", ":/harrowby/keyboard/layouts");
    qputenv("QT_VIRTUALKEYBOARD_STYLE", "harrowby");
    return {};
}

bool takesText(const QWidget &widget)
{
    const auto *list = qobject_cast<const QComboBox *>(&widget);
    const bool entry = qobject_cast<const QLineEdit *>(&widget) != nullptr ||
                       qobject_cast<const QPlainTextEdit *>(&widget) != nullptr ||
                       qobject_cast<const QTextEdit *>(&widget) != nullptr ||
                       qobject_cast<const QAbstractSpinBox *>(&widget) != nullptr ||
                       (list != nullptr && list->isEditable());
    return entry && widget.isEnabled() && widget.inputMethodQuery(Qt::ImEnabled).toBool() &&
           !widget.inputMethodQuery(Qt::ImReadOnly).toBool();
}

TouchKeyboard::TouchKeyboard(QObject *parent) : QObject(parent)
{
    m_later.setSingleShot(true);
    connect(&m_later, &QTimer::timeout, this, &TouchKeyboard::follow);
    connect(qApp, &QApplication::focusChanged, this, [this] { m_later.start(); });
    const QInputMethod *input = QGuiApplication::inputMethod();
    connect(input, &QInputMethod::keyboardRectangleChanged, this, &TouchKeyboard::makeRoom);
    connect(input, &QInputMethod::visibleChanged, this, &TouchKeyboard::makeRoom);
    qApp->installEventFilter(this);
}

bool TouchKeyboard::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut) {
        if (auto *widget = qobject_cast<QWidget *>(watched); widget != nullptr && takesText(*widget))
            noteFocus(*widget, *static_cast<QFocusEvent *>(event));
    }
    if (event->type() == QEvent::MouseButtonRelease || placesWindow(watched, *event))
        m_later.start();
    return QObject::eventFilter(watched, event);
}

void TouchKeyboard::noteFocus(QWidget &entry, const QFocusEvent &event)
{
    const auto *list = qobject_cast<const QComboBox *>(&entry);
    if (event.lostFocus()) {
        if (list != nullptr && event.reason() == Qt::PopupFocusReason)
            noteDrop(*list);
        return;
    }
    // Focus that returns after a box, or that a new sale sets, does not show the keyboard for a list.
    const Qt::FocusReason reason = event.reason();
    if (list == nullptr || (reason != Qt::ActiveWindowFocusReason && reason != Qt::OtherFocusReason))
        m_asking = &entry;
    m_later.start();
}

/// A choice from the popup hides the keyboard; closing it without one shows it. QComboBox emits activated() only after
/// the popup has closed and the focus is back.
void TouchKeyboard::noteDrop(const QComboBox &list)
{
    m_asking = nullptr;
    disconnect(m_pick);
    m_pick = connect(&list, &QComboBox::activated, this, [this] {
        disconnect(m_pick);
        m_asking = nullptr;
        QGuiApplication::inputMethod()->hide();
    });
}

void TouchKeyboard::follow()
{
    if (QApplication::activePopupWidget() != nullptr)
        return; // a list that drops down belongs to its entry, which comes back when it closes
    const QPointer<QWidget> asking = std::exchange(m_asking, nullptr);
    const QWidget *focus = QApplication::focusWidget();
    QInputMethod *input = QGuiApplication::inputMethod();
    if (asking && asking == focus)
        input->show();
    else if ((focus == nullptr || !takesText(*focus)) && QGuiApplication::mouseButtons() == Qt::NoButton)
        input->hide();
    makeRoom();
}

void TouchKeyboard::makeRoom()
{
    const QInputMethod *input = QGuiApplication::inputMethod();
    QWidget *focus = QApplication::focusWidget();
    const QRect keyboard = input->keyboardRectangle().toAlignedRect();
    if (QGuiApplication::mouseButtons() != Qt::NoButton)
        return; // the pressed control must not move; follow() is called again after the release
    if (!input->isVisible() || keyboard.isEmpty())
        m_room.giveBack();
    else if (focus != nullptr && takesText(*focus)) {
        attachKeyboard(*focus->window());
        m_room.makeRoom(*focus, keyboard);
    }
}

} // namespace harrowby::app
