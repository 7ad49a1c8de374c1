// SPDX-License-Identifier: MIT
#include "app/catalogue/import_columns.h"

#include "app/catalogue/column_names.h"
#include "app/catalogue/import_lines.h"
#include "app/csv/figures.h"
#include "app/records/shop_settings.h"

#include <QCryptographicHash>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr int ownName = 4;

/// "Unit cost (EUR)" is "unitcost": what stands in brackets is a unit.
QString keyOf(const QString &heading)
{
    QString key;
    int depth = 0;
    for (const QChar c : heading.toLower()) {
        depth += c == u'(' || c == u'[' ? 1 : 0;
        if (depth == 0 && c.isLetterOrNumber())
            key += c;
        depth -= depth > 0 && (c == u')' || c == u']') ? 1 : 0;
    }
    return key;
}

/// How well the heading names the column: 4 for its own name, 3 for the plain names, 2 for the words that a person
/// reads, 1 for others.
int rankOf(const KnownColumn &column, const QString &key)
{
    if (key.isEmpty())
        return 0;
    if (key == keyOf(column.column.name))
        return ownName;
    if (column.plainNames.contains(key))
        return 3;
    if (key == keyOf(column.column.words))
        return 2;
    return column.otherNames.contains(key) ? 1 : 0;
}

/// The places of those headings that the column may be, the likeliest first.
QList<int> candidatesOf(const KnownColumn &column, const QStringList &headings)
{
    QList<int> places;
    int best = 0;
    for (int rank = ownName; rank > 0; --rank) {
        for (qsizetype i = 0; i < headings.size(); ++i) {
            if (rankOf(column, keyOf(headings.at(i))) == rank) {
                places << static_cast<int>(i);
                best = std::max(best, rank);
            }
        }
    }
    // Nobody heads a column by the store's own name but for this; a lone "Cost" beside another price may be either.
    if (best == ownName)
        places.removeIf([&](int place) { return rankOf(column, keyOf(headings.at(place))) < ownName; });
    for (qsizetype i = 0; best > 0 && best < 3 && isThePrice(column) && i < headings.size(); ++i) {
        if (rankOf(column, keyOf(headings.at(i))) == 0 && mayBeAPrice(keyOf(headings.at(i))))
            places << static_cast<int>(i);
    }
    return places;
}

QString settingOf(ImportKind kind, const QStringList &headings)
{
    const QByteArray text = (QString::number(static_cast<int>(kind)) + u'\n' + headings.join(u'\n')).toUtf8();
    return u"ImportColumns."_s +
           QString::fromLatin1(QCryptographicHash::hash(text, QCryptographicHash::Sha256).toHex().left(32));
}

} // namespace

const QList<ImportKind> &importKinds()
{
    static const QList<ImportKind> kinds = {ImportKind::Items, ImportKind::Categories, ImportKind::Codes};
    return kinds;
}

const QList<ImportColumn> &importColumns(ImportKind kind)
{
    const auto columnsOf = [](ImportKind which) {
        QList<ImportColumn> columns;
        for (const KnownColumn &one : knownColumns(which))
            columns << one.column;
        return columns;
    };
    static const QList<ImportColumn> items = columnsOf(ImportKind::Items);
    static const QList<ImportColumn> categories = columnsOf(ImportKind::Categories);
    static const QList<ImportColumn> codes = columnsOf(ImportKind::Codes);
    return kind == ImportKind::Items ? items : kind == ImportKind::Categories ? categories : codes;
}

int importColumn(ImportKind kind, const QString &name)
{
    const QList<ImportColumn> &columns = importColumns(kind);
    const auto found = std::ranges::find(columns, name, &ImportColumn::name);
    return found == columns.end() ? -1 : static_cast<int>(found - columns.begin());
}

ImportKind guessKind(const QStringList &headings)
{
    for (const ImportKind kind : importKinds()) {
        if (isExportOf(headings, exportColumns(kind)))
            return kind;
    }
    const auto matched = [&](ImportKind kind) {
        const ColumnMatch match = matchColumns(kind, headings);
        return match.size() - match.count(-1);
    };
    if (headings.size() == 1 && matched(ImportKind::Categories) == 1)
        return ImportKind::Categories;
    return matched(ImportKind::Codes) == 3 && matched(ImportKind::Items) < 4 ? ImportKind::Codes : ImportKind::Items;
}

bool looksLikeARow(const QStringList &headings)
{
    for (const ImportKind kind : importKinds()) {
        const ColumnMatch match = matchColumns(kind, headings);
        if (match.count(-1) != match.size())
            return false;
    }
    return std::ranges::any_of(headings,
                               [](const QString &text) { return readFigure(text, u'.') || readFigure(text, u','); });
}

QStringList numberedHeadings(qsizetype count)
{
    QStringList headings;
    for (qsizetype i = 1; i <= count; ++i)
        headings << u"Column %1"_s.arg(i);
    return headings;
}

ColumnMatch matchColumns(ImportKind kind, const QStringList &headings)
{
    ColumnMatch match(headings.size(), -1);
    const QList<KnownColumn> &columns = knownColumns(kind);
    for (int rank = ownName; rank > 0; --rank) {
        for (qsizetype i = 0; i < columns.size(); ++i) {
            if (match.contains(static_cast<int>(i)))
                continue;
            const auto heading = std::ranges::find_if(
                headings, [&](const QString &text) { return rankOf(columns.at(i), keyOf(text)) == rank; });
            const qsizetype place = heading - headings.begin();
            if (heading != headings.end() && match.at(place) < 0)
                match[place] = static_cast<int>(i);
        }
    }
    return match;
}

QList<ColumnDoubt> columnDoubts(ImportKind kind, const QStringList &headings)
{
    QList<ColumnDoubt> doubts;
    const QList<KnownColumn> &columns = knownColumns(kind);
    for (qsizetype i = 0; i < columns.size(); ++i) {
        const QList<int> places = candidatesOf(columns.at(i), headings);
        if (places.size() > 1)
            doubts << ColumnDoubt{static_cast<int>(i), places};
    }
    return doubts;
}

Result<void, QString> checkMatch(ImportKind kind, const ColumnMatch &match)
{
    const QList<ImportColumn> &columns = importColumns(kind);
    for (qsizetype i = 0; i < columns.size(); ++i) {
        if (match.count(static_cast<int>(i)) > 1)
            return Unexpected(
                u"Two columns of the file are to be \"%1\". Leave one of them out."_s.arg(columns.at(i).words));
    }
    const auto has = [&](const QString &name) { return match.contains(importColumn(kind, name)); };
    if (kind == ImportKind::Items && !has(u"StockID"_s) && !has(u"Code"_s) && !has(u"StockName"_s))
        return Unexpected(u"No column of the file is the ID, the code or the name of the items."_s);
    if (kind == ImportKind::Categories && !has(u"CategoryName"_s))
        return Unexpected(u"No column of the file is the category."_s);
    if (kind == ImportKind::Codes && !has(u"Code"_s))
        return Unexpected(u"No column of the file is the code."_s);
    return {};
}

QSet<int> figureColumns(ImportKind kind, const ColumnMatch &match)
{
    QSet<int> columns;
    for (qsizetype i = 0; i < match.size(); ++i) {
        if (match.at(i) >= 0 && importColumns(kind).at(match.at(i)).isFigure)
            columns.insert(static_cast<int>(i));
    }
    return columns;
}

DecimalGuess guessDecimalSign(QByteArrayView bytes, const CsvForm &form, ImportKind kind, const ColumnMatch &match)
{
    const QSet<int> columns = figureColumns(kind, match);
    // Without a column of figures nothing is read by it.
    return columns.isEmpty() ? DecimalGuess{form.decimalSign, {}, 0, 0} : guessDecimalSign(bytes, form, columns);
}

std::optional<ColumnMatch> RememberedColumns::match(ImportKind kind, const QStringList &headings) const
{
    const QString text = ShopSettings(m_records).value(settingOf(kind, headings));
    ColumnMatch match;
    for (const QString &name : text.split(u','))
        match << importColumn(kind, name);
    return text.isEmpty() || match.size() != headings.size() ? std::nullopt : std::optional(match);
}

std::optional<DbFailure> RememberedColumns::remember(ImportKind kind, const QStringList &headings,
                                                     const ColumnMatch &match)
{
    ShopSettings settings(m_records);
    const QString name = settingOf(kind, headings);
    if (match == matchColumns(kind, headings) && columnDoubts(kind, headings).isEmpty()) {
        const auto there = settings.read(name);
        if (!there)
            return there.error();
        return *there ? settings.remove(name) : std::nullopt;
    }
    QStringList names;
    for (const int column : match)
        names << (column < 0 ? u"-"_s : importColumns(kind).at(column).name);
    return settings.save(name, names.join(u','));
}

} // namespace harrowby::app
