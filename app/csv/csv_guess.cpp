// SPDX-License-Identifier: MIT
#include "app/csv/csv_guess.h"

#include "app/csv/csv_reader.h"
#include "app/csv/decoding.h"
#include "app/csv/figures.h"
#include "app/csv/stored_cell.h"

#include <QByteArray>
#include <QHash>

#include <algorithm>

namespace harrowby::app {

namespace {

constexpr QByteArrayView littleMark("\xFF\xFE");
constexpr QByteArrayView bigMark("\xFE\xFF");

bool hasMark(QByteArrayView bytes)
{
    return bytes.startsWith(utf8Mark) || bytes.startsWith(littleMark) || bytes.startsWith(bigMark);
}

/// The high half of each letter that is ASCII is zero, so one side has many zeros and the other has next to none.
std::optional<CsvEncoding> byZeros(QByteArrayView bytes)
{
    qsizetype zeros[2] = {0, 0};
    for (qsizetype i = 0; i < bytes.size(); ++i)
        zeros[i & 1] += bytes[i] == '\0' ? 1 : 0;
    const auto areHighHalves = [&](qsizetype many, qsizetype few) {
        return many * 16 >= bytes.size() && few * 8 <= many && many > 0;
    };
    if (areHighHalves(zeros[1], zeros[0]))
        return CsvEncoding::Utf16LittleEndian;
    if (areHighHalves(zeros[0], zeros[1]))
        return CsvEncoding::Utf16BigEndian;
    return {};
}

/// Some bytes are no UTF-8: whether many characters are all the same. In Windows-1252 hardly any look so.
bool isSpoiltUtf8(QByteArrayView bytes)
{
    qsizetype valid = 0;
    qsizetype invalid = 0;
    for (qsizetype at = 0; at < bytes.size();) {
        const bool isAscii = static_cast<unsigned char>(bytes[at]) < 0x80;
        const qsizetype length = isAscii ? 1 : characterLength(bytes.sliced(at));
        valid += length > 1 ? 1 : 0;
        invalid += length == 0 ? 1 : 0;
        at += std::max<qsizetype>(length, 1);
    }
    return valid > 10 * invalid;
}

/// Counts the cells of each row, without reading them.
class CellCounter
{
public:
    CellCounter(QByteArrayView bytes, char separator) : m_bytes(bytes), m_separator(separator) { count(); }

    /// How well the file is cut by this separator: how many of its rows have the usual number of cells, more than one,
    /// of a thousand; twice that when the first row is one of them.
    [[nodiscard]] qint64 score() const
    {
        if (m_rows == 0 || usual() < 2)
            return 0;
        return m_counts.value(usual()) * 1000 / m_rows * (m_first == usual() ? 2 : 1);
    }
    [[nodiscard]] int usual() const
    {
        int usual = 0;
        for (auto it = m_counts.cbegin(); it != m_counts.cend(); ++it) {
            const qint64 most = m_counts.value(usual);
            if (it.value() > most || (it.value() == most && it.key() > usual))
                usual = it.key();
        }
        return usual;
    }

private:
    void count()
    {
        bool isQuoted = false;
        bool hasClosed =
            false; // the last byte was a closing quote; another one opens the cell again, as a doubled quote
        bool isBeginning = true; // of a cell
        bool isEmpty = true;     // the line so far
        int cells = 1;
        for (const char byte : m_bytes) {
            if (isQuoted) {
                hasClosed = byte == '"';
                isQuoted = !hasClosed;
            } else if (byte == '\r' || byte == '\n') {
                endRow(isEmpty ? 0 : cells);
                cells = 1;
                isEmpty = isBeginning = true;
            } else {
                isEmpty = false;
                isQuoted = byte == '"' && (isBeginning || hasClosed);
                hasClosed = false;
                cells += byte == m_separator ? 1 : 0;
                isBeginning = byte == m_separator || (isBeginning && byte == ' ');
            }
        }
        endRow(isEmpty ? 0 : cells);
    }

    void endRow(int cells)
    {
        if (cells == 0)
            return;
        m_first = m_rows == 0 ? cells : m_first;
        ++m_rows;
        ++m_counts[cells];
    }

    QByteArrayView m_bytes;
    char m_separator;
    QHash<int, qint64> m_counts; ///< rows by the number of their cells
    qint64 m_rows = 0;
    int m_first = 0;
};

QChar guessSeparator(QByteArrayView bytes)
{
    if (bytes.startsWith(utf8Mark))
        bytes = bytes.sliced(utf8Mark.size());
    if (const auto named = namedSeparator(bytes))
        return QLatin1Char(*named);
    QChar best = csvSeparators().constFirst();
    qint64 bestScore = 0;
    int bestCells = 0;
    for (const QChar separator : csvSeparators()) {
        if (!bytes.contains(separator.toLatin1()))
            continue;
        const CellCounter counter(bytes, separator.toLatin1());
        const qint64 score = counter.score();
        if (score > bestScore || (score == bestScore && score > 0 && counter.usual() > bestCells)) {
            best = separator;
            bestScore = score;
            bestCells = counter.usual();
        }
    }
    return best;
}

/// Collects what the figures of a file say.
class DecimalEvidence
{
public:
    void look(const CsvRow &row, const QSet<int> &columns)
    {
        for (int column = 0; column < row.cells.size(); ++column) {
            if (columns.isEmpty() || columns.contains(column))
                look(row.cells.at(column), row.line, column);
        }
    }

    /// `likely`: where no figure has such a sign.
    [[nodiscard]] DecimalGuess guess(QChar likely) const
    {
        if (isContradictory())
            return m_guess;
        if (m_point || m_comma)
            return {m_point ? u'.' : u',', {}, 0, 0};
        return m_guess.line > 0 ? m_guess : DecimalGuess{likely, {}, 0, 0};
    }

private:
    void look(const QString &cell, qint64 line, int column)
    {
        const DecimalHint hint = decimalHint(cell);
        if (hint == DecimalHint::None)
            return;
        const bool contradicts = (hint == DecimalHint::Point && m_comma) || (hint == DecimalHint::Comma && m_point);
        if ((contradicts && !isContradictory()) || (hint == DecimalHint::Either && m_guess.line == 0))
            m_guess = {{}, cell, line, column};
        m_point = m_point || hint == DecimalHint::Point;
        m_comma = m_comma || hint == DecimalHint::Comma;
    }

    [[nodiscard]] bool isContradictory() const { return m_point && m_comma; }

    DecimalGuess m_guess;
    bool m_point = false;
    bool m_comma = false;
};

QChar likelySign(QChar separator)
{
    return separator == u';' ? u',' : u'.';
}

/// Of the rows behind the headings of an export of our own.
std::optional<QChar> signOfExport(CsvReader &reader, const QList<StoredColumn> &columns)
{
    CsvRow row;
    while (reader.next(row)) {
        if (const auto sign = decimalSignOfStoredRow(row.cells, columns))
            return sign;
    }
    return {};
}

} // namespace

CsvEncoding guessEncoding(QByteArrayView bytes)
{
    if (bytes.startsWith(utf8Mark))
        return CsvEncoding::Utf8;
    if (bytes.startsWith(littleMark))
        return CsvEncoding::Utf16LittleEndian;
    if (bytes.startsWith(bigMark))
        return CsvEncoding::Utf16BigEndian;
    if (const auto wide = byZeros(bytes))
        return *wide;
    return isUtf8(bytes) || isSpoiltUtf8(bytes) ? CsvEncoding::Utf8 : CsvEncoding::Windows1252;
}

DecimalGuess guessDecimalSign(QByteArrayView bytes, const CsvForm &form, const QSet<int> &columns)
{
    DecimalEvidence evidence;
    CsvReader reader(bytes, form);
    CsvRow row;
    if (reader.next(row)) {
        if (const auto *stored = columnsOfExport(row.cells))
            return {signOfExport(reader, *stored).value_or(likelySign(form.separator)), {}, 0, 0};
        evidence.look(row, columns);
    }
    while (reader.next(row))
        evidence.look(row, columns);
    return evidence.guess(likelySign(form.separator));
}

CsvGuess guessForm(QByteArrayView bytes)
{
    CsvForm form;
    form.encoding = guessEncoding(bytes);
    form.byteOrderMark = hasMark(bytes);
    form.separator =
        isUtf16(form.encoding) ? guessSeparator(utf8FromUtf16(bytes, form.encoding)) : guessSeparator(bytes);
    const DecimalGuess decimal = guessDecimalSign(bytes, form);
    form.decimalSign = decimal.sign.value_or(likelySign(form.separator));
    return {form, decimal};
}

} // namespace harrowby::app
