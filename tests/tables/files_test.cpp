// SPDX-License-Identifier: MIT
#include "tables/files.h"
#include "tests/support/failing_disk.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

#include <cerrno>

using namespace harrowby::tables;
using namespace Qt::StringLiterals;
namespace FailingDisk = harrowby::test::FailingDisk;

namespace {

QByteArray contentsOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(none)");
}

} // namespace

class FilesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writesAWholeFile()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(u"list.csv"_s);
        QVERIFY(saveFile(path, "a long one"));
        QVERIFY(saveFile(path, "short"));
        QCOMPARE(contentsOf(path), QByteArray("short"));
        QCOMPARE(QDir(folder.path()).entryList(QDir::Files).size(), 1);
    }

    void saysWhyItFailed_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("no such folder") << u"none/list.csv"_s;
        QTest::newRow("a folder of that name") << u"."_s;
    }

    void saysWhyItFailed()
    {
        QFETCH(const QString, name);
        const QTemporaryDir folder;
        QVERIFY(!saveFile(folder.filePath(name), "x"));
        QVERIFY(QDir(folder.path()).isEmpty());
    }

    void whateverFailsIsTold_data()
    {
        QTest::addColumn<int>("size");
        QTest::newRow("a short list") << 100;
        QTest::newRow("a long one") << 1'000'000;
    }

    /// Every operation of the disk fails in turn: the file is complete, or unchanged and the failure returned.
    void whateverFailsIsTold()
    {
        QFETCH(const int, size);
        const QTemporaryDir folder;
        const QString path = folder.filePath(u"list.csv"_s);
        const QByteArray bytes(size, 'x');
        FailingDisk::mount(folder.path());
        int operation = 1;
        for (int failures = 1; failures > 0 && operation < 100; ++operation) {
            QVERIFY(saveFile(path, "older"));
            FailingDisk::failAt(operation, FailingDisk::Mode::Once, ENOSPC);
            const bool saved = saveFile(path, bytes).has_value();
            failures = FailingDisk::failures();
            const QByteArray fault = FailingDisk::firstFailure().toUtf8();
            FailingDisk::failAt(0, FailingDisk::Mode::Once, 0);
            QVERIFY2(contentsOf(path) == (saved ? bytes : "older"), fault.constData());
        }
        QVERIFY(operation > 4 && operation < 100);
    }

    void aPipeIsLeftAlone()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(u"pipe"_s);
        QCOMPARE(mkfifo(QFile::encodeName(path).constData(), 0600), 0);
        QVERIFY(!saveFile(path, "x"));
        QVERIFY(!QFileInfo(path).isFile());
    }

    void fileNames_data()
    {
        QTest::addColumn<QString>("words");
        QTest::addColumn<QString>("name");
        QTest::newRow("plain") << u"Sales 2026-11-01 by day"_s << u"Sales 2026-11-01 by day"_s;
        QTest::newRow("refused") << u"a/b\\c:d*e\n"_s << u"a-b-c-d-e-"_s;
    }

    void fileNames()
    {
        QFETCH(const QString, words);
        QTEST(fileNameFor(words), "name");
    }
};

QTEST_GUILESS_MAIN(FilesTest)
#include "files_test.moc"
