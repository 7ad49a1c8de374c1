// SPDX-License-Identifier: MIT
#pragma once

#include "spoken/spoken.h"
#include "ui/reentry.h"

#include <QComboBox>

namespace harrowby {

class EntryModel;
class PackedTexts;

/// A list to pick from that also takes typed text. No completer, no entry that selects itself, nothing inserted on
/// Enter; entries show as plain text, long ones elided with the whole in their tool tip; opening one with 100,000
/// entries takes no longer than with ten.
class PickList : public QComboBox, public SpokenParts
{
    Q_OBJECT

public:
    explicit PickList(QWidget *parent = nullptr);

    [[nodiscard]] QString entryText() const { return currentText(); }
    /// Changes the text and leaves the entries alone; selects nothing.
    void setEntryText(const QString &text);
    /// Removes the entries and the text.
    void clearEntries();
    /// Removes the entries alone: the text stays, and selects nothing.
    void dropEntries();
    /// Begins filling; the turn is the latest until the entries are removed again. A loop stops when it no longer is.
    [[nodiscard]] LatestLoad::Turn fill() const { return m_fills.current(); }
    /// Appends an entry; text and selection stay as they are.
    void addEntry(const QString &text);
    /// Appends entries all at once, and empties the list they are handed in.
    void takeEntries(PackedTexts &texts);
    /// The entry that was picked and whose text stands there still; -1 when the text was typed or set from code.
    [[nodiscard]] int selectedEntry() const;
    /// Removes an entry; when it was the selected one, the text goes too and none is selected.
    void removeEntry(int index);

    /// A click on the text drops the list down too: for lists that are picked from far more often than typed into.
    void setDropsOnPress(bool drops);

    void pressPart(int index) override;

    void showPopup() override;
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

Q_SIGNALS:
    /// The text changed, by typing, by picking or from code.
    void entryTextChanged(const QString &text);
    /// The user picked an entry with the mouse, the wheel or the arrow keys, after entryTextChanged() if the text
    /// changed by it.
    void picked(int index);
    /// The user picked the entry whose text stood there already, so entryTextChanged() did not come; follows
    /// picked().
    void pickedAgain(int index);
    /// The focus went to another field. Enter does not leave the list, nor does a box or another window in front.
    void left();

protected:
    void changeEvent(QEvent *event) override;
    bool event(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    void beginPick();
    void dropSelection();
    void entryActivated(int index);
    [[nodiscard]] bool hasPopup() const;
    void placeEdit();
    void showEntryTip(const QPoint &globalPosition, const QPoint &position);

    EntryModel *m_entries;
    LatestLoad m_fills;
    mutable QSize m_sizeHint;   ///< invalid until it is asked for
    bool m_textChanged = false; ///< since the user's last action began, and not by code
    bool m_picking = true;      ///< an activation is the user's choice, and not merely Enter or the focus leaving
    bool m_dropsOnPress = false;
    bool m_popupDressed = false; ///< the popup has got its delegate and height
};

} // namespace harrowby
