// SPDX-License-Identifier: MIT
#pragma once

#include "basic/result.h"

#include <QMap>
#include <QString>
#include <QStringList>

#include <optional>

namespace harrowby::app {

/// An errand is what the program does without a window, and then ends. This is one as it was typed; what its values may
/// be is known to the errand itself (app/errands).
struct ErrandLine
{
    QString name;                   ///< "--backup"; empty when a window is asked for
    QStringList values;             ///< that follow the name, none of them empty
    QMap<QString, QString> options; ///< that go with it, each with its value; a switch has an empty one

    [[nodiscard]] bool isGiven() const { return !name.isEmpty(); }
};

/// Puts the errand together while the command line is read from left to right.
class ErrandLineReader
{
public:
    /// What the values of this option of the command line stand for; nothing when it belongs to no errand.
    [[nodiscard]] static std::optional<QStringList> valuesOf(const QString &option);

    /// `values` are as many as valuesOf() says, or fewer where the line ends. Why it is refused; empty when it is not.
    [[nodiscard]] QString take(const QString &option, const QStringList &values);
    /// The errand, when the line is at its end; one without a name when none was asked for.
    [[nodiscard]] Result<ErrandLine, QString> finish() const;

private:
    ErrandLine m_line;
};

} // namespace harrowby::app
