// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

class QWidget;

namespace harrowby::app {

/// Asks where a list is to be saved, and before one is replaced; empty for nowhere. It gets the ending "csv" where none
/// is given.
[[nodiscard]] QString chooseSavePlace(QWidget *parent, const QString &title, const QString &offered);

/// Asks for a list to import; empty for none.
[[nodiscard]] QString chooseList(QWidget *parent);

} // namespace harrowby::app
