// SPDX-License-Identifier: MIT
#include "tests/store/scratch_store.h"

#include <sqlite3.h>

#include <utility>

namespace harrowby {

namespace {

using namespace Qt::StringLiterals;

constexpr const char *tables = R"(
    create table StockList(StockID text, StockName text, StockCategory text, StockCost numeric,
        StockReorderLevel numeric, StockAvailable numeric, StockUse text, StockLastUpdated text,
        StockLastModified text, StockAdded text, StockReorderUser text);
    create table InventoryCategory(CategoryName text, EntryDate text);
    create table PurchaseCart(PurchaseID text, PurchasedItems text, PurchasedItemsTotal numeric,
        PurchasedItemsCost numeric, PurchasedDate text, Users text);
    create table StoreSettings(Email numeric, ShowDetails numeric, EmailAddress text, Promptreorder numeric,
        AutoPurchaseCart numeric);
    create table Users(Username text, Password text, Type text, InventoryUse text, InventorySales text,
        InventoryReport text, InventoryUndo text, InventoryDelete text, InventorySettings text, InventoryReorder text);
    create table SysUsage(SystemUsage text, Times text, Dates text);
)";

} // namespace

ScratchStore::ScratchStore(const char *vfs)
{
    sqlite3_open_v2(file().toUtf8().constData(), &m_handle, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, vfs);
    run(u"pragma synchronous = off"_s); // nothing here has to survive a power cut
    run(QString::fromLatin1(tables));
    m_connection = std::make_shared<SqliteConnection>(m_handle, u"/shop"_s);
    m_connection->setFailureHandler([this](const DbFailure &failure) { failures.push_back(failure); });
}

ScratchStore::~ScratchStore()
{
    (void)close();
}

QString ScratchStore::file() const
{
    return m_folder.filePath(u"store.sqlite"_s);
}

int ScratchStore::close()
{
    return sqlite3_close(std::exchange(m_handle, nullptr));
}

bool ScratchStore::run(const QString &statements) const
{
    return sqlite3_exec(m_handle, statements.toUtf8().constData(), nullptr, nullptr, nullptr) == SQLITE_OK;
}

QStringList ScratchStore::column(const QString &select) const
{
    QStringList values;
    const auto append = [](void *list, int, char **cells, char **) {
        static_cast<QStringList *>(list)->append(QString::fromUtf8(cells[0]));
        return 0;
    };
    char *error = nullptr;
    if (sqlite3_exec(m_handle, select.toUtf8().constData(), append, &values, &error) != SQLITE_OK)
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
