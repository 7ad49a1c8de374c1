// SPDX-License-Identifier: MIT
#pragma once

#include <QValidator>

namespace harrowby {

/// Turns what is entered into upper case before it reaches the field, however it is entered: keys, an input method
/// or the clipboard.
class UpperCaseValidator final : public QValidator
{
    Q_OBJECT

public:
    using QValidator::QValidator;
    State validate(QString &input, int &position) const override;
};

} // namespace harrowby
