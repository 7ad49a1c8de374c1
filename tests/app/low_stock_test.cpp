// SPDX-License-Identifier: MIT
#include "app/reorder/low_stock.h"
#include "app/reorder/reorder_list.h"
#include "app/shop/schema.h"
#include "tables/csv.h"
#include "tables/output_bar.h"
#include "tables/table_view.h"

#include "tests/program/test_program.h"

#include <harrowby/sqlite_connection.h>

#include <QAbstractButton>
#include <QApplication>
#include <QFile>
#include <QLabel>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <sqlite3.h>

using namespace harrowby;
using namespace harrowby::app;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

/// The reorder list: what it reads, and its window as the component opens it.
class LowStockTest : public QObject
{
    Q_OBJECT

private:
    sqlite3 *m_database = nullptr;
    std::shared_ptr<DbConnection> m_connection;

    bool run(const QString &statements) const
    {
        return sqlite3_exec(m_database, statements.toUtf8().constData(), nullptr, nullptr, nullptr) == SQLITE_OK;
    }

    void stock(const QString &id, const QString &level, const QString &available, const QString &use) const
    {
        QVERIFY(run(u"INSERT INTO StockList (StockID, StockName, StockCategory, StockReorderLevel, StockAvailable,"
                    " StockUse) VALUES ('%1', 'NAME %1', 'TOOLS', %2, %3, '%4')"_s.arg(id, level, available, use)));
    }

    QString read() const
    {
        LowStockReading reading(m_connection);
        auto state = LowStockReading::State::Reading;
        while (state == LowStockReading::State::Reading)
            state = reading.step(0ms);
        if (state == LowStockReading::State::Failed)
            return u"failed"_s;
        return QString::fromUtf8(tables::toCsv(reading.table())).section(u"\r\n"_s, 1).trimmed();
    }

    static void settle(const ReorderListDialog &dialog)
    {
        QSignalSpy shown(&dialog, &ReorderListDialog::shown);
        QVERIFY(shown.wait(60'000));
    }

private Q_SLOTS:
    void init()
    {
        QCOMPARE(sqlite3_open(":memory:", &m_database), SQLITE_OK);
        QVERIFY(!createTables(m_database));
        QVERIFY(createMissingIndexes(m_database));
        m_connection = std::make_shared<SqliteConnection>(m_database);
    }

    void cleanup()
    {
        m_connection.reset();
        sqlite3_close(m_database);
    }

    void listsWhatTheDashboardCounts()
    {
        stock(u"A"_s, u"10"_s, u"3"_s, u"Enabled"_s);
        stock(u"B"_s, u"10"_s, u"10"_s, u"Enabled"_s);
        stock(u"C"_s, u"10"_s, u"11"_s, u"Enabled"_s);
        stock(u"D"_s, u"10"_s, u"3"_s, u"Disabled"_s);
        stock(u"E"_s, u"5"_s, u"-2"_s, u"Enabled"_s);
        QCOMPARE(read(), u"A,NAME A,TOOLS,10,3,7\r\nB,NAME B,TOOLS,10,10,0\r\nE,NAME E,TOOLS,5,-2,7"_s);
    }

    void oddRowsAndOtherTablesAreRead()
    {
        QVERIFY(run(u"DROP TABLE StockList; CREATE TABLE StockList (stockid, STOCKAVAILABLE, StockReorderLevel,"
                    " StockUse); INSERT INTO StockList VALUES (7, '3 boxes', 'x', 'Enabled'),"
                    " (NULL, x'00', x'01', 'Enabled')"_s));
        QCOMPARE(read(), u"7,,,0,3,-3\r\n,,,0,0,0"_s);
        QVERIFY(run(u"DROP TABLE StockList"_s));
        QCOMPARE(read(), u"failed"_s);
        m_connection.reset();
        QCOMPARE(read(), u"failed"_s);
    }

    void theWindowListsThemMostMissingFirst()
    {
        stock(u"A"_s, u"10"_s, u"9"_s, u"Enabled"_s);
        stock(u"B"_s, u"100"_s, u"0"_s, u"Enabled"_s);
        ReorderListDialog dialog(m_connection);
        dialog.show();
        settle(dialog);
        QCOMPARE(dialog.table().model()->index(0, 0).data().toString(), u"B"_s);
        QCOMPARE(dialog.table().model()->index(0, 5).data().toString(), u"100"_s);
        QCOMPARE(dialog.findChild<QLabel *>(u"count"_s)->text(), u"2 items to reorder"_s);
        const QTemporaryDir folder;
        const QString path = folder.filePath(u"list.csv"_s);
        dialog.output().setFileChooser([&](QWidget *, const QString &, const QString &) { return path; });
        dialog.findChild<QAbstractButton *>(u"saveCsv"_s)->click();
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("Item code,Item,Category,Level,Available,Missing\r\n"
                                            "B,NAME B,TOOLS,100,0,100\r\nA,NAME A,TOOLS,10,9,1\r\n"));
        for (auto *button : dialog.findChildren<QAbstractButton *>())
            QVERIFY2(!button->isVisible() || button->height() >= 44, qPrintable(button->text()));
    }

    void anEmptyListSaysSo()
    {
        ReorderListDialog dialog(m_connection);
        dialog.show();
        settle(dialog);
        auto *message = dialog.findChild<QLabel *>(u"message"_s);
        QVERIFY(message->isVisible());
        QCOMPARE(message->text(), u"Nothing needs to be reordered."_s);
        QVERIFY(!dialog.output().isEnabled());
        stock(u"A"_s, u"10"_s, u"9"_s, u"Enabled"_s);
        dialog.findChild<QAbstractButton *>(u"refresh"_s)->click();
        settle(dialog);
        QCOMPARE(dialog.findChild<QLabel *>(u"count"_s)->text(), u"1 item to reorder"_s);
        QVERIFY(run(u"DROP TABLE StockList"_s));
        dialog.findChild<QAbstractButton *>(u"refresh"_s)->click();
        settle(dialog);
        QVERIFY(message->isVisible() && message->text().startsWith(u"The stock could not be read."_s));
    }

    void manyItemsAreReadBitByBit()
    {
        QVERIFY(run(u"WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 20000)"
                    " INSERT INTO StockList (StockID, StockName, StockReorderLevel, StockAvailable, StockUse)"
                    " SELECT 'I' || i, 'N' || i, 10, 0, 'Enabled' FROM n"_s));
        LowStockReading reading(m_connection);
        int steps = 1;
        while (reading.step(0ms) == LowStockReading::State::Reading)
            ++steps;
        QVERIFY(steps > 100);
        QCOMPARE(reading.table().rows.size(), static_cast<std::size_t>(20'000));
        ReorderListDialog dialog(m_connection); // closed while it reads
        dialog.show();
        QCoreApplication::processEvents();
    }

    /// As the component calls it: late-bound, with its own window.
    void isShownByItsMethod()
    {
        QWidget owner;
        owner.show();
        QWidget *given = &owner;
        ReorderList list(m_connection);
        bool seen = false;
        QTimer::singleShot(0, this, [&] {
            auto *dialog = qobject_cast<ReorderListDialog *>(QApplication::activeModalWidget());
            seen = dialog != nullptr && dialog->parentWidget() == &owner;
            if (dialog != nullptr)
                dialog->close();
        });
        QVERIFY(QMetaObject::invokeMethod(&list, "Show", Q_ARG(int, 1), Q_ARG(QWidget *, given)));
        QVERIFY(seen);
        QVERIFY(QMetaObject::invokeMethod(&list, "Show", Q_ARG(int, 0), Q_ARG(QWidget *, given)));
        QCOMPARE(QApplication::activeModalWidget(), nullptr);
    }
};

HARROWBY_TEST(app_low_stock_test, LowStockTest)
#include "low_stock_test.moc"
