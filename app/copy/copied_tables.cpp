// SPDX-License-Identifier: MIT
#include "app/copy/copied_tables.h"

#include "app/shop/schema.h"

#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

CopiedTable copiedTable(const StoreTable &table)
{
    CopiedTable copied{table.name, {}};
    for (qsizetype column = 0; column < table.columns.size(); ++column) {
        const bool isText = table.types.at(column) == u"TEXT"_s;
        copied.columns << CopiedColumn{table.columns.at(column), isText ? ColumnFill::Text : ColumnFill::Figure};
    }
    return copied;
}

ColumnFill fillOf(const QString &type)
{
    if (type == u"text"_s)
        return ColumnFill::Text;
    if (type == u"integer"_s)
        return ColumnFill::SmallNumber;
    return type == u"bigint"_s ? ColumnFill::WholeNumber : ColumnFill::Real;
}

/// Of "(a, b)": the columns that are texts.
QStringList textsOf(const CopiedTable &table, const QString &list)
{
    QStringList texts;
    for (const QString &part : list.split(u',')) {
        const QString name = part.trimmed();
        const bool isText = std::ranges::any_of(table.columns, [&](const CopiedColumn &column) {
            return column.name == name && column.fill == ColumnFill::Text;
        });
        if (isText)
            texts << name;
    }
    return texts;
}

void addIndex(CopiedTable &table, const QString &list)
{
    if (const QStringList texts = textsOf(table, list); !texts.isEmpty())
        table.indexedTexts << texts;
}

/// "create table if not exists T (column type …, primary key (columns))"
CopiedTable tableOf(const RecordTable &made, const QRegularExpressionMatch &making)
{
    static const QRegularExpression column(
        u"(?:^|,)\\s*(\\w+) (text|integer|bigint|double precision)( not null primary key)?"_s);
    static const QRegularExpression key(u"primary key \\(([^)]*)\\)"_s);
    CopiedTable table{making.captured(1), {}, &made};
    const QString body = making.captured(2);
    QStringList alone;
    for (const auto &match : column.globalMatch(body)) {
        const bool isFigure = made.figures.contains(match.captured(1));
        table.columns << CopiedColumn{match.captured(1), isFigure ? ColumnFill::Figure : fillOf(match.captured(2))};
        if (!match.captured(3).isEmpty())
            alone << match.captured(1);
    }
    for (const QString &name : std::as_const(alone))
        addIndex(table, name);
    if (const auto match = key.match(body); match.hasMatch())
        addIndex(table, match.captured(1));
    return table;
}

QList<CopiedTable> allTables()
{
    QList<CopiedTable> tables;
    for (const StoreTable &table : storeTables())
        tables << copiedTable(table);
    for (const RecordTable *own : kept::all())
        tables << tablesMadeBy(*own);
    return tables;
}

} // namespace

RecordTable CopiedTable::records() const
{
    return made != nullptr ? *made : RecordTable{name, {}};
}

QStringList CopiedTable::columnNames() const
{
    QStringList names;
    for (const CopiedColumn &column : columns)
        names << column.name;
    return names;
}

QList<CopiedTable> tablesMadeBy(const RecordTable &table)
{
    static const QRegularExpression makesTable(u"^create table if not exists (\\w+) \\((.*)\\)$"_s);
    static const QRegularExpression makesIndex(u"^create index if not exists \\w+ on (\\w+) \\((.*)\\)$"_s);
    QList<CopiedTable> tables;
    for (const QString &statement : table.making) {
        if (const auto making = makesTable.match(statement); making.hasMatch())
            tables << tableOf(table, making);
    }
    for (const QString &statement : table.making) {
        const auto index = makesIndex.match(statement);
        const auto indexed = std::ranges::find(tables, index.captured(1), &CopiedTable::name);
        if (index.hasMatch() && indexed != tables.end())
            addIndex(*indexed, index.captured(2));
    }
    return tables;
}

const QList<CopiedTable> &copiedTables()
{
    static const QList<CopiedTable> tables = allTables();
    return tables;
}

} // namespace harrowby::app
