// SPDX-License-Identifier: MIT
#include "tests/app/restore_desk.h"

#include "app/records/deeds.h"
#include "tests/app/quick_folder.h"
#include "tests/app/store_files.h"

#include <QDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace harrowby::app::test {

void RestoreDesk::init()
{
    m_folder = std::make_unique<QTemporaryDir>(quickFolder() + u"/restore-XXXXXX"_s); // each step is synced
    QVERIFY(m_folder->isValid());
    QVERIFY(QDir(m_folder->path()).mkdir(u"kept"_s));
    makeBigStore(store());
    makeStore(backup());
    runAll(backup(), {u"UPDATE StockList SET StockName = 'OLD TEA'"_s, u"PRAGMA journal_mode = DELETE"_s});
}

RestoreOrder RestoreDesk::order() const
{
    return {backup(), store(), u"ANNA"_s, officePlace, path(u"kept"_s)};
}

void RestoreDesk::verifyNoLeftovers() const
{
    for (const QString &folder : {m_folder->path(), path(u"kept"_s)})
        QCOMPARE(QDir(folder).entryList({u".harrowby*"_s}, QDir::AllEntries | QDir::Hidden), QStringList());
}

} // namespace harrowby::app::test
