// SPDX-License-Identifier: MIT
#include "app/catalogue/equal_rows.h"

#include "app/catalogue/import_shelf.h"
#include "app/catalogue/import_words.h"
#include "app/catalogue/item_census.h"

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

/// One number has one text, whether it is kept as an integer or not.
QByteArray numberKey(double value)
{
    constexpr double exact = 9007199254740992.0; // up to here each integer is a double
    if (std::abs(value) <= exact && std::trunc(value) == value)
        return 'n' + QByteArray::number(static_cast<qint64>(value));
    return 'n' + QByteArray::number(value, 'g', 17);
}

/// Texts as records have them: bytes that are no UTF-8 replaced, and without a mark at the beginning.
QByteArray textKey(const QByteArray &utf8)
{
    return 't' + QString::fromUtf8(utf8).toUtf8();
}

QByteArray valueKey(const DbValue &value, bool isText)
{
    if (const auto *whole = std::get_if<std::int64_t>(&value))
        return 'n' + QByteArray::number(static_cast<qint64>(*whole));
    if (const auto *real = std::get_if<double>(&value))
        return numberKey(*real);
    if (const auto *text = std::get_if<QString>(&value))
        return textKey(text->toUtf8());
    if (const auto *bytes = std::get_if<QByteArray>(&value))
        return isText ? textKey(*bytes) : 'b' + *bytes;
    return "0";
}

/// The judges trim texts, and records lose a mark at the beginning.
bool isOddText(const QString &text)
{
    const auto isOdd = [](QChar c) { return c < u' ' || c == QChar::ByteOrderMark; };
    return hasUnseenEnds(text) || std::any_of(text.begin(), text.end(), isOdd);
}

/// A value's length stands before it, so that no two rows have one key.
void append(QByteArray &key, const QByteArray &value)
{
    key += QByteArray::number(value.size()) + ':' + value;
}

} // namespace

EqualRows::EqualRows(Records &records, const ImportLines &lines, const ImportChoices &choices) :
    m_records(records), m_kind(choices.kind), m_isExport(lines.isExport() && !choices.asStored)
{
    const bool areItems = choices.kind == ImportKind::Items;
    const int all = areItems ? importedParts + 1 : static_cast<int>(exportColumns(choices.kind).size());
    for (int i = 0; i < choices.columns.size(); ++i) {
        if (choices.columns.at(i) < 0)
            continue;
        // What a person has matched otherwise is compared by the judges alone.
        m_isExport = m_isExport && choices.columns.at(i) == i && i < all;
        if (!(areItems && leavesStock(i, choices)))
            m_columns << i;
    }
}

bool EqualRows::isOdd(const ImportLine &line) const
{
    return m_isExport && (line.hasWords || std::ranges::any_of(line.cells, isOddText));
}

Records::Answer<EqualRows::Found> EqualRows::take(const ImportLine &line)
{
    if (!m_isExport || line.stored.isEmpty() || m_columns.isEmpty())
        return Found::None;
    if (auto failure = load())
        return Unexpected(*failure);
    QByteArray key;
    for (const int column : std::as_const(m_columns)) {
        const StoredValue &stored = line.stored.at(column);
        append(key, valueKey(stored.value, stored.isText));
    }
    const auto found = m_rows.find(key);
    if (found == m_rows.end())
        return Found::None;
    if (*found == 0)
        return Found::Taken;
    --*found;
    return Found::Equal;
}

std::optional<DbFailure> EqualRows::load()
{
    if (m_isLoaded)
        return {};
    QStringList names;
    for (const int column : std::as_const(m_columns))
        names << exportColumns(m_kind).at(column).name;
    const auto rows = readTable(m_records, m_kind, names.join(u", "_s));
    if (!rows)
        return rows.error();
    m_rows.reserve(rows->size());
    for (const RecordRow &row : *rows) {
        QByteArray key;
        for (const RecordValue &value : row)
            append(key, valueKey(value, false));
        ++m_rows[key];
    }
    m_isLoaded = true;
    return {};
}

} // namespace harrowby::app
