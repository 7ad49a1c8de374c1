// SPDX-License-Identifier: MIT
#include "tests/app/store_files.h"
#include "tests/program/test_program.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

#include <linux/capability.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace harrowby::app::test;

namespace {

struct Outcome
{
    int code = -1;
    QString out;
    QString errors;
};

} // namespace

/// What the real program answers in a terminal.
class ProgramTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_home = std::make_unique<QTemporaryDir>(); }

    void helpAndVersionNeedNoDisplay_data();
    void helpAndVersionNeedNoDisplay();
    void wrongUsage_data();
    void wrongUsage();
    void noDisplayIsFoundOutFirst_data();
    void noDisplayIsFoundOutFirst();
    void refusedFileIsNamed_data();
    void refusedFileIsNamed();
    void nameThatIsNoStoreIsRefused_data();
    void nameThatIsNoStoreIsRefused();
    void lookIsKept();
    void newStoreNeedsAScreen();
    void readOnlyStore();

private:
    [[nodiscard]] QString path(const QString &name) const { return m_home->filePath(name); }
    Outcome run(const QStringList &arguments, const QMap<QString, QString> &variables = {},
                bool boundByPermissions = false, const QString &program = QStringLiteral(HARROWBY_PROGRAM));

    std::unique_ptr<QTemporaryDir> m_home;
};

Outcome ProgramTest::run(const QStringList &arguments, const QMap<QString, QString> &variables, bool boundByPermissions,
                         const QString &program)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const QString &name : {u"DISPLAY"_s, u"WAYLAND_DISPLAY"_s, u"QT_QPA_PLATFORM"_s, u"XDG_SESSION_TYPE"_s})
        environment.remove(name);
    environment.insert(u"HOME"_s, m_home->path());
    environment.insert(u"XDG_DATA_HOME"_s, path(u"data"_s));
    environment.insert(u"XDG_CONFIG_HOME"_s, path(u"config"_s));
    for (auto it = variables.cbegin(); it != variables.cend(); ++it)
        environment.insert(it.key(), it.value());
    QProcess process;
    process.setProcessEnvironment(environment);
    if (boundByPermissions) {
        process.setChildProcessModifier([] {
            // Root without this right is bound by a file's permissions, yet still reaches the program wherever it lies.
            if (::prctl(PR_CAPBSET_DROP, CAP_DAC_OVERRIDE, 0, 0, 0) != 0)
                ::_exit(99);
        });
    }
    process.setWorkingDirectory(m_home->path());
    process.start(program, arguments);
    if (!process.waitForFinished(60000))
        return {};
    const int code = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    return {code, QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

void ProgramTest::helpAndVersionNeedNoDisplay_data()
{
    QTest::addColumn<QString>("option");
    QTest::addColumn<QString>("said");
    QTest::newRow("--help") << u"--help"_s << u"Usage: harrowby"_s;
    QTest::newRow("-h") << u"-h"_s << u"--database FILE"_s;
    QTest::newRow("--version") << u"--version"_s << u"harrowby 0."_s;
    QTest::newRow("-v") << u"-v"_s << u"harrowby 0."_s;
}

void ProgramTest::helpAndVersionNeedNoDisplay()
{
    QFETCH(QString, option);
    QFETCH(QString, said);
    const Outcome outcome = run({option});
    QCOMPARE(outcome.code, 0);
    QVERIFY2(outcome.out.contains(said), qPrintable(outcome.out));
    QCOMPARE(outcome.errors, QString());
    QCOMPARE(QDir(m_home->path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList());
}

void ProgramTest::wrongUsage_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("unknown option") << QStringList{u"--fast"_s};
    QTest::newRow("demo with a file") << QStringList{u"--demo"_s, u"--database"_s, u"a.sqlite"_s};
}

void ProgramTest::wrongUsage()
{
    QFETCH(QStringList, arguments);
    const Outcome outcome = run(arguments);
    QCOMPARE(outcome.code, 2);
    QVERIFY2(outcome.errors.contains(arguments.constFirst()), qPrintable(outcome.errors));
    QVERIFY(outcome.errors.contains(u"--help"_s));
}

void ProgramTest::noDisplayIsFoundOutFirst_data()
{
    using Variables = QMap<QString, QString>;
    QTest::addColumn<Variables>("variables");
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("said");
    QTest::newRow("none") << Variables() << QStringList() << u"There is no display"_s;
    QTest::newRow("dead display") << Variables{{u"DISPLAY"_s, u":4711"_s}} << QStringList() << u"\":4711\""_s;
    QTest::newRow("nonsense display") << Variables{{u"DISPLAY"_s, u"nonsense"_s}} << QStringList() << u"nonsense"_s;
    QTest::newRow("dead display as an option")
        << Variables() << QStringList{u"-display"_s, u":4712"_s} << u"\":4712\""_s;
    QTest::newRow("dead Wayland") << Variables{{u"WAYLAND_DISPLAY"_s, u"/nowhere/wayland"_s}} << QStringList()
                                  << u"/nowhere/wayland"_s;
    QTest::newRow("asked for xcb") << Variables{{u"QT_QPA_PLATFORM"_s, u"xcb"_s}} << QStringList()
                                   << u"There is no display"_s;
    QTest::newRow("asked for nonsense") << Variables() << QStringList{u"-platform"_s, u"nonsense"_s} << u"nonsense"_s;
}

void ProgramTest::noDisplayIsFoundOutFirst()
{
    using Variables = QMap<QString, QString>;
    QFETCH(Variables, variables);
    QFETCH(QStringList, arguments);
    QFETCH(QString, said);
    const Outcome outcome = run(arguments, variables);
    QCOMPARE(outcome.code, 3);
    QVERIFY2(outcome.errors.contains(said), qPrintable(outcome.errors));
}

void ProgramTest::refusedFileIsNamed_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("said");
    QTest::newRow("folder") << u"folder"_s << u"is a folder"_s;
    QTest::newRow("text") << u"text"_s << u"not an SQLite database"_s;
    QTest::newRow("empty") << u"empty"_s << u"is empty"_s;
    QTest::newRow("lacks a table") << u"lacking"_s << u"the table StoreSettings"_s;
    QTest::newRow("missing folder") << u"missing/store.sqlite"_s << u"no folder"_s;
}

void ProgramTest::refusedFileIsNamed()
{
    QFETCH(QString, name);
    QFETCH(QString, said);
    QVERIFY(QDir(m_home->path()).mkdir(u"folder"_s));
    QFile text(path(u"text"_s));
    QVERIFY(text.open(QIODevice::WriteOnly) && text.write(QByteArray(2000, 't')) == 2000 && text.flush());
    QFile empty(path(u"empty"_s));
    QVERIFY(empty.open(QIODevice::WriteOnly));
    makeStore(path(u"lacking"_s));
    runAll(path(u"lacking"_s), {u"DROP TABLE StoreSettings"_s});

    const Bytes before = bytesOf(path(name));
    const Outcome outcome = run({u"-platform"_s, u"offscreen"_s, u"--database"_s, path(name)});
    QCOMPARE(outcome.code, 4);
    QVERIFY2(outcome.errors.contains(path(name)) && outcome.errors.contains(said), qPrintable(outcome.errors));
    QVERIFY(bytesOf(path(name)) == before);
}

void ProgramTest::nameThatIsNoStoreIsRefused_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QString>("said");
    QTest::newRow("memory") << QByteArray(":memory:") << u"\":memory:\" is no file"_s;
    QTest::newRow("not UTF-8") << QByteArray("st\xf6re.sqlite") << u"not valid UTF-8"_s;
}

void ProgramTest::nameThatIsNoStoreIsRefused()
{
    QFETCH(QByteArray, name);
    QFETCH(QString, said);
    // Through a shell, as Qt would make valid text of the name. The file is there, so nothing else is wrong with it.
    makeStore(path(u"shop.sqlite"_s));
    QCOMPARE(::chdir(QFile::encodeName(m_home->path()).constData()), 0);
    QCOMPARE(::rename("shop.sqlite", name.constData()), 0);
    const QStringList before = QDir(m_home->path()).entryList(QDir::Files | QDir::Hidden);
    QFile script(path(u"script"_s));
    QVERIFY(script.open(QIODevice::WriteOnly));
    script.write("exec \"$1\" -platform offscreen --database '" + name + "'\n");
    script.close();
    const Outcome outcome = run({path(u"script"_s), QStringLiteral(HARROWBY_PROGRAM)}, {}, false, u"sh"_s);
    QCOMPARE(outcome.code, 4);
    QVERIFY2(outcome.errors.contains(said), qPrintable(outcome.errors));
    QVERIFY(script.remove());
    QCOMPARE(QDir(m_home->path()).entryList(QDir::Files | QDir::Hidden), before);
}

void ProgramTest::lookIsKept()
{
    const QStringList start = {u"-platform"_s, u"offscreen"_s, u"--database"_s, path(u"missing/store"_s)};
    const QString settings = path(u"config/Harrowby/Harrowby.ini"_s);
    const auto kept = [&] { return QSettings(settings, QSettings::IniFormat).value(u"Program/Look"_s).toString(); };
    QCOMPARE(run(start).code, 4);
    QVERIFY(!QFile::exists(settings));
    QCOMPARE(run(start + QStringList{u"--look"_s, u"dark"_s}).code, 4);
    QCOMPARE(kept(), u"dark"_s);
    QCOMPARE(run(start).code, 4);
    QCOMPARE(kept(), u"dark"_s);
    QCOMPARE(run(start + QStringList{u"--look=system"_s}).code, 4);
    QCOMPARE(kept(), u"system"_s);
}

void ProgramTest::newStoreNeedsAScreen()
{
    // What an earlier start has left behind when it was killed goes with this one.
    QVERIFY(QDir(m_home->path()).mkpath(u"data/Harrowby/.harrowby-new-AbCdEf"_s));
    const Outcome outcome = run({u"-platform"_s, u"offscreen"_s});
    QVERIFY(!QFile::exists(path(u"data/Harrowby/.harrowby-new-AbCdEf"_s)));
    QCOMPARE(outcome.code, 4);
    QVERIFY2(outcome.errors.contains(u"store.sqlite"_s), qPrintable(outcome.errors));
    QVERIFY(!QFile::exists(path(u"data/Harrowby/store.sqlite"_s)));
}

void ProgramTest::readOnlyStore()
{
    QCOMPARE(::chmod(QFile::encodeName(m_home->path()).constData(), 0777), 0);
    makeStore(path(u"shop.sqlite"_s));
    QVERIFY(QFile::setPermissions(path(u"shop.sqlite"_s), QFile::Permissions(0x4444)));
    const QStringList arguments = {u"-platform"_s, u"offscreen"_s, u"--database"_s, path(u"shop.sqlite"_s)};
    const Outcome outcome = run(arguments, {}, ::geteuid() == 0);
    QCOMPARE(outcome.code, 4);
    QVERIFY2(outcome.errors.contains(path(u"shop.sqlite"_s)) && outcome.errors.contains(u"read-only"_s),
             qPrintable(outcome.errors));
}

HARROWBY_CORE_TEST(app_program_test, ProgramTest)
#include "program_test.moc"
