// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArrayView>
#include <QString>
#include <QUtf8StringView>

#include <initializer_list>
#include <string>
#include <vector>

namespace harrowby {

/// Texts in a single block, as UTF-8: a million short ones take a quarter of the memory of as many text objects.
class PackedTexts
{
public:
    PackedTexts() = default;
    PackedTexts(std::initializer_list<QString> texts);

    [[nodiscard]] qsizetype size() const { return static_cast<qsizetype>(m_pieces.size()); }
    [[nodiscard]] bool isEmpty() const { return m_pieces.empty(); }
    /// The text at an index that exists.
    [[nodiscard]] QString at(qsizetype index) const;
    /// First text that equals this one; -1 when there is none.
    [[nodiscard]] qsizetype indexOf(const QString &text) const;

    void append(QUtf8StringView text);
    void append(const QString &text);
    void append(const PackedTexts &texts);
    void removeAt(qsizetype index);
    void clear();

private:
    struct Piece
    {
        qsizetype begin = 0;
        qsizetype size = 0;
    };

    [[nodiscard]] QByteArrayView bytes(qsizetype index) const;

    std::string m_bytes;         ///< one text after the other, those that were removed too
    std::vector<Piece> m_pieces; ///< where each one that is there lies
};

} // namespace harrowby
