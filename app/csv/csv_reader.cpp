// SPDX-License-Identifier: MIT
#include "app/csv/csv_reader.h"

#include "app/csv/decoding.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

using Kind = CsvFault::Kind;

/// What a byte means, as bits.
enum Meaning : std::uint8_t {
    Ends = 1, ///< a cell that is not quoted
    Null = 2,
    Wide = 4, ///< not ASCII
    Quote = 8,
    Break = 16,
};

char asciiOf(QChar separator)
{
    return csvSeparators().contains(separator) ? separator.toLatin1() : ',';
}

std::array<std::uint8_t, 256> meaningsWith(char separator)
{
    std::array<std::uint8_t, 256> meanings{};
    std::fill(meanings.begin() + 0x80, meanings.end(), std::uint8_t{Wide});
    meanings['\0'] = Null;
    meanings['"'] = Quote;
    meanings['\r'] = meanings['\n'] = Ends | Break;
    meanings[static_cast<unsigned char>(separator)] |= Ends;
    return meanings;
}

void note(CsvRow &row, Kind kind, qint64 line, int column)
{
    if (!row.fault)
        row.fault = CsvFault{kind, line, column};
}

} // namespace

std::optional<char> namedSeparator(QByteArrayView bytes)
{
    constexpr QByteArrayView beginning("sep=");
    if (!bytes.startsWith(beginning) || bytes.size() <= beginning.size())
        return {};
    const QByteArrayView rest = bytes.sliced(beginning.size());
    const bool isAlone = rest.size() == 1 || rest[1] == '\r' || rest[1] == '\n';
    return isAlone && csvSeparators().contains(QLatin1Char(rest[0])) ? std::optional(rest[0]) : std::nullopt;
}

/// The bytes of a cell.
struct CsvReader::Piece
{
    QByteArrayView bytes;
    std::uint8_t met = 0; ///< meanings of its bytes
};

CsvReader::CsvReader(QByteArrayView bytes, const CsvForm &form) :
    m_encoding(form.encoding), m_meanings(meaningsWith(asciiOf(form.separator))), m_separator(asciiOf(form.separator))
{
    if (isUtf16(form.encoding)) {
        m_transcoded = utf8FromUtf16(bytes, form.encoding);
        bytes = m_transcoded;
        m_encoding = CsvEncoding::Utf8;
    }
    m_begin = m_at = bytes.data();
    m_end = m_begin + bytes.size();
    skipMark();
    skipSeparatorLine();
}

void CsvReader::skipMark()
{
    if (m_encoding == CsvEncoding::Utf8 && QByteArrayView(m_at, m_end).startsWith(utf8Mark))
        m_at += utf8Mark.size();
}

void CsvReader::skipSeparatorLine()
{
    const auto separator = namedSeparator({m_at, m_end});
    if (!separator)
        return;
    m_separator = *separator;
    m_meanings = meaningsWith(m_separator);
    while (m_at != m_end && *m_at != '\r' && *m_at != '\n')
        ++m_at;
    (void)endLine();
}

/// Takes one line break, if one is there.
bool CsvReader::endLine()
{
    if (m_at == m_end || (*m_at != '\r' && *m_at != '\n'))
        return false;
    m_at += *m_at == '\r' && m_at + 1 != m_end && m_at[1] == '\n' ? 2 : 1;
    ++m_line;
    return true;
}

void CsvReader::skipEmptyLines()
{
    while (endLine()) {
    }
}

bool CsvReader::next(CsvRow &row)
{
    row.fault.reset();
    skipEmptyLines();
    if (m_at == m_end) {
        row.cells.clear();
        return false;
    }
    row.line = m_line;
    int count = 0;
    for (bool goesOn = true; goesOn; ++count) {
        readCell(row, count);
        goesOn = m_at != m_end && *m_at == m_separator;
        m_at += goesOn ? 1 : 0;
    }
    row.lastLine = m_line;
    (void)endLine();
    const int kept = std::min(count, mostCells);
    row.cells.resize(kept);
    if (m_width < 0)
        m_width = kept;
    if (count != m_width)
        note(row, count < m_width ? Kind::TooFew : Kind::TooMany, row.line,
             static_cast<int>(std::min<qsizetype>(count, m_width)));
    return true;
}

void CsvReader::readCell(CsvRow &row, int column)
{
    const qint64 line = m_line;
    const char *quote = m_at;
    while (quote != m_end && *quote == ' ')
        ++quote;
    Piece piece;
    if (quote != m_end && *quote == '"') {
        m_at = quote + 1;
        piece = readQuoted(row, column);
    } else {
        piece = readPlain();
    }
    if (column < mostCells)
        put(row, column, line, piece);
}

CsvReader::Piece CsvReader::readPlain()
{
    const char *const begin = m_at;
    std::uint8_t met = 0;
    for (; m_at != m_end; ++m_at) {
        const std::uint8_t meaning = m_meanings[static_cast<unsigned char>(*m_at)];
        if ((meaning & Ends) != 0)
            break;
        met |= meaning;
    }
    return {{begin, m_at}, met};
}

/// From behind the opening quote to the end of the cell.
CsvReader::Piece CsvReader::readQuoted(CsvRow &row, int column)
{
    const qint64 line = m_line;
    const char *begin = m_at;
    std::uint8_t met = 0;
    bool isPieced = false;
    while (m_at != m_end) {
        const std::uint8_t meaning = m_meanings[static_cast<unsigned char>(*m_at)];
        met |= meaning;
        if ((meaning & Break) != 0) {
            (void)endLine();
        } else if ((meaning & Quote) == 0) {
            ++m_at;
        } else if (m_at + 1 != m_end && m_at[1] == '"') {
            if (!isPieced)
                m_unquoted.clear();
            isPieced = true;
            m_unquoted.append(begin, m_at + 1);
            m_at += 2;
            begin = m_at;
        } else {
            break;
        }
    }
    if (m_at == m_end)
        note(row, Kind::OpenQuote, line, column);
    if (isPieced)
        m_unquoted.append(begin, m_at);
    const Piece cell = {isPieced ? QByteArrayView(m_unquoted) : QByteArrayView(begin, m_at), met};
    m_at += m_at != m_end ? 1 : 0;
    return closeQuoted(row, column, line, cell);
}

/// Blanks behind the closing quote are nothing; any other text is a fault, and a part of the cell.
CsvReader::Piece CsvReader::closeQuoted(CsvRow &row, int column, qint64 line, const Piece &cell)
{
    while (m_at != m_end && *m_at == ' ')
        ++m_at;
    const Piece behind = readPlain();
    if (behind.bytes.isEmpty())
        return cell;
    note(row, Kind::BehindQuote, line, column);
    std::string joined(cell.bytes.begin(), cell.bytes.end());
    joined.append(behind.bytes.begin(), behind.bytes.end());
    m_unquoted = std::move(joined);
    return {m_unquoted, static_cast<std::uint8_t>(cell.met | behind.met)};
}

void CsvReader::put(CsvRow &row, int column, qint64 line, const Piece &piece)
{
    if (column >= row.cells.size())
        row.cells.append(QString());
    const bool isDecoded = decode(row.cells[column], piece.bytes, (piece.met & Wide) == 0);
    if ((piece.met & Null) != 0)
        note(row, Kind::Nul, line, column);
    if (!isDecoded)
        note(row, Kind::Undecodable, line, column);
}

bool CsvReader::decode(QString &cell, QByteArrayView bytes, bool isAscii) const
{
    if (!cell.isDetached()) // the caller has kept it: resize() would copy what it holds
        cell = QString();
    if (!isAscii)
        return decodeBytes(cell, bytes, m_encoding);
    cell.resize(bytes.size());
    std::transform(bytes.begin(), bytes.end(), cell.data(), [](char c) { return QLatin1Char(c); });
    return true;
}

int CsvReader::percent() const
{
    return m_end == m_begin ? 100 : static_cast<int>((m_at - m_begin) * 100 / (m_end - m_begin));
}

QString faultWords(CsvFault::Kind kind)
{
    switch (kind) {
    case Kind::OpenQuote:
        return u"A quotation mark opens the cell, and none closes it. Everything behind it is in this cell."_s;
    case Kind::BehindQuote:
        return u"Text stands behind the closing quotation mark."_s;
    case Kind::Nul:
        return u"The cell holds a character that no text has (NUL)."_s;
    case Kind::Undecodable:
        return u"The cell holds bytes that are no characters in this encoding."_s;
    case Kind::TooFew:
        return u"The row has fewer cells than the first one."_s;
    case Kind::TooMany:
        return u"The row has more cells than the first one."_s;
    }
    return {};
}

} // namespace harrowby::app
