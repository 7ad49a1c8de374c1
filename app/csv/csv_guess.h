// SPDX-License-Identifier: MIT
#pragma once

#include "app/csv/csv_form.h"

#include <QByteArrayView>
#include <QSet>
#include <QString>

#include <optional>

namespace harrowby::app {

/// What the figures of a file say about their decimal sign.
struct DecimalGuess
{
    /// Nothing when it is open: "1,234" could be either, and no other figure tells, or two figures contradict each
    /// other. A person is asked then; it is never guessed.
    std::optional<QChar> sign;
    QString example; ///< a figure that leaves it open; else empty
    qint64 line = 0; ///< of the example, from 1
    int column = 0;  ///< of the example, from 0
};

struct CsvGuess
{
    CsvForm form; ///< with the likelier decimal sign where it is open
    DecimalGuess decimal;
};

/// Looks at the whole file. Any bytes get a form; whether they fit it, the reader says row by row.
[[nodiscard]] CsvGuess guessForm(QByteArrayView bytes);

/// The decimal sign alone, from these columns (from 0) or, without any, from all: once it is known which columns are to
/// hold figures, codes and dates in the others leave nothing open. The form's own decimal sign does not count. An
/// export of our own leaves nothing open.
[[nodiscard]] DecimalGuess guessDecimalSign(QByteArrayView bytes, const CsvForm &form, const QSet<int> &columns = {});

/// The encoding by mark, zero bytes and what is valid UTF-8. What is spoilt UTF-8 rather than Windows-1252 is UTF-8.
[[nodiscard]] CsvEncoding guessEncoding(QByteArrayView bytes);

} // namespace harrowby::app
