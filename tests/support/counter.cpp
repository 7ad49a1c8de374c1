// SPDX-License-Identifier: MIT
#include "tests/support/counter.h"

#include "store/inv_basic.h"
#include "ui/widgets/pick_list.h"
#include "ui/widgets/quick_sale_button.h"
#include "ui/widgets/row_list.h"
#include "ui/widgets/tab_strip.h"
#include "ui/widgets/text_table_model.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>

#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace harrowby::test {

namespace {

constexpr auto tables = R"(
CREATE TABLE StockList (StockID TEXT, StockName TEXT, StockCategory TEXT, StockCost NUMERIC, StockReorderLevel NUMERIC,
    StockAvailable NUMERIC, StockUse TEXT, StockLastUpdated TEXT, StockLastModified TEXT, StockAdded TEXT,
    StockReorderUser TEXT);
CREATE TABLE InventoryCategory (CategoryName TEXT, EntryDate TEXT);
CREATE TABLE PurchaseCart (PurchaseID TEXT, PurchasedItems TEXT, PurchasedItemsTotal NUMERIC,
    PurchasedItemsCost NUMERIC, PurchasedDate TEXT, Users TEXT);
CREATE TABLE StoreSettings (Email NUMERIC, ShowDetails NUMERIC, EmailAddress TEXT, Promptreorder NUMERIC,
    AutoPurchaseCart NUMERIC);
CREATE TABLE Users (Username TEXT, Password TEXT, Type TEXT, InventoryUse, InventorySales, InventoryReport,
    InventoryUndo, InventoryDelete, InventorySettings, InventoryReorder);
CREATE TABLE SysUsage (SystemUsage TEXT, Times TEXT, Dates TEXT);
)"_L1;

QString columnText(sqlite3_stmt *statement, int column)
{
    return QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(statement, column)));
}

QString quoted(const QString &text)
{
    return u"'"_s + QString(text).replace(u"'"_s, u"''"_s) + u"'"_s;
}

} // namespace

ShopFile::ShopFile()
{
    if (sqlite3_open(path().toUtf8().constData(), &m_handle) != SQLITE_OK)
        qFatal("the file cannot be opened");
    sql(u"PRAGMA synchronous = OFF"_s); // no power cut is waited for
    sql(tables);
}

ShopFile::~ShopFile()
{
    sqlite3_close(m_handle);
}

QString ShopFile::path() const
{
    return m_folder.filePath(u"shop.sqlite"_s);
}

void ShopFile::sql(const QString &statements) const
{
    char *message = nullptr;
    if (sqlite3_exec(m_handle, statements.toUtf8().constData(), nullptr, nullptr, &message) != SQLITE_OK)
        qFatal("%s: %s", qPrintable(statements), message);
}

QString ShopFile::cell(const QString &select) const
{
    return rows(select).value(0, u"(no row)"_s).section(u'|', 0, 0);
}

QStringList ShopFile::rows(const QString &select) const
{
    sqlite3_stmt *statement = nullptr;
    if (sqlite3_prepare_v2(m_handle, select.toUtf8().constData(), -1, &statement, nullptr) != SQLITE_OK)
        qFatal("%s: %s", qPrintable(select), sqlite3_errmsg(m_handle));
    QStringList all;
    while (sqlite3_step(statement) == SQLITE_ROW) {
        QStringList row;
        for (int column = 0; column < sqlite3_column_count(statement); ++column)
            row << columnText(statement, column);
        all << row.join(u'|');
    }
    sqlite3_finalize(statement);
    return all;
}

void ShopFile::addItem(const QString &id, const QString &name, double cost, double available, const QString &category,
                       const QString &use, double reorderLevel) const
{
    sql(u"INSERT INTO StockList VALUES (%1,%2,%3,%4,%5,%6,%7,'','','','')"_s.arg(
        quoted(id), quoted(name), quoted(category), QString::number(cost, 'f', 2), QString::number(reorderLevel),
        QString::number(available), quoted(use)));
}

void ShopFile::addUser(const QString &name, const QString &password, const QStringList &rights,
                       const QString &type) const
{
    QString flags;
    for (const QString &right : {u"Sales"_s, u"Report"_s, u"Undo"_s, u"Delete"_s, u"Settings"_s, u"Reorder"_s})
        flags += rights.contains(right) ? u",-1"_s : u",0"_s;
    sql(u"INSERT INTO Users VALUES (%1,%2,%3,-1%4)"_s.arg(quoted(name), quoted(password), quoted(type), flags));
}

Counter::Counter() :
    connection(std::make_shared<RecordingConnection>(std::make_shared<SqliteConnection>(file.handle())))
{
    file.addUser(u"ADMINISTRATOR"_s, u"PASS"_s, {}, u"ADMIN"_s);
    file.sql(u"INSERT INTO StoreSettings VALUES (0, 0, 'shop@example.com', 0, 0)"_s);
    settings->save(u"Option"_s, u"UsePOSforReceipt"_s, u"0"_s);
}

Counter::~Counter()
{
    if (!boxes.isDone())
        QTest::qFail(boxes.problems().constData(), __FILE__, __LINE__);
    delete m_window.data();
    InvBasic::setConnection(nullptr);
}

void Counter::open()
{
    InvBasic::setConnection(connection);
    m_window = new Inventory({qtBoxes, settings, printers, clock, objects});
    m_window->load();
    m_window->resize(1024, 768);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window));
}

void Counter::close()
{
    boxes.expect(u"Close Inventory?"_s, box::Ask, Answer::Yes);
    m_window->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QTRY_VERIFY(m_window.isNull());
}

QWidget *Counter::control(const char *name) const
{
    auto *found = m_window->findChild<QWidget *>(QString::fromLatin1(name));
    if (found == nullptr) {
        QStringList names;
        for (const QWidget *widget : m_window->findChildren<QWidget *>())
            names << widget->objectName();
        qFatal("no control %s; there are: %s", name, qPrintable(names.join(u' ')));
    }
    return found;
}

QString Counter::text(const char *name) const
{
    QWidget *found = control(name);
    if (auto *list = qobject_cast<PickList *>(found))
        return list->entryText();
    if (auto *log = qobject_cast<QPlainTextEdit *>(found))
        return log->toPlainText();
    return found->property("text").toString();
}

void Counter::setText(const char *name, const QString &text) const
{
    QWidget *found = control(name);
    if (auto *list = qobject_cast<PickList *>(found))
        list->setEntryText(text);
    else
        found->setProperty("text", text);
}

void Counter::click(const char *name) const
{
    find<QAbstractButton>(name)->click();
}

void Counter::pick(const char *name, int entry) const
{
    auto *list = find<PickList>(name);
    list->showPopup();
    list->view()->setCurrentIndex(list->model()->index(entry, 0));
    QTest::keyClick(list->view(), Qt::Key_Return);
}

QStringList Counter::entries(const char *name) const
{
    const auto *list = find<PickList>(name);
    QStringList all;
    for (int entry = 0; entry < list->count(); ++entry)
        all << list->itemText(entry);
    return all;
}

bool Counter::hasFocus(const char *name) const
{
    return m_window->focusWidget() == control(name);
}

void Counter::chooseTab(const char *strip, int number) const
{
    auto *tabs = find<TabStrip>(strip);
    QTest::mouseClick(tabs, Qt::LeftButton, {}, tabs->tabRect(number - 1).center());
}

int Counter::selectedTab(const char *strip) const
{
    return find<TabStrip>(strip)->selectedTab();
}

void Counter::logIn(const QString &name, const QString &password)
{
    setText("Text3", name);
    setText("Text4", password);
    click("Command28");
}

QStringList Counter::rows(const char *name) const
{
    const TextTableModel &list = find<RowList>(name)->rows();
    QStringList all;
    for (int row = 0; row < list.rowCount(); ++row) {
        QStringList texts;
        for (int column = 0; column < list.columnCount(); ++column)
            texts << list.text(row, column);
        all << texts.join(u'|');
    }
    return all;
}

} // namespace harrowby::test
