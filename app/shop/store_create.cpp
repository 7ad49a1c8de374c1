// SPDX-License-Identifier: MIT
#include "app/shop/store_create.h"

#include "app/shop/file_facts.h"
#include "app/shop/file_naming.h"
#include "app/shop/password_rules.h"
#include "app/shop/schema.h"
#include "app/shop/store_judge.h"
#include "app/shop/workshop.h"
#include "basic/administrator.h"
#include "basic/private_files.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

using Error = std::optional<SqlError>;
using Problem = std::optional<StoreProblem>;

Error fillInOneGo(sqlite3 *database, const StoreFiller &fill)
{
    if (auto error = runSql(database, u"BEGIN"_s))
        return error;
    if (auto error = createTables(database))
        return error;
    if (auto error = fill(database))
        return error;
    return runSql(database, u"COMMIT"_s);
}

Error build(sqlite3 *database, const StoreFiller &fill)
{
    if (auto error = makeStoreIn(database, fill))
        return error;
    return runSql(database, u"PRAGMA journal_mode = WAL"_s);
}

Problem buildFile(const QString &file, const QString &path, const StoreFiller &fill)
{
    const auto database = openDatabase(file, OpenMode::Create);
    const auto error = database ? build(database->get(), fill) : database.error();
    return error ? std::optional(engineProblem(*error, path)) : std::nullopt;
}

} // namespace

std::optional<StoreProblem> createStore(const QString &path, bool makeFolder, const StoreFiller &fill)
{
    if (auto problem = judgeNewStore(path, makeFolder))
        return problem;
    const QString folder = QFileInfo(path).absolutePath();
    if (makeFolder && !makePrivateFolder(folder))
        return storeProblem(ProblemKind::FolderLocked, path);
    const Workshop workshop(folder, Workshop::Purpose::NewStore);
    if (!workshop.isValid())
        return storeProblem(ProblemKind::Other, path, workshop.errorString());

    const QString file = workshop.filePath(u"store.sqlite"_s);
    if (auto problem = buildFile(file, path, fill))
        return problem;
    const auto named = nameNewFile(file, path);
    if (!named && named.error() != std::errc::file_exists)
        return storeProblem(ProblemKind::Other, path, QString::fromLocal8Bit(named.error().message()));
    syncFolder(folder);
    return {};
}

std::optional<SqlError> makeStoreIn(sqlite3 *database, const StoreFiller &fill)
{
    if (auto error = runSql(database, u"PRAGMA application_id = %1"_s.arg(storeApplicationId)))
        return error;
    if (auto error = runSql(database, u"PRAGMA user_version = %1"_s.arg(storeSchemaVersion)))
        return error;
    if (auto error = fillInOneGo(database, fill))
        return error;
    if (const auto indexes = createMissingIndexes(database); !indexes)
        return indexes.error();
    return {};
}

std::optional<SqlError> addAdministrator(sqlite3 *database, const QString &password)
{
    return runSql(database,
                  u"INSERT INTO Users (Username, Password, Type, InventoryUse, InventorySales, InventoryReport, "
                  "InventoryUndo, InventoryDelete, InventorySettings, InventoryReorder) "
                  "VALUES (?1, ?2, 'ADMINISTRATOR', -1, -1, -1, -1, -1, -1, -1)"_s,
                  {QString(administratorName), storedPassword(password)});
}

} // namespace harrowby::app
