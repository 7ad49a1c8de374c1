// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

class QLabel;
class QWidget;

/// What the office says and asks.
namespace harrowby::app {

void tellInOffice(QWidget *parent, const QString &text);
/// True when the button with the action was pressed; the other one, "Cancel", is the default.
[[nodiscard]] bool askInOffice(QWidget *parent, const QString &question, const QString &action);

/// A line of plain text that wraps.
[[nodiscard]] QLabel *makeOfficeText(QWidget *parent, const QString &text);
/// Shows an outcome in such a line, and tells it to who listens instead of looking.
void showOutcome(QLabel &label, const QString &text);

} // namespace harrowby::app
