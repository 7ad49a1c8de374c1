// SPDX-License-Identifier: MIT
#include "sheet/files.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

using namespace harrowby::sheet;
using namespace Qt::StringLiterals;

class FilesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writesAWholeFile()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(u"list.csv"_s);
        QCOMPARE(saveFile(path, "a long one"), QString());
        QCOMPARE(saveFile(path, "short"), QString());
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("short"));
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
        QVERIFY(!saveFile(folder.filePath(name), "x").isEmpty());
        QVERIFY(QDir(folder.path()).isEmpty());
    }

    void aPipeIsLeftAlone()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(u"pipe"_s);
        QCOMPARE(mkfifo(QFile::encodeName(path).constData(), 0600), 0);
        QVERIFY(!saveFile(path, "x").isEmpty());
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
