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
    /// Whether it is its window's focus widget, also while the window is not active: behind a pop-up or another window,
    /// or without a window manager.
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
