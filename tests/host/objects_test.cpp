// SPDX-License-Identifier: MIT
#include "tests/program/test_program.h"
#include <harrowby/file_failure.h>
#include <harrowby/init.h>
#include <harrowby/objects.h>
#include <harrowby/saved_settings.h>
#include <harrowby/sqlite_connection.h>

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QPointer>
#include <QStandardPaths>
#include <QTest>

#include <sqlite3.h>

using namespace Qt::StringLiterals;
using namespace harrowby;

/// What a host finds beside LoadInventory: classes to supply, folders of plugins, saved settings.
class ObjectsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void needsNoApplication();
    void aSuppliedWindowIsShown();
    void settingsAreTheComponents();
    void placesOfSettings();
    void aFileThatCannotBeWrittenIsTold();
};

namespace {

/// Records how it is shown.
class ListWindow : public QObject
{
    Q_OBJECT

public:
    inline static int shown = 0;
    inline static QPointer<QWidget> owner;

public Q_SLOTS:
    void Show(int modal, QWidget *over)
    {
        shown += modal;
        owner = over;
    }
};

QWidget *salesWindow()
{
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget *window : windows) {
        if (window->windowTitle() == u"Sales Inventory"_s)
            return window;
    }
    return nullptr;
}

} // namespace

namespace {

/// What a host got before it made its QApplication.
struct Early
{
    bool isSaved = false;
    QString saved;
    DbValue answer;
    QStringList failures;
};
Early early;

Early callEarly()
{
    Early result;
    registerClass(ReorderListClassId, {});
    setPluginFolders({});
    setFileFailureHandler({});
    result.isSaved = saveSetting(u"Early"_s, u"Key"_s, u"value"_s);
    result.saved = savedSetting(u"early"_s, u"key"_s);
    sqlite3 *database = nullptr;
    sqlite3_open(":memory:", &database);
    {
        SqliteConnection connection(database);
        connection.setFailureHandler([&](const DbFailure &failure) { result.failures << failure.statement; });
        const auto rows = connection.query(u"SELECT 42"_s);
        if (rows && rows->next() == DbCursor::Step::Row)
            result.answer = rows->value(0);
        static_cast<void>(connection.Execute(u"DELETE FROM Missing"_s));
    }
    sqlite3_close(database);
    return result;
}

} // namespace

void ObjectsTest::needsNoApplication()
{
    QVERIFY(early.isSaved);
    QCOMPARE(early.saved, u"value"_s);
    QVERIFY(early.answer == DbValue(std::int64_t{42}));
    QCOMPARE(early.failures, QStringList{u"DELETE FROM Missing"_s});
}

void ObjectsTest::aSuppliedWindowIsShown()
{
    setPluginFolders({});
    registerClass(u"harrowby.reorderlist"_s, [] { return std::make_unique<ListWindow>(); });
    sqlite3 *database = nullptr;
    sqlite3_open(":memory:", &database);
    sqlite3_exec(database,
                 "CREATE TABLE StockList (StockReorderLevel, StockAvailable, StockUse);"
                 "INSERT INTO StockList VALUES (5, 1, 'Enabled')",
                 nullptr, nullptr, nullptr);
    Init().LoadInventory(std::make_shared<SqliteConnection>(database), {});
    auto *link = salesWindow()->findChild<QLabel *>(u"Label6_9"_s);
    QVERIFY(link != nullptr);
    QCOMPARE(link->text(), u"  1"_s);
    QTest::mouseClick(link, Qt::LeftButton);
    QCOMPARE(ListWindow::shown, 1);
    QCOMPARE(ListWindow::owner.data(), salesWindow());
    registerClass(u"Harrowby.ReorderList"_s, {}); // taken away again
    QTest::mouseClick(link, Qt::LeftButton);
    QCOMPARE(ListWindow::shown, 1);
    Init().LoadInventory(nullptr, {});
    delete salesWindow();
    sqlite3_close(database);
}

void ObjectsTest::settingsAreTheComponents()
{
    const QString config = QStandardPaths::writableLocation(QStandardPaths::ConfigLocation);
    QFile::remove(config + u"/Harrowby/Harrowby.ini"_s);
    QCOMPARE(savedSetting(u"Option"_s, u"EmailReport"_s, u"1"_s), u"1"_s);
    QVERIFY(saveSetting(u"Option"_s, u"EmailReport"_s, u"0"_s));
    QCOMPARE(savedSetting(u"option"_s, u"Emailreport"_s, u"1"_s), u"0"_s);
    QVERIFY(saveSetting(u"option"_s, u"Title"_s, QString()));
    QCOMPARE(savedSetting(u"option"_s, u"Title"_s, u"x"_s), QString());
    QVERIFY(QFile::exists(config + u"/Harrowby/Harrowby.ini"_s));
    QVERIFY(QFile::remove(config + u"/Harrowby/Harrowby.ini"_s));
}

/// Existing hosts and settings files use these very names.
void ObjectsTest::placesOfSettings()
{
    const auto place = [](const SettingPlace &setting) {
        return QStringList{setting.section, setting.key, setting.defaultValue}.join(u'/');
    };
    QCOMPARE(place(saved::EmailReport), u"Option/EmailReport/1"_s);
    QCOMPARE(place(saved::PrintReceipt), u"Option/UsePOSforReceipt/1"_s);
    QCOMPARE(place(saved::Currency), u"Option/Currency/N"_s);
    QCOMPARE(place(saved::ReceiptTitle), u"option/Title/"_s);
    QCOMPARE(place(saved::ReceiptAddress), u"option/address/"_s);
    QCOMPARE(place(saved::ReceiptPrinter), u"POS/COM/COM1"_s);
}

void ObjectsTest::aFileThatCannotBeWrittenIsTold()
{
    // A file in place of the folder: cannot be written even by root.
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::ConfigLocation) + u"/Harrowby"_s;
    QVERIFY(QDir(folder).removeRecursively());
    QFile obstacle(folder);
    QVERIFY(obstacle.open(QIODevice::WriteOnly));
    QList<FileFailure> failures;
    setFileFailureHandler([&](const FileFailure &failure) { failures << failure; });
    QVERIFY(!saveSetting(u"Option"_s, u"EmailReport"_s, u"0"_s));
    QVERIFY(!failures.isEmpty());
    QVERIFY(failures.constFirst().kind == FileFailure::Kind::SettingsWrite);
    QCOMPARE(failures.constFirst().path, folder + u"/Harrowby.ini"_s);
    QVERIFY(!failures.constFirst().reason.isEmpty());
    setFileFailureHandler({});
    const qsizetype told = failures.size();
    QVERIFY(!saveSetting(u"Option"_s, u"EmailReport"_s, u"0"_s));
    QCOMPARE(failures.size(), told);
    QVERIFY(obstacle.remove());
    QVERIFY(!saveSetting(u"Option"_s, u"two\nlines"_s, u"0"_s)); // no name for a setting
}

int objects_test(int argc, char **argv)
{
    QStandardPaths::setTestModeEnabled(true);
    early = callEarly();
    const QApplication app(argc, argv);
    ObjectsTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "objects_test.moc"
