// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

class QWidget;

namespace harrowby {

/// Event filter for entry fields: letters are turned into upper case before they reach the field, by keys or by an
/// input method. What is picked, pasted or set from code stays as it is.
class UpperCaseTyping final : public QObject
{
    Q_OBJECT

public:
    /// Belongs to the field: a line edit, or a combo box together with its edit.
    explicit UpperCaseTyping(QWidget *field);
    bool eventFilter(QObject *watched, QEvent *event) override;
};

} // namespace harrowby
