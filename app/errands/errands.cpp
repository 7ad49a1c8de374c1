// SPDX-License-Identifier: MIT
#include "app/errands/errands.h"

#include "app/errands/backup_errand.h"
#include "app/errands/copy_errand.h"
#include "app/errands/errand.h"
#include "app/errands/export_errand.h"
#include "app/errands/import_errand.h"
#include "app/errands/restore_errand.h"
#include "app/records/sqlite_records.h"
#include "app/records/store_records.h"
#include "app/shop/busy_wait.h"
#include "app/shop/errand_names.h"
#include "app/shop/file_facts.h"
#include "app/shop/store_guard.h"
#include "app/shop/store_open.h"
#include "app/shop/store_paths.h"
#include "app/shop/workshop.h"
#include "app/start/command_line.h"
#include "basic/store_address.h"

#include <QFileInfo>

#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

/// Each errand by its option.
Result<Errand, QString> readErrand(const ErrandLine &line)
{
    const std::pair<QString, Result<Errand, QString> (*)(const ErrandLine &)> readers[] = {
        {errand::backup, readBackupErrand},
        {errand::exportList, readExportErrand},
        {errand::importList, readImportErrand},
    };
    for (const auto &[name, read] : readers) {
        if (line.name == name)
            return read(line);
    }
    return Unexpected(u"%1 cannot be done."_s.arg(line.name));
}

QString storeOf(const CommandLine &line)
{
    if (line.demo)
        return demoStorePath();
    return line.database.isEmpty() ? defaultStorePath() : line.database;
}

ExitCode onOpenFile(const QString &path, const Errand &errand)
{
    BusyWait wait;
    auto database = openStore(path, wait);
    if (!database) {
        tellOfErrand(database.error().text);
        return ExitCode::StoreRefused;
    }
    StoreGuard guard(*std::move(database), path, wait);
    SqliteRecords records(guard.database());
    wait.refill();
    return errand({path, records, &guard, [&wait] { wait.refill(); }});
}

ExitCode onServer(const QString &target, const Errand &errand)
{
    const auto store = openStoreRecords(target, Access::Write);
    if (!store) {
        tellOfErrand(store.error());
        return ExitCode::StoreRefused;
    }
    return errand({target, (*store)->records(), nullptr, [] {}}); // each of its statements has its full time
}

/// The store is open as long as the errand runs.
ExitCode onOpenStore(const QString &store, const Errand &errand)
{
    return isServer(store) ? onServer(store, errand) : onOpenFile(store, errand);
}

/// A restore has a server's store to itself, so this connection ends before.
ExitCode restoreInto(const QString &store, const QString &backup)
{
    if (isServer(store)) {
        if (const auto there = openStoreRecords(store, Access::Read); !there) {
            tellOfErrand(there.error());
            return ExitCode::StoreRefused;
        }
    }
    return restoreWithoutWindow(store, backup);
}

/// A server's is looked for when it is opened.
template <typename Work>
ExitCode onExistingStore(const CommandLine &line, Work work)
{
    const QString store = storeOf(line);
    if (isServer(store))
        return work(store);
    if (!nameIsTaken(store)) {
        tellOfErrand(u"There is no store file \"%1\"."_s.arg(store));
        return ExitCode::StoreRefused;
    }
    removeLeftWorkshops(QFileInfo(store).absolutePath());
    return work(store);
}

} // namespace

ExitCode runErrand(const CommandLine &line)
{
    if (line.errand.name == errand::copyStore)
        return copyStoreWithoutWindow(line.errand);
    if (line.errand.name == errand::restore)
        return onExistingStore(
            line, [&](const QString &store) { return restoreInto(store, line.errand.values.constFirst()); });
    const auto errand = readErrand(line.errand);
    if (!errand) {
        tellOfErrand(u"%1\nTry \"harrowby --help\"."_s.arg(errand.error()));
        return ExitCode::WrongUsage;
    }
    return onExistingStore(line, [&](const QString &path) { return onOpenStore(path, *errand); });
}

} // namespace harrowby::app
