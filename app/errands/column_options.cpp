// SPDX-License-Identifier: MIT
#include "app/errands/column_options.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

QString quoted(const QString &heading)
{
    return u'"' + heading.trimmed() + u'"';
}

std::optional<QString> take(const GivenColumn &given, ImportKind kind, const QStringList &headings, ColumnMatch &match)
{
    const int column = importColumn(kind, given.column);
    if (column < 0) {
        QStringList names;
        for (const ImportColumn &one : importColumns(kind))
            names << one.name;
        return u"--columns: there is no column \"%1\". They are %2."_s.arg(given.column, names.join(u", "_s));
    }
    std::ranges::replace(match, column, -1);
    if (given.heading.isEmpty())
        return {};
    const auto isIt = [&](const QString &heading) {
        return heading.trimmed().compare(given.heading, Qt::CaseInsensitive) == 0;
    };
    const auto found = std::ranges::find_if(headings, isIt);
    if (found == headings.end())
        return u"--columns: no column of the file is called \"%1\"."_s.arg(given.heading);
    match[found - headings.begin()] = column;
    return {};
}

/// Empty when each column is certain.
QString doubtWords(ImportKind kind, const QStringList &headings, const QList<GivenColumn> &given)
{
    for (const ColumnDoubt &doubt : columnDoubts(kind, headings)) {
        const QString column = importColumns(kind).at(doubt.column).name;
        if (std::ranges::find(given, column, &GivenColumn::column) != given.end())
            continue;
        QStringList names;
        for (const int place : doubt.headings)
            names << quoted(headings.at(place));
        return u"Several columns of the file can be %1: %2. Say which one it is with --columns \"%1=%3\" (or another "
               "of them), or match the columns once in the office. Nothing was imported."_s.arg(
                   column, names.join(u", "_s), headings.at(doubt.headings.constFirst()).trimmed());
    }
    return {};
}

} // namespace

Result<QList<GivenColumn>, QString> readColumns(const QString &value)
{
    QList<GivenColumn> columns;
    for (const QString &pair : value.split(u',')) {
        const qsizetype sign = pair.indexOf(u'=');
        if (sign < 1)
            return Unexpected(u"--columns takes pairs such as StockCost=Price, with commas between them."_s);
        columns << GivenColumn{pair.first(sign).trimmed(), pair.sliced(sign + 1).trimmed()};
    }
    return columns;
}

Result<ColumnMatch, QString> columnsFor(ImportKind kind, const QStringList &headings,
                                        const std::optional<ColumnMatch> &remembered, const QList<GivenColumn> &given)
{
    if (const QString doubt = remembered ? QString() : doubtWords(kind, headings, given); !doubt.isEmpty())
        return Unexpected(doubt);
    ColumnMatch match = remembered.value_or(matchColumns(kind, headings));
    for (const GivenColumn &one : given) {
        if (const auto wrong = take(one, kind, headings, match))
            return Unexpected(*wrong);
    }
    return match;
}

QString columnWords(ImportKind kind, const QStringList &headings, const ColumnMatch &match)
{
    QString words;
    const QList<ImportColumn> &columns = importColumns(kind);
    for (qsizetype column = 0; column < columns.size(); ++column) {
        if (const qsizetype place = match.indexOf(static_cast<int>(column)); place >= 0)
            words += u"%1 ← %2\n"_s.arg(columns.at(column).name, headings.at(place).trimmed());
    }
    QStringList unused;
    for (qsizetype place = 0; place < match.size(); ++place) {
        if (match.at(place) < 0)
            unused << quoted(headings.at(place));
    }
    return unused.isEmpty() ? words : words + u"Not used: %1\n"_s.arg(unused.join(u", "_s));
}

} // namespace harrowby::app
