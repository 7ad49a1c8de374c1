// SPDX-License-Identifier: MIT
#include "tests/doubles/shop_file.h"

#include "tests/doubles/server_shop.h"

#include <harrowby/sqlite_connection.h>

#include <sqlite3.h>

#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::test {

namespace {

constexpr auto tables = R"(
CREATE TABLE StockList (StockID TEXT, StockName TEXT, StockCategory TEXT, StockCost NUMERIC, StockReorderLevel NUMERIC,
    StockAvailable NUMERIC, StockUse TEXT, StockLastUpdated TEXT, StockLastModified TEXT, StockAdded TEXT,
    StockReorderUser TEXT);
CREATE TABLE InventoryCategory (CategoryName TEXT, EntryDate TEXT);
CREATE TABLE PurchaseCart (PurchaseID TEXT, PurchasedItems TEXT, PurchasedItemsTotal NUMERIC,
    PurchasedItemsCost NUMERIC, PurchasedDate TEXT, Users TEXT);
CREATE TABLE StoreSettings (Email NUMERIC, ShowDetails NUMERIC, EmailAddress TEXT, Promptreorder NUMERIC,
    AutoPurchaseCart NUMERIC);
CREATE TABLE Users (Username TEXT, Password TEXT, Type TEXT, InventoryUse, InventorySales, InventoryReport,
    InventoryUndo, InventoryDelete, InventorySettings, InventoryReorder);
CREATE TABLE SysUsage (SystemUsage TEXT, Times TEXT, Dates TEXT);
)"_L1;

QString columnText(sqlite3_stmt *statement, int column)
{
    return QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(statement, column)));
}

} // namespace

ShopFile::ShopFile(const char *vfs)
{
    if (shopsAreOnAServer()) {
        m_shop = std::make_unique<ServerShop>();
        return;
    }
    constexpr int mode = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
    if (sqlite3_open_v2(path().toUtf8().constData(), &m_handle, mode, vfs) != SQLITE_OK)
        qFatal("the file cannot be opened");
    sql(u"PRAGMA synchronous = OFF"_s); // no test survives a power cut
    sql(tables);
}

ShopFile::~ShopFile()
{
    (void)close();
}

int ShopFile::close()
{
    return sqlite3_close(std::exchange(m_handle, nullptr));
}

QString ShopFile::path() const
{
    return m_shop ? m_shop->path() : m_folder.filePath(u"shop.sqlite"_s);
}

std::shared_ptr<DbConnection> ShopFile::connect(const QString &location) const
{
    return m_shop ? connectToServer(path(), location) : std::make_shared<SqliteConnection>(m_handle, location);
}

bool ShopFile::trySql(const QString &statements) const
{
    if (m_shop)
        return m_shop->session().run(statements);
    return sqlite3_exec(m_handle, statements.toUtf8().constData(), nullptr, nullptr, nullptr) == SQLITE_OK;
}

bool ShopFile::isInTransaction() const
{
    return m_shop ? count(u"state LIKE 'idle in transaction%'"_s) > 0 : sqlite3_get_autocommit(m_handle) == 0;
}

bool ShopFile::isBeingRead() const
{
    return m_shop ? count(u"state <> 'idle'"_s) > 0 : sqlite3_next_stmt(m_handle, nullptr) != nullptr;
}

/// Of a server's clients at this shop.
int ShopFile::count(const QString &clients) const
{
    return cell(u"SELECT count(*) FROM pg_stat_activity WHERE datname = current_database() AND "
                "pid <> pg_backend_pid() AND backend_type = 'client backend' AND "_s +
                clients)
        .toInt();
}

void ShopFile::sql(const QString &statements) const
{
    if (m_shop) {
        if (!m_shop->session().run(statements))
            qFatal("%s: %s", qPrintable(statements), qPrintable(m_shop->session().message()));
        return;
    }
    char *message = nullptr;
    if (sqlite3_exec(m_handle, statements.toUtf8().constData(), nullptr, nullptr, &message) != SQLITE_OK)
        qFatal("%s: %s", qPrintable(statements), message);
}

QString ShopFile::cell(const QString &select) const
{
    return rows(select).value(0, u"(no row)"_s).section(u'|', 0, 0);
}

bool ShopFile::keepsFigure(const QString &literal) const
{
    return !m_shop || m_shop->session().run(u"SELECT CAST(%1 AS float8)"_s.arg(literal));
}

QStringList ShopFile::column(const QString &select) const
{
    return onServer(select, ServerSession::Columns::First);
}

QStringList ShopFile::onServer(const QString &select, ServerSession::Columns columns) const
{
    ServerSession &session = m_shop->session();
    const std::optional<QStringList> all = session.rows(select, columns);
    if (!all)
        qFatal("%s: %s", qPrintable(select), qPrintable(session.message()));
    return *all;
}

QStringList ShopFile::rows(const QString &select) const
{
    if (m_shop)
        return onServer(select, ServerSession::Columns::All);
    sqlite3_stmt *statement = nullptr;
    if (sqlite3_prepare_v2(m_handle, select.toUtf8().constData(), -1, &statement, nullptr) != SQLITE_OK)
        qFatal("%s: %s", qPrintable(select), sqlite3_errmsg(m_handle));
    QStringList all;
    while (sqlite3_step(statement) == SQLITE_ROW) {
        QStringList row;
        for (int column = 0; column < sqlite3_column_count(statement); ++column)
            row << columnText(statement, column);
        all << row.join(u'|');
    }
    sqlite3_finalize(statement);
    return all;
}

void ShopFile::addItem(const QString &id, const QString &name, double cost, double available, const QString &category,
                       const QString &use, double reorderLevel) const
{
    sql(u"INSERT INTO StockList VALUES (%1,%2,%3,%4,%5,%6,%7,'','','','')"_s.arg(
        quoted(id), quoted(name), quoted(category), QString::number(cost, 'f', 2), QString::number(reorderLevel),
        QString::number(available), quoted(use)));
}

void ShopFile::addUser(const QString &name, const QString &password, const QStringList &rights,
                       const QString &type) const
{
    QString flags;
    for (const QString &right : {u"Sales"_s, u"Report"_s, u"Undo"_s, u"Delete"_s, u"Settings"_s, u"Reorder"_s})
        flags += rights.contains(right) ? u",-1"_s : u",0"_s;
    sql(u"INSERT INTO Users VALUES (%1,%2,%3,-1%4)"_s.arg(quoted(name), quoted(password), quoted(type), flags));
}

QString quoted(QString text)
{
    return u'\'' + text.replace(u'\'', u"''"_s) + u'\'';
}

} // namespace harrowby::test
