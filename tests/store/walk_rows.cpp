// SPDX-License-Identifier: MIT
#include "tests/store/walk_rows.h"

using namespace Qt::StringLiterals;

namespace harrowby::walk_rows {

const Statement everything("Select * from StockList");

QStringList rest(DbRecordset &rows)
{
    QStringList names;
    for (; !rows.IsEof(); rows.MoveNext())
        names.append(rows.Field(u"name"_s).text());
    return names;
}

QStringList namesFrom(int first, int end)
{
    QStringList names;
    for (int i = first; i < end; ++i)
        names.append(u"row "_s + QString::number(i));
    return names;
}

void skip(DbRecordset &rows, int count)
{
    for (; count > 0; --count)
        rows.MoveNext();
}

} // namespace harrowby::walk_rows
