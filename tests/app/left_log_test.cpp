// SPDX-License-Identifier: MIT
#include "app/shop/left_log.h"
#include "tests/program/test_program.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace harrowby::app;

class LeftLogTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void logIsPutAsideAndItsIndexRemoved();
    void nothingIsReplaced();
    void logOfAnotherIsLeftAlone();
    void emptyLogIsRemoved();
    void logWithContentStays();

private:
    [[nodiscard]] QString log() const { return m_folder->filePath(u"shop.sqlite-wal"_s); }
    [[nodiscard]] QString index() const { return m_folder->filePath(u"shop.sqlite-shm"_s); }
    [[nodiscard]] QStringList names() const { return QDir(m_folder->path()).entryList(QDir::Files); }
    static void write(const QString &path, const QByteArray &bytes);
    static QByteArray contentOf(const QString &path);

    std::unique_ptr<QTemporaryDir> m_folder;
    LogFiles m_files;
};

void LeftLogTest::write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), bytes.size());
}

QByteArray LeftLogTest::contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void LeftLogTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    write(log(), "saved last");
    write(index(), "index");
    const QByteArray logPath = QFile::encodeName(log());
    const QByteArray indexPath = QFile::encodeName(index());
    m_files = {logPath, indexPath, factsOf(logPath).value_or(FileFacts()).id,
               factsOf(indexPath).value_or(FileFacts()).id};
}

void LeftLogTest::logIsPutAsideAndItsIndexRemoved()
{
    const QString name = putLogAside(m_files);
    QVERIFY(isPutAside(name) && name.startsWith(log()));
    QCOMPARE(names(), QStringList{QFileInfo(name).fileName()});
    QCOMPARE(contentOf(name), QByteArray("saved last"));
    QCOMPARE(putLogAside(m_files), QString());
}

/// Two programs may put a log of one name aside in the same second.
void LeftLogTest::nothingIsReplaced()
{
    constexpr int seconds = 60;
    const QDateTime now = QDateTime::currentDateTime();
    for (int i = 0; i < seconds; ++i)
        write(log() + u"-aside-"_s + now.addSecs(i).toString(u"yyyyMMdd-HHmmss"_s), "of another");
    const QString name = putLogAside(m_files);
    QVERIFY2(name.endsWith(u"-2"_s), qPrintable(name));
    QCOMPARE(contentOf(name), QByteArray("saved last"));
    QCOMPARE(contentOf(name.chopped(2)), QByteArray("of another"));
    QCOMPARE(names().size(), seconds + 1);
}

void LeftLogTest::logOfAnotherIsLeftAlone()
{
    const QString moved = m_folder->filePath(u"moved"_s); // keeps its inode from being used again
    QVERIFY(QFile::rename(log(), moved));
    write(log(), "of another");
    QCOMPARE(putLogAside(m_files), QString());
    removeLeftLog(m_files);
    QCOMPARE(contentOf(log()), QByteArray("of another"));
    QVERIFY(QFile::exists(index()));
}

void LeftLogTest::emptyLogIsRemoved()
{
    QVERIFY(QFile::resize(log(), 0));
    removeLeftLog(m_files);
    QCOMPARE(names(), QStringList());
}

void LeftLogTest::logWithContentStays()
{
    removeLeftLog(m_files);
    QCOMPARE(names(), (QStringList{u"shop.sqlite-shm"_s, u"shop.sqlite-wal"_s}));
}

HARROWBY_CORE_TEST(app_left_log_test, LeftLogTest)
#include "left_log_test.moc"
