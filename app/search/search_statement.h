// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringView>

#include <optional>

namespace harrowby::app {

/// What the till's search looks for, as it stands in the statement: upper-cased, without the asterisks around it.
/// Empty for every other statement, and for one whose text holds a quote or a NUL.
[[nodiscard]] std::optional<QString> searchedText(QStringView statement);

/// The search with the comparison of finding_function.h: the same columns, table and order of conditions; ?1 is what
/// is looked for.
[[nodiscard]] QString findingStatement();

} // namespace harrowby::app
