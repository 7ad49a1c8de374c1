// SPDX-License-Identifier: MIT
#include "store/row_buffer.h"

#include <algorithm>
#include <bit>

namespace harrowby {

namespace {

// Each value begins with a number of 7 bits a byte, lowest first: its type in the low three bits, and above them
// the length of a text or of bytes. Integers follow as a further such number, small negative ones kept small.
enum Type : std::uint64_t { Null, Integer, Real, Text, Bytes };
constexpr int typeBits = 3;

std::uint64_t foldSign(std::int64_t value)
{
    const auto bits = static_cast<std::uint64_t>(value);
    return value < 0 ? ~(bits << 1) : bits << 1;
}

std::int64_t unfoldSign(std::uint64_t folded)
{
    return static_cast<std::int64_t>((folded & 1) != 0 ? ~(folded >> 1) : folded >> 1);
}

class Reader
{
public:
    Reader(const QByteArray &bytes, qsizetype at) : m_bytes(bytes), m_at(at) {}

    [[nodiscard]] qsizetype position() const { return m_at; }

    void skip()
    {
        const std::uint64_t head = number();
        switch (head & ((1 << typeBits) - 1)) {
        case Integer:
            number();
            break;
        case Real:
            m_at += 8;
            break;
        default:
            m_at += length(head);
        }
    }

    DbValue value()
    {
        const std::uint64_t head = number();
        switch (head & ((1 << typeBits) - 1)) {
        case Integer:
            return unfoldSign(number());
        case Real:
            return real();
        case Text:
            return QString::fromUtf8(QByteArrayView(m_bytes).sliced(m_at, length(head)));
        case Bytes:
            return m_bytes.sliced(m_at, length(head));
        default:
            return {};
        }
    }

    std::optional<QByteArrayView> text()
    {
        const std::uint64_t head = number();
        if ((head & ((1 << typeBits) - 1)) != Text)
            return {};
        return QByteArrayView(m_bytes).sliced(m_at, length(head));
    }

private:
    static qsizetype length(std::uint64_t head) { return static_cast<qsizetype>(head >> typeBits); }

    std::uint64_t byte() { return static_cast<unsigned char>(m_bytes.at(m_at++)); }

    std::uint64_t number()
    {
        std::uint64_t result = 0;
        for (int shift = 0;; shift += 7) {
            const std::uint64_t part = byte();
            result |= (part & 0x7f) << shift;
            if ((part & 0x80) == 0)
                return result;
        }
    }

    double real()
    {
        std::uint64_t bits = 0;
        for (int shift = 0; shift < 64; shift += 8)
            bits |= byte() << shift;
        return std::bit_cast<double>(bits);
    }

    const QByteArray &m_bytes;
    qsizetype m_at;
};

} // namespace

void RowBuffer::reset(const QStringList &columns)
{
    *this = RowBuffer();
    m_columns = columns;
}

void RowBuffer::append(const DbValue &value)
{
    if (const auto *integer = std::get_if<std::int64_t>(&value)) {
        putNumber(Integer);
        putNumber(foldSign(*integer));
    } else if (const auto *real = std::get_if<double>(&value)) {
        putNumber(Real);
        const auto bits = std::bit_cast<std::uint64_t>(*real);
        for (int shift = 0; shift < 64; shift += 8)
            m_bytes.append(static_cast<char>(bits >> shift & 0xff));
    } else if (const auto *text = std::get_if<QString>(&value)) {
        putText(*text);
    } else if (const auto *bytes = std::get_if<QByteArray>(&value)) {
        putBytes(Bytes, *bytes);
    } else {
        putNumber(Null);
    }
}

void RowBuffer::putText(const QString &text)
{
    // Nearly every text is ASCII, and as long in UTF-8 as it is: no copy in between.
    if (!std::all_of(text.begin(), text.end(), [](QChar c) { return c < QChar(0x80); }))
        return putBytes(Text, text.toUtf8());
    putNumber(static_cast<std::uint64_t>(text.size()) << typeBits | Text);
    const qsizetype begin = m_bytes.size();
    const qsizetype end = begin + text.size();
    if (end > m_bytes.capacity())
        m_bytes.reserve(2 * end);
    m_bytes.resize(end);
    std::transform(text.begin(), text.end(), m_bytes.begin() + begin,
                   [](QChar c) { return static_cast<char>(c.unicode()); });
}

void RowBuffer::putBytes(std::uint64_t type, const QByteArray &bytes)
{
    putNumber(static_cast<std::uint64_t>(bytes.size()) << typeBits | type);
    m_bytes.append(bytes);
}

void RowBuffer::putNumber(std::uint64_t number)
{
    for (; number >= 0x80; number >>= 7)
        m_bytes.append(static_cast<char>((number & 0x7f) | 0x80));
    m_bytes.append(static_cast<char>(number));
}

void RowBuffer::moveNext()
{
    if (atEnd())
        return;
    Reader reader(m_bytes, m_rowBegin);
    for (qsizetype i = 0; i < columns(); ++i)
        reader.skip();
    m_rowBegin = reader.position();
    ++m_row;
}

qsizetype RowBuffer::column(const QString &name)
{
    // A loop asks for the same columns row by row.
    for (std::size_t i = 0; i < m_asked.size(); ++i) {
        const auto &[asked, position] = m_asked[m_nextAsked];
        m_nextAsked = (m_nextAsked + 1) % m_asked.size();
        if (asked == name)
            return position;
    }
    const auto found = std::find_if(m_columns.cbegin(), m_columns.cend(), [&name](const QString &column) {
        return column.compare(name, Qt::CaseInsensitive) == 0;
    });
    const qsizetype position = found == m_columns.cend() ? -1 : found - m_columns.cbegin();
    m_asked.emplace_back(name, position);
    m_nextAsked = 0;
    return position;
}

DbValue RowBuffer::value(qsizetype column) const
{
    Reader reader(m_bytes, m_rowBegin);
    for (qsizetype i = 0; i < column; ++i)
        reader.skip();
    return reader.value();
}

std::optional<QByteArrayView> RowBuffer::text(qsizetype column) const
{
    Reader reader(m_bytes, m_rowBegin);
    for (qsizetype i = 0; i < column; ++i)
        reader.skip();
    return reader.text();
}

} // namespace harrowby
