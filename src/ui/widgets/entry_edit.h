// SPDX-License-Identifier: MIT
#pragma once

#include <QLineEdit>

namespace harrowby {

/// One-line entry. A text that is too long is shown from its start and with an ellipsis while nobody edits it, with
/// the whole in the tool tip (always plain text).
class EntryEdit : public QLineEdit
{
    Q_OBJECT

public:
    explicit EntryEdit(QWidget *parent = nullptr);

    [[nodiscard]] bool isTooLong() const;

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void showStart();
};

} // namespace harrowby
