// SPDX-License-Identifier: MIT
#pragma once

#include "app/csv/csv_form.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QStringList>

#include <array>
#include <cstdint>
#include <optional>
#include <string>

namespace harrowby::app {

/// What the first line of a file names as its separator when it is "sep=;" and no more, as spreadsheets understand it.
/// The bytes are ASCII's where they matter, behind a byte order mark.
[[nodiscard]] std::optional<char> namedSeparator(QByteArrayView bytes);

struct CsvFault
{
    enum class Kind {
        OpenQuote,   ///< a quote opens the cell and none closes it: the rest of the file is in this row
        BehindQuote, ///< text stands behind the quote that closes the cell
        Nul,         ///< the cell holds a NUL
        Undecodable, ///< bytes of the cell are none of the encoding; U+FFFD stands for them
        TooFew,      ///< fewer cells than the first row has
        TooMany,     ///< more of them
    };
    Kind kind;
    qint64 line = 0; ///< where the cell begins, from 1
    int column = 0;  ///< the cell, from 0; for TooFew and TooMany the first that is missing or too many
};

struct CsvRow
{
    QStringList cells;   ///< as they stand in the file, without the quotes; blanks, line breaks and apostrophes kept
    qint64 line = 0;     ///< on which the row begins, from 1, as an editor counts
    qint64 lastLine = 0; ///< on which it ends: another one when a cell holds line breaks
    std::optional<CsvFault> fault; ///< the first
};

/// Reads row by row, each byte once. A line without a character is no row; rows end with CR, LF or CRLF. A first line
/// "sep=;" names the separator and is no row. The first row says how many cells a row has.
///
/// Taken as well: blanks before and behind a quoted cell, and quotes within one that is not quoted (7" BOX).
class CsvReader
{
public:
    /// More cells of one row than these are counted as a fault, and left out.
    static constexpr int mostCells = 1000;

    /// The bytes must outlive it.
    CsvReader(QByteArrayView bytes, const CsvForm &form);

    /// False at the end. Give the same row each time: the memory of its cells is used again.
    [[nodiscard]] bool next(CsvRow &row);

    /// How far it is, for a progress: 0 to 100.
    [[nodiscard]] int percent() const;

private:
    struct Piece;

    void skipMark();
    void skipSeparatorLine();
    void skipEmptyLines();
    bool endLine();
    void readCell(CsvRow &row, int column);
    Piece readPlain();
    Piece readQuoted(CsvRow &row, int column);
    Piece closeQuoted(CsvRow &row, int column, qint64 line, const Piece &cell);
    void put(CsvRow &row, int column, qint64 line, const Piece &piece);
    bool decode(QString &cell, QByteArrayView bytes, bool isAscii) const;

    CsvEncoding m_encoding;
    QByteArray m_transcoded; ///< UTF-16 as UTF-8; half a character becomes bytes that are none
    std::string m_unquoted;  ///< a cell with doubled quotes, or with text behind its quotes
    std::array<std::uint8_t, 256> m_meanings{};
    char m_separator;
    const char *m_begin = nullptr;
    const char *m_at = nullptr;
    const char *m_end = nullptr;
    qint64 m_line = 1;
    qsizetype m_width = -1;
};

/// In words for a person: "Text stands behind the closing quotation mark."
[[nodiscard]] QString faultWords(CsvFault::Kind kind);

} // namespace harrowby::app
