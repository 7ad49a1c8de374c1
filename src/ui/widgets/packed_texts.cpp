// SPDX-License-Identifier: MIT
#include "ui/widgets/packed_texts.h"

#include <cstdint>
#include <cstring>

namespace harrowby {

namespace {

using Length = std::uint32_t;

} // namespace

PackedTexts::PackedTexts(std::initializer_list<QString> texts)
{
    for (const QString &text : texts)
        append(text);
}

QString PackedTexts::at(qsizetype index) const
{
    return QString::fromUtf8(bytes(index));
}

qsizetype PackedTexts::indexOf(const QString &text) const
{
    const QByteArray wanted = text.toUtf8();
    qsizetype index = 0;
    while (index < size() && bytes(index) != wanted)
        ++index;
    return index < size() ? index : -1;
}

void PackedTexts::append(QUtf8StringView text)
{
    const auto length = static_cast<Length>(text.size());
    m_begins.push_back(static_cast<qsizetype>(m_bytes.size()));
    m_bytes.append(reinterpret_cast<const char *>(&length), sizeof length);
    m_bytes.append(reinterpret_cast<const char *>(text.data()), length);
}

void PackedTexts::append(const QString &text)
{
    append(QUtf8StringView(text.toUtf8()));
}

void PackedTexts::append(const PackedTexts &texts)
{
    const auto shift = static_cast<qsizetype>(m_bytes.size());
    m_bytes.append(texts.m_bytes);
    for (const qsizetype begin : texts.m_begins)
        m_begins.push_back(begin + shift);
}

void PackedTexts::removeAt(qsizetype index)
{
    m_begins.erase(m_begins.begin() + index); // the bytes stay: moving all later ones would cost more than their memory
}

void PackedTexts::clear()
{
    *this = PackedTexts();
}

QByteArrayView PackedTexts::bytes(qsizetype index) const
{
    const qsizetype begin = m_begins[static_cast<std::size_t>(index)];
    Length length = 0;
    std::memcpy(&length, m_bytes.data() + begin, sizeof length);
    return {m_bytes.data() + begin + sizeof length, static_cast<qsizetype>(length)};
}

} // namespace harrowby
