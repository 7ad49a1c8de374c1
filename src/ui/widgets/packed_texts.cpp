// SPDX-License-Identifier: MIT
#include "ui/widgets/packed_texts.h"

namespace harrowby {

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
    m_pieces.push_back({static_cast<qsizetype>(m_bytes.size()), text.size()});
    m_bytes.append(reinterpret_cast<const char *>(text.data()), static_cast<std::size_t>(text.size()));
}

void PackedTexts::append(const QString &text)
{
    append(QUtf8StringView(text.toUtf8()));
}

void PackedTexts::append(const PackedTexts &texts)
{
    const auto shift = static_cast<qsizetype>(m_bytes.size());
    m_bytes.append(texts.m_bytes);
    for (const Piece &piece : texts.m_pieces)
        m_pieces.push_back({piece.begin + shift, piece.size});
}

void PackedTexts::removeAt(qsizetype index)
{
    m_pieces.erase(m_pieces.begin() + index); // the bytes stay: moving all later ones would cost more than their memory
}

void PackedTexts::clear()
{
    *this = PackedTexts();
}

QByteArrayView PackedTexts::bytes(qsizetype index) const
{
    const Piece &piece = m_pieces[static_cast<std::size_t>(index)];
    return QByteArrayView(m_bytes).sliced(piece.begin, piece.size);
}

} // namespace harrowby
