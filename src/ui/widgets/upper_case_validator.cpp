// SPDX-License-Identifier: MIT
#include "ui/widgets/upper_case_validator.h"

namespace harrowby {

QValidator::State UpperCaseValidator::validate(QString &input, int &position) const
{
    const QString upper = input.toUpper();
    // A letter can turn into two ("ß"); the cursor moves with what stands before it.
    position = static_cast<int>(input.left(position).toUpper().size());
    input = upper;
    return Acceptable;
}

} // namespace harrowby
