// SPDX-License-Identifier: MIT
#include "tests/store/scratch_store.h"

#include <sqlite3.h>

namespace harrowby {

using namespace Qt::StringLiterals;

ScratchStore::ScratchStore(const char *vfs) : m_file(vfs)
{
    m_connection = m_file.connect(u"/shop"_s);
    m_connection->setFailureHandler([this](const DbFailure &failure) { failures.push_back(failure); });
}

QStringList ScratchStore::column(const QString &select) const
{
    if (handle() == nullptr)
        return m_file.column(select);
    QStringList values;
    const auto append = [](void *list, int, char **cells, char **) {
        static_cast<QStringList *>(list)->append(QString::fromUtf8(cells[0]));
        return 0;
    };
    char *error = nullptr;
    if (sqlite3_exec(handle(), select.toUtf8().constData(), append, &values, &error) != SQLITE_OK)
        values.append(u"error: "_s + QString::fromUtf8(error));
    sqlite3_free(error);
    return values;
}

void ScratchStore::addItem(const QString &id, const QString &name, double available)
{
    run(u"insert into StockList(StockID, StockName, StockCategory, StockCost, StockReorderLevel, StockAvailable, "
        "StockUse) values ('%1', '%2', 'FOOD', 2.5, 5, %3, 'Enabled')"_s.arg(id, name, QString::number(available)));
}

} // namespace harrowby
