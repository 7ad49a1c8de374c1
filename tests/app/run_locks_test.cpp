// SPDX-License-Identifier: MIT
#include "app/cash/run_locks.h"
#include "tests/program/test_program.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <initializer_list>
#include <memory>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;

class RunLocksTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void locksTellWhoLives();
};

void RunLocksTest::locksTellWhoLives()
{
    using Holder = RunLocks::Holder;
    const QTemporaryDir folder;
    const QString store = folder.filePath(u"shop.sqlite"_s);
    QVERIFY(QFile(store).open(QIODevice::WriteOnly));
    QVERIFY(QFile::setPermissions(store, QFile::ReadOwner | QFile::WriteOwner));
    const QString link = folder.filePath(u"link.sqlite"_s);
    QVERIFY(QFile::link(store, link));
    const FileRunLocks looking(link);
    QCOMPARE(looking.path(), store + u"-runs"_s);
    QCOMPARE(looking.holderOf(5), Holder::Nobody);
    QVERIFY(!QFile::exists(looking.path())); // a look makes nothing
    auto one = std::make_unique<FileRunLocks>(store);
    QVERIFY(one->hold(5));
    QCOMPARE(QFile::permissions(one->path()) & ~QFile::Permissions(QFile::ReadUser | QFile::WriteUser),
             QFile::ReadOwner | QFile::WriteOwner);
    QCOMPARE(QFileInfo(one->path()).size(), 0);
    auto other = std::make_unique<FileRunLocks>(link);
    QVERIFY(!other->hold(5));
    QVERIFY(other->hold(6));
    for (const RunLocks *locks : std::initializer_list<const RunLocks *>{&looking, one.get(), other.get()}) {
        QCOMPARE(locks->holderOf(5), Holder::Somebody);
        QCOMPARE(locks->holderOf(6), Holder::Somebody);
        QCOMPARE(locks->holderOf(4), Holder::Nobody);
    }
    one.reset();
    QCOMPARE(looking.holderOf(5), Holder::Nobody);
    QCOMPARE(looking.holderOf(6), Holder::Somebody);
    other.reset();
    QVERIFY(!QFile::exists(looking.path())); // the last one has tidied up
    one = std::make_unique<FileRunLocks>(store);
    QVERIFY(one->hold(7));
    QCOMPARE(looking.holderOf(7), Holder::Somebody); // in another file now
    QCOMPARE(looking.holderOf(6), Holder::Nobody);
}

HARROWBY_CORE_TEST(app_run_locks_test, RunLocksTest)
#include "run_locks_test.moc"
