// SPDX-License-Identifier: MIT
#include "app/copy/row_sums.h"

#include <QCryptographicHash>

#include <bit>
#include <cmath>
#include <cstring>

namespace harrowby::app {

namespace {

void append(QByteArray &bytes, std::uint64_t number)
{
    bytes.append(reinterpret_cast<const char *>(&number), sizeof number);
}

void append(QByteArray &bytes, char kind, QByteArrayView text)
{
    bytes.append(kind);
    append(bytes, static_cast<std::uint64_t>(text.size()));
    bytes.append(text);
}

/// No two values have the same bytes, and none is the beginning of another.
void append(QByteArray &bytes, const RecordValue &value)
{
    if (const auto *whole = std::get_if<std::int64_t>(&value)) {
        bytes.append('i');
        append(bytes, static_cast<std::uint64_t>(*whole));
    } else if (const auto *real = std::get_if<double>(&value)) {
        bytes.append('r');
        append(bytes, std::bit_cast<std::uint64_t>(*real));
    } else if (const auto *text = std::get_if<QString>(&value)) {
        append(bytes, 't', text->toUtf8());
    } else if (const auto *binary = std::get_if<QByteArray>(&value)) {
        append(bytes, 'b', *binary);
    } else {
        bytes.append('n');
    }
}

} // namespace

void RowSum::add(const RecordRow &row)
{
    QByteArray bytes;
    for (const RecordValue &value : row)
        append(bytes, value);
    const QByteArray hash = QCryptographicHash::hash(bytes, QCryptographicHash::Sha256);
    std::array<std::uint64_t, 4> parts{};
    std::memcpy(parts.data(), hash.constData(), sizeof parts);
    for (std::size_t part = 0; part < parts.size(); ++part)
        m_sum.at(part) += parts.at(part);
    ++m_rows;
}

} // namespace harrowby::app
