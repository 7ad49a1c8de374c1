// SPDX-License-Identifier: MIT
#include "ui/widgets/pick_list.h"

#include "ui/widgets/entry_edit.h"
#include "ui/widgets/entry_model.h"
#include "ui/widgets/plain_tool_tip.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QCoreApplication>
#include <QFrame>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QListView>
#include <QPointer>
#include <QResizeEvent>
#include <QScopedValueRollback>
#include <QSignalBlocker>
#include <QStyle>
#include <QStyleOption>
#include <QStyledItemDelegate>
#include <QWheelEvent>
#include <QtMath>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harrowby {

namespace {

constexpr int fewestCharacters = 6;

/// setLineEdit() creates a costly completer unless the edit already has one.
QCompleter *noCompleter()
{
    static QPointer<QCompleter> completer;
    if (!completer)
        completer = new QCompleter(QCoreApplication::instance());
    return completer;
}

bool walksTheEntries(int key)
{
    return key == Qt::Key_Up || key == Qt::Key_Down || key == Qt::Key_PageUp || key == Qt::Key_PageDown ||
           key == Qt::Key_F4;
}

} // namespace

PickList::PickList(QWidget *parent) : QComboBox(parent), m_entries(new EntryModel(this))
{
    setFocusPolicy(Qt::StrongFocus); // no wheel: it scrolls the panel, and does not pick
    setPlaceholderText(u" "_s);      // with a placeholder QComboBox does not select the first entry
    setInsertPolicy(NoInsert);
    setModel(m_entries);
    auto *entry = new EntryEdit(this);
    entry->setCompleter(noCompleter());
    setLineEdit(entry);
    setCompleter(nullptr);
    connect(this, &QComboBox::editTextChanged, this, [this](const QString &text) {
        m_textChanged = true;
        Q_EMIT entryTextChanged(text);
    });
    connect(this, &QComboBox::activated, this, &PickList::entryActivated);
}

void PickList::setEntryText(const QString &text)
{
    const bool changedBefore = m_textChanged;
    const QPointer<PickList> alive(this);
    dropSelection();
    if (text != currentText())
        setEditText(text);
    if (alive)
        m_textChanged = changedBefore;
}

void PickList::clearEntries()
{
    dropSelection();
    m_fills.begin();
    m_entries->clear();
    setEntryText({});
}

void PickList::dropEntries()
{
    const QSignalBlocker quietly(this);
    const QSignalBlocker quietEdit(lineEdit());
    const QString text = currentText();
    const int cursor = lineEdit()->cursorPosition();
    setCurrentIndex(-1);
    m_fills.begin();
    m_entries->clear(); // QComboBox then clears the text too
    lineEdit()->setText(text);
    lineEdit()->setCursorPosition(cursor);
}

void PickList::addEntry(const QString &text)
{
    m_entries->append(text);
}

void PickList::takeEntries(PackedTexts &texts)
{
    m_entries->append(texts);
    texts.clear();
}

int PickList::selectedEntry() const
{
    const int index = currentIndex();
    return index >= 0 && itemText(index) == currentText() ? index : -1;
}

void PickList::removeEntry(int index)
{
    if (index < 0 || index >= count())
        return;
    const bool wasSelected = index == currentIndex();
    dropSelection(); // else QComboBox selects a neighbour
    m_entries->removeRows(index, 1);
    if (wasSelected)
        setEntryText({});
}

/// Acts as if the entry had been clicked in the popup.
void PickList::pressPart(int index)
{
    if (!isEnabled() || index < 0 || index >= count())
        return;
    beginPick();
    hidePopup();
    const QPointer<PickList> alive(this);
    setCurrentIndex(index);
    if (alive)
        Q_EMIT activated(index);
}

/// The same for any entries. QComboBox::setSizeAdjustPolicy() offers that too, but makes the list that drops down,
/// which takes a fifth of the time until the first window stands.
QSize PickList::sizeHint() const
{
    if (!m_sizeHint.isValid()) {
        QStyleOptionComboBox option;
        initStyleOption(&option);
        const QFontMetrics metrics = fontMetrics();
        const QSize icon = iconSize();
        const QSize contents(fewestCharacters * metrics.horizontalAdvance(u'X') + icon.width() + 4,
                             std::max(qCeil(QFontMetricsF(font()).height()), icon.height()) + 2);
        m_sizeHint = style()->sizeFromContents(QStyle::CT_ComboBox, &option, contents, this);
    }
    return m_sizeHint;
}

QSize PickList::minimumSizeHint() const
{
    return sizeHint();
}

void PickList::showPopup()
{
    beginPick();
    if (!m_popupDressed) {
        m_popupDressed = true;
        auto *list = qobject_cast<QListView *>(view());
        list->parentWidget()->setFont(font()); // as the base class does at a change of font
        list->setUniformItemSizes(true);
        list->setTextElideMode(Qt::ElideRight);
        list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        list->setItemDelegate(new QStyledItemDelegate(list)); // the one that heeds the style sheet's item height
        list->viewport()->installEventFilter(this);
    }
    QComboBox::showPopup();
}

void PickList::changeEvent(QEvent *event)
{
    m_sizeHint = QSize();
    if (hasPopup()) {
        QComboBox::changeEvent(event);
        return;
    }
    // The base class would make the list that drops down, to tell it what changed. It takes its looks from here when
    // it is made.
    QWidget::changeEvent(event); // NOLINT(bugprone-parent-virtual-call)
    if (!testAttribute(Qt::WA_PendingResizeEvent))
        placeEdit();
}

/// Whether the list that drops down has been made.
bool PickList::hasPopup() const
{
    return findChild<QFrame *>({}, Qt::FindDirectChildrenOnly);
}

void PickList::placeEdit()
{
    QResizeEvent same(size(), size());
    QComboBox::resizeEvent(&same);
}

bool PickList::event(QEvent *event)
{
    if (event->type() == QEvent::ToolTip) {
        const bool tooLong = static_cast<EntryEdit *>(lineEdit())->isTooLong();
        showPlainToolTip(static_cast<QHelpEvent *>(event)->globalPos(), tooLong ? currentText() : toolTip(), this);
        return true;
    }
    return QComboBox::event(event);
}

void PickList::setDropsOnPress(bool drops)
{
    m_dropsOnPress = drops;
    lineEdit()->installEventFilter(this);
}

bool PickList::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == lineEdit()) {
        const bool press = event->type() == QEvent::MouseButtonPress;
        // The popup opens on release: opened on press, it would take the release as a choice.
        if ((press || event->type() == QEvent::MouseButtonRelease) && m_dropsOnPress && count() > 0) {
            if (!press)
                showPopup();
            return true;
        }
        return QComboBox::eventFilter(watched, event);
    }
    if (event->type() != QEvent::ToolTip)
        return QComboBox::eventFilter(watched, event);
    const auto *help = static_cast<QHelpEvent *>(event);
    showEntryTip(help->globalPos(), help->pos());
    return true;
}

void PickList::focusOutEvent(QFocusEvent *event)
{
    {
        const QScopedValueRollback leaving(m_picking, false);
        QComboBox::focusOutEvent(event);
    }
    if (event->reason() != Qt::PopupFocusReason && event->reason() != Qt::ActiveWindowFocusReason)
        Q_EMIT left();
}

void PickList::keyPressEvent(QKeyEvent *event)
{
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    const QScopedValueRollback typing(m_picking, !enter);
    if (walksTheEntries(event->key()))
        beginPick(); // not when typing: it would drop the text selection that the key is to replace
    else
        m_textChanged = false;
    QComboBox::keyPressEvent(event);
}

void PickList::wheelEvent(QWheelEvent *event)
{
    if (!hasFocus()) {
        event->ignore();
        return;
    }
    beginPick();
    QComboBox::wheelEvent(event);
}

/// Starts a pick at the entry whose text stands there, however it came there.
void PickList::beginPick()
{
    m_textChanged = false;
    if (currentIndex() >= 0 && itemText(currentIndex()) == currentText())
        return;
    const int index = m_entries->find(currentText());
    if (index < 0) {
        dropSelection();
        return;
    }
    const QSignalBlocker quietly(this);
    setCurrentIndex(index);
}

/// Forgets which entry was picked and keeps the text.
void PickList::dropSelection()
{
    if (currentIndex() < 0)
        return;
    const QSignalBlocker quietly(this);
    const QSignalBlocker quietEdit(lineEdit());
    QLineEdit &edit = *lineEdit();
    const QString text = currentText();
    const int cursor = edit.cursorPosition();
    const int start = edit.selectionStart();
    const int length = static_cast<int>(edit.selectedText().size());
    setCurrentIndex(-1);
    edit.setText(text);
    edit.setCursorPosition(cursor);
    if (start >= 0) // a selection has its caret at one of its ends
        edit.setSelection(cursor == start ? start + length : start, cursor == start ? -length : length);
}

void PickList::entryActivated(int index)
{
    if (!m_picking || index < 0)
        return;
    const bool again = !m_textChanged;
    const QPointer<PickList> alive(this);
    Q_EMIT picked(index);
    if (again && alive)
        Q_EMIT pickedAgain(index);
}

void PickList::showEntryTip(const QPoint &globalPosition, const QPoint &position)
{
    showPlainToolTip(globalPosition, view()->indexAt(position).data(Qt::ToolTipRole).toString(), view()->viewport());
}

} // namespace harrowby
