// SPDX-License-Identifier: MIT
#pragma once

class QPoint;
class QString;
class QWidget;

namespace harrowby {

/// Shows data as a tool tip as it stands: never read as markup, wrapped when it is long. An empty text hides the
/// tool tip that is shown.
void showPlainToolTip(const QPoint &globalPosition, const QString &text, QWidget *owner);

/// Rich text that shows exactly the plain text it is made from, wrapped, whatever the plain text holds.
[[nodiscard]] QString asPlainRichText(const QString &text);

} // namespace harrowby
