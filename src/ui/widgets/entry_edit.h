// SPDX-License-Identifier: MIT
#pragma once

#include <QLineEdit>

namespace harrowby {

/// One-line entry. A text that is too long is shown from its start and with an ellipsis while nobody edits it, with
/// the whole in the tool tip (always plain text). The focus that comes by a key or from code marks the whole text; a
/// pop-up or a window in front leaves text, caret and selection as they are.
class EntryEdit : public QLineEdit
{
    Q_OBJECT

public:
    explicit EntryEdit(QWidget *parent = nullptr);
    ~EntryEdit() override;

    [[nodiscard]] bool isTooLong() const;
    /// Whether what is typed in its window goes into it: also behind a pop-up or a window in front, and where no
    /// window manager makes the window the active one.
    [[nodiscard]] bool isEdited() const;

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void showStart();
    void rest();
    void waitBehindAnother();

    QMetaObject::Connection m_waiting; ///< for the focus to go back to it or elsewhere
};

} // namespace harrowby
