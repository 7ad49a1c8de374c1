// SPDX-License-Identifier: MIT
#include "bench/walk_work.h"

#include "bench/counter_statements.h"
#include "store/statement_texts.h"

#include <harrowby/db_connection.h>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harrowby::bench {

namespace {

bool isNamed(const RawStatement &select, const QString &column)
{
    return std::any_of(select.columns.cbegin(), select.columns.cend(), [&column](const QByteArray &name) {
        return column.compare(QLatin1StringView(name), Qt::CaseInsensitive) == 0;
    });
}

/// Takes the values of these columns out of each row. The number of rows.
qint64 walk(DbConnection &connection, const RawStatement &select)
{
    const auto rows = connection.queryAs(QString::fromUtf8(select.sql), DbReading::CountedWalk);
    if (!rows)
        return -1;
    std::vector<int> columns;
    for (const QString &name : rows->columnNames()) {
        if (isNamed(select, name))
            columns.push_back(static_cast<int>(rows->columnNames().indexOf(name)));
    }
    qint64 count = 0;
    for (; rows->next() == DbCursor::Step::Row; ++count) {
        for (const int column : columns) {
            if (!rows->text(column))
                static_cast<void>(rows->value(column));
        }
    }
    return count;
}

} // namespace

Line measureWalk(MeasuredStore &store, const WorksOptions &options)
{
    const QString name = u"walk all items through the connection"_s;
    const RawStatements list = stockListStatements();
    const auto connection = store.connect();
    BesideRaw times;
    for (int i = -warmUps(options.runs); i < options.runs; ++i) {
        const double ms = timed([&] { return walk(*connection, list.front()) == options.items; });
        const double raw = checked(store.rawMs(list), name);
        if (i >= 0) {
            times.add(checked(ms, name), raw);
        }
    }
    return times.line(name, options.items, walkOnServer);
}

} // namespace harrowby::bench
