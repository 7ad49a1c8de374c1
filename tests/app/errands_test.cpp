// SPDX-License-Identifier: MIT
#include "app/shop/busy_wait.h"
#include "app/shop/store_judge.h"
#include "tests/app/store_files.h"
#include "tests/program/test_program.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace harrowby::app;
using namespace harrowby::app::test;

namespace {

struct Outcome
{
    int code = -1;
    QString out;
    QString errors;
};

} // namespace

/// What the real program does without a display.
class ErrandsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void backupIsMade();
    void refusedStoreIsTold_data();
    void refusedStoreIsTold();
    void backupThatFailsIsTold();

private:
    [[nodiscard]] QString path(const QString &name) const { return m_home->filePath(name); }
    [[nodiscard]] QStringList away() const
    {
        return QDir(path(u"away"_s)).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }
    [[nodiscard]] Outcome run(const QStringList &arguments) const;

    std::unique_ptr<QTemporaryDir> m_home;
};

void ErrandsTest::init()
{
    m_home = std::make_unique<QTemporaryDir>();
    makeStore(path(u"shop.sqlite"_s));
    QVERIFY(QDir(m_home->path()).mkdir(u"away"_s));
}

Outcome ErrandsTest::run(const QStringList &arguments) const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const QString &name : {u"DISPLAY"_s, u"WAYLAND_DISPLAY"_s, u"QT_QPA_PLATFORM"_s, u"XDG_SESSION_TYPE"_s})
        environment.remove(name);
    environment.insert(u"HOME"_s, m_home->path());
    environment.insert(u"XDG_DATA_HOME"_s, path(u"data"_s));
    environment.insert(u"XDG_CONFIG_HOME"_s, path(u"config"_s));
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(m_home->path());
    process.start(QStringLiteral(HARROWBY_PROGRAM), arguments);
    if (!process.waitForFinished(60000))
        return {};
    const int code = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    return {code, QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

void ErrandsTest::backupIsMade()
{
    const Outcome outcome = run({u"--backup"_s, u"away"_s, u"--database"_s, u"shop.sqlite"_s});
    QCOMPARE(outcome.errors, QString());
    QCOMPARE(outcome.code, 0);
    QCOMPARE(away().size(), 1);
    const QString made = path(u"away/"_s + away().constFirst());
    static const QRegularExpression form(u"^shop-\\d{4}-\\d\\d-\\d\\d-\\d{6}-[0-9a-f]{8}\\.db$"_s);
    QVERIFY2(form.match(away().constFirst()).hasMatch(), qPrintable(made));
    QVERIFY2(outcome.out.contains(made), qPrintable(outcome.out));
    BusyWait wait;
    QVERIFY(!judgeStore(made, wait));
    QCOMPARE(column(made, u"SELECT StockName FROM StockInventory"_s),
             column(path(u"shop.sqlite"_s), u"SELECT StockName FROM StockInventory"_s));
}

void ErrandsTest::refusedStoreIsTold_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("said");
    QTest::newRow("missing") << u"none.sqlite"_s << u"no store file"_s;
    QTest::newRow("no store") << u"text"_s << u"not an SQLite database"_s;
    QTest::newRow("in memory") << u":memory:"_s << u"no store file"_s;
}

void ErrandsTest::refusedStoreIsTold()
{
    QFETCH(QString, name);
    QFETCH(QString, said);
    QFile text(path(u"text"_s));
    QVERIFY(text.open(QIODevice::WriteOnly) && text.write(QByteArray(2000, 't')) == 2000 && text.flush());
    const Outcome outcome = run({u"--database"_s, name, u"--backup"_s, path(u"away"_s)});
    QCOMPARE(outcome.code, 4);
    QVERIFY2(outcome.errors.contains(name) && outcome.errors.contains(said), qPrintable(outcome.errors));
    QVERIFY(away().isEmpty());
    QVERIFY(!QFile::exists(path(u"none.sqlite"_s)));
}

void ErrandsTest::backupThatFailsIsTold()
{
    const QStringList backup = {u"--database"_s, path(u"shop.sqlite"_s), u"--backup"_s, path(u"missing/folder"_s)};
    const Outcome outcome = run(backup);
    QCOMPARE(outcome.code, 6);
    QVERIFY2(outcome.errors.contains(path(u"missing/folder"_s)), qPrintable(outcome.errors));
    QVERIFY(!QFile::exists(path(u"missing"_s)));
}

HARROWBY_CORE_TEST(app_errands_test, ErrandsTest)
#include "errands_test.moc"
