// SPDX-License-Identifier: MIT
#include "app/start/command_line.h"

#include "tests/program/test_program.h"

#include <QDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace harrowby::app;

namespace {

/// Reads a line that must be accepted.
CommandLine accepted(const QStringList &arguments)
{
    const auto line = readCommandLine(arguments);
    if (!line)
        QTest::qFail(qPrintable(line.error()), __FILE__, __LINE__);
    return line.value_or(CommandLine());
}

} // namespace

class CommandLineTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingGiven();
    void switches();
    void switchesStandTogether();
    void databaseBecomesAbsolute_data();
    void databaseBecomesAbsolute();
    void customerDisplay_data();
    void customerDisplay();
    void drawer();
    void look();
    void errand();
    void refused_data();
    void refused();
    void optionsOfQtPass();
    void helpNamesEveryOption();
};

void CommandLineTest::nothingGiven()
{
    const CommandLine line = accepted({});
    QVERIFY(line.database.isEmpty() && line.platform.isEmpty());
    QVERIFY(!line.demo && !line.help && !line.version && !line.verbose);
    QVERIFY(!line.office && !line.touchKeyboard && !line.noPlugins);
    QVERIFY(!line.customerDisplay);
}

void CommandLineTest::switches()
{
    QVERIFY(accepted({u"--demo"_s}).demo);
    QVERIFY(accepted({u"--verbose"_s}).verbose);
    QVERIFY(accepted({u"--office"_s}).office);
    QVERIFY(accepted({u"--touch-keyboard"_s}).touchKeyboard);
    QVERIFY(accepted({u"--no-plugins"_s}).noPlugins);
    QVERIFY(accepted({u"--help"_s}).help);
    QVERIFY(accepted({u"-h"_s}).help);
    QVERIFY(accepted({u"--version"_s}).version);
    QVERIFY(accepted({u"-v"_s}).version);
}

void CommandLineTest::switchesStandTogether()
{
    const CommandLine office = accepted({u"--office"_s, u"--touch-keyboard"_s, u"--demo"_s});
    QVERIFY(office.office && office.touchKeyboard && office.demo && !office.noPlugins);
    const CommandLine till = accepted({u"--no-plugins"_s, u"--database=/a"_s, u"--office"_s});
    QVERIFY(till.noPlugins && till.office && !till.touchKeyboard && till.database == u"/a"_s);
}

void CommandLineTest::databaseBecomesAbsolute_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("path");
    QTest::newRow("two words") << QStringList{u"--database"_s, u"/a/b"_s} << u"/a/b"_s;
    QTest::newRow("one word") << QStringList{u"--database=/a=b"_s} << u"/a=b"_s;
    QTest::newRow("relative") << QStringList{u"--database"_s, u"x y"_s} << QDir::current().filePath(u"x y"_s);
    QTest::newRow("no file") << QStringList{u"--database"_s, u":memory:"_s} << u":memory:"_s;
    QTest::newRow("a server") << QStringList{u"--database"_s, u"postgresql://till.shop/shop"_s}
                              << u"postgresql://till.shop/shop"_s;
    QTest::newRow("a service") << QStringList{u"--database=service=shop"_s} << u"service=shop"_s;
    QTest::newRow("a service, in two words") << QStringList{u"--database"_s, u"service=shop"_s} << u"service=shop"_s;
    QTest::newRow("a file like a service")
        << QStringList{u"--database=./service=shop"_s} << QDir::current().filePath(u"service=shop"_s);
    QTest::newRow("like an option") << QStringList{u"--database"_s, u"--demo"_s}
                                    << QDir::current().filePath(u"--demo"_s);
}

void CommandLineTest::databaseBecomesAbsolute()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, path);
    const CommandLine line = accepted(arguments);
    QCOMPARE(line.database, path);
}

void CommandLineTest::customerDisplay_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("screen");
    QTest::newRow("the second one") << QStringList{u"--customer-display"_s} << u""_s;
    QTest::newRow("before another option") << QStringList{u"--customer-display"_s, u"--demo"_s} << u""_s;
    QTest::newRow("a number") << QStringList{u"--customer-display"_s, u"3"_s} << u"3"_s;
    QTest::newRow("a name") << QStringList{u"--customer-display"_s, u"HDMI-1"_s, u"--demo"_s} << u"HDMI-1"_s;
    QTest::newRow("one word") << QStringList{u"--customer-display=DP-2"_s} << u"DP-2"_s;
    QTest::newRow("the last one counts") << QStringList{u"--customer-display=2"_s, u"--customer-display"_s, u"VGA 1"_s}
                                         << u"VGA 1"_s;
}

void CommandLineTest::customerDisplay()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, screen);
    const CommandLine line = accepted(arguments);
    QVERIFY(line.customerDisplay);
    QCOMPARE(*line.customerDisplay, screen);
    QCOMPARE(line.demo, arguments.contains(u"--demo"_s));
}

void CommandLineTest::drawer()
{
    QCOMPARE(accepted({}).drawer, QString());
    QCOMPARE(accepted({u"--drawer"_s, u"Front desk"_s}).drawer, u"Front desk"_s);
    QCOMPARE(accepted({u"--drawer=2"_s, u"--demo"_s}).drawer, u"2"_s);
    QCOMPARE(accepted({u"--drawer=1"_s, u"--drawer=a=b"_s}).drawer, u"a=b"_s);
}

void CommandLineTest::look()
{
    QCOMPARE(accepted({}).look, QString());
    QCOMPARE(accepted({u"--look"_s, u"dark"_s}).look, u"dark"_s);
    QCOMPARE(accepted({u"--look=LIGHT"_s, u"--demo"_s}).look, u"light"_s);
    QCOMPARE(accepted({u"--look"_s, u"system"_s}).look, u"system"_s);
}

void CommandLineTest::errand()
{
    QVERIFY(!accepted({u"--demo"_s}).errand.isGiven());
    const CommandLine two = accepted({u"--backup"_s, u"-a b"_s, u"--database=/x"_s});
    QCOMPARE(two.errand.name, u"--backup"_s);
    QCOMPARE(two.errand.values, QStringList{u"-a b"_s});
    QCOMPARE(two.database, u"/x"_s);
    QVERIFY(two.errand.options.isEmpty());
    const CommandLine kept = accepted({u"--keep"_s, u"14"_s, u"--backup"_s, u"b"_s});
    QCOMPARE(kept.errand.options, (QMap<QString, QString>{{u"--keep"_s, u"14"_s}}));
    QCOMPARE(accepted({u"--backup=/a=b"_s}).errand.values, QStringList{u"/a=b"_s});
}

void CommandLineTest::refused_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("named");
    QTest::newRow("unknown") << QStringList{u"--demmo"_s} << u"--demmo"_s;
    QTest::newRow("a bare file") << QStringList{u"shop.sqlite"_s} << u"shop.sqlite"_s;
    QTest::newRow("a value for a switch") << QStringList{u"--demo=yes"_s} << u"--demo=yes"_s;
    QTest::newRow("a value for the office") << QStringList{u"--office=yes"_s} << u"--office=yes"_s;
    QTest::newRow("empty") << QStringList{QString()} << u"\"\""_s;
    QTest::newRow("no file") << QStringList{u"--database"_s} << u"--database"_s;
    QTest::newRow("empty file") << QStringList{u"--database="_s} << u"--database"_s;
    QTest::newRow("no drawer") << QStringList{u"--drawer"_s} << u"--drawer"_s;
    QTest::newRow("blank drawer") << QStringList{u"--drawer= "_s} << u"--drawer"_s;
    QTest::newRow("no look") << QStringList{u"--look"_s} << u"--look"_s;
    QTest::newRow("no screen") << QStringList{u"--customer-display="_s} << u"counted from 1"_s;
    QTest::newRow("an empty screen") << QStringList{u"--customer-display"_s, u" "_s} << u"counted from 1"_s;
    QTest::newRow("screen 0") << QStringList{u"--customer-display"_s, u"0"_s} << u"counted from 1"_s;
    QTest::newRow("a negative screen") << QStringList{u"--customer-display=-1"_s} << u"counted from 1"_s;
    QTest::newRow("unknown look") << QStringList{u"--look=pink"_s} << u"light, dark or system"_s;
    QTest::newRow("two files") << QStringList{u"--database=a"_s, u"--database=b"_s} << u"twice"_s;
    QTest::newRow("no folder") << QStringList{u"--backup"_s} << u"--backup needs the folder"_s;
    QTest::newRow("an empty folder") << QStringList{u"--backup="_s} << u"--backup needs the folder"_s;
    QTest::newRow("an option for a folder")
        << QStringList{u"--backup"_s, u"--demo"_s} << u"--backup needs the folder"_s;
    QTest::newRow("no place of a copy") << QStringList{u"--copy-store"_s, u"shop.sqlite"_s}
                                        << u"--copy-store needs the place of the copy"_s;
    QTest::newRow("a copy and a store of its own")
        << QStringList{u"--database=a"_s, u"--copy-store"_s, u"b"_s, u"service=c"_s} << u"names both stores itself"_s;
    QTest::newRow("two errands") << QStringList{u"--backup=a"_s, u"--backup"_s, u"b"_s} << u"one at a time"_s;
    QTest::newRow("an errand and a window") << QStringList{u"--backup=a"_s, u"--office"_s} << u"needs no window"_s;
    QTest::newRow("an option without its errand") << QStringList{u"--keep=3"_s} << u"--keep goes with --backup"_s;
    QTest::newRow("an option without its value") << QStringList{u"--backup=a"_s, u"--keep"_s} << u"--keep needs"_s;
    QTest::newRow("an option twice") << QStringList{u"--keep=1"_s, u"--backup=a"_s, u"--keep=2"_s} << u"twice"_s;
    QTest::newRow("demo and file") << QStringList{u"--demo"_s, u"--database"_s, u"a"_s} << u"--demo"_s;
}

void CommandLineTest::refused()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, named);
    const auto line = readCommandLine(arguments);
    QVERIFY(!line);
    QVERIFY2(line.error().contains(named), qPrintable(line.error()));
}

void CommandLineTest::optionsOfQtPass()
{
    const CommandLine line = accepted(
        {u"-platform"_s, u"offscreen"_s, u"--style=fusion"_s, u"-reverse"_s, u"-display"_s, u":7"_s, u"--demo"_s});
    QCOMPARE(line.platform, u"offscreen"_s);
    QCOMPARE(line.display, u":7"_s);
    QVERIFY(line.demo);
}

void CommandLineTest::helpNamesEveryOption()
{
    for (const QString &option :
         {u"--database FILE"_s, u"--database postgresql://"_s, u"service=NAME"_s, u"--demo"_s, u"--drawer NAME"_s,
          u"--look LOOK"_s, u"--office"_s, u"--touch-keyboard"_s, u"--no-plugins"_s, u"--backup FOLDER [--keep N]"_s,
          u"--copy-store FROM TO"_s, u"--restore FILE"_s, u"--customer-display [SCREEN]"_s, u"--verbose"_s, u"--help"_s,
          u"--version"_s})
        QVERIFY(helpText().contains(option));
    QCOMPARE(versionText(), u"harrowby "_s + QLatin1StringView(HARROWBY_VERSION) + u'\n');
}

HARROWBY_CORE_TEST(app_command_line_test, CommandLineTest)
#include "command_line_test.moc"
