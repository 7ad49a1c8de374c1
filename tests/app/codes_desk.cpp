// SPDX-License-Identifier: MIT
#include "tests/app/codes_desk.h"

#include "app/codes/code_table.h"
#include "app/office/codes_page.h"
#include "app/shop/schema.h"
#include "tables/table_view.h"
#include "tests/app/quick_folder.h"
#include "theme/dialogs.h"

#include <QApplication>
#include <QDialog>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace harrowby::app::test {

void CodesDesk::init()
{
    m_folder = std::make_unique<QTemporaryDir>(quickFolder() + u"/codes-XXXXXX"_s);
    m_place = std::make_unique<ShopPlace>(m_folder->filePath(u"shop.sqlite"_s));
    if (!harrowby::test::isOnServer(m_place->address())) {
        SqliteDatabase made;
        QVERIFY(!into(made, openDatabase(m_place->address(), OpenMode::Create)));
        QVERIFY(!createTables(made.get()));
    }
    m_shop = std::make_unique<OpenShop>(m_place->address());
    for (const auto &[id, name] : {std::pair(u"TEA-0001"_s, u"TEA"_s), {u"MIL-0001"_s, u"MILK"_s}})
        m_shop->run(u"INSERT INTO StockList (StockID, StockName, StockCost) VALUES ('%1', '%2', 1)"_s.arg(id, name));
    m_fussy = m_shop->file() != nullptr ? std::make_unique<FussyRecords>(m_shop->file()) : nullptr;
    m_records = m_fussy ? m_fussy.get() : m_shop->records().get();
    QVERIFY(!CodeTable(*m_records).add(u"036000291452"_s, u"TEA-0001"_s, 1));
    QVERIFY(!CodeTable(*m_records).add(u"CASE"_s, u"TEA-0001"_s, 12));
    QVERIFY(m_records->write(
        kept::code(), {u"insert into HarrowbyCode (Code, StockID, Units) values ('GONE', 'BUT-0001', 1)"_s, {}}));
    m_boxText.clear();
    m_window = std::make_unique<CodesPage>(SignedDeeds(*m_records, officePlace, u"ADMINISTRATOR"_s));
    enlargeFont(*m_window);
    dressDialog(*m_window);
    m_window->resize(760, 480);
    m_window->show();
}

void CodesDesk::cleanup()
{
    m_window.reset();
    m_fussy.reset();
    m_shop.reset();
    m_place.reset();
    m_folder.reset();
}

QStringList CodesDesk::listed() const
{
    QStringList lines;
    for (const tables::Row &row : in<tables::TableView>(*m_window, "codes")->table().rows)
        lines << std::get<QString>(row.at(0)) + u' ' + std::get<QString>(row.at(1)) + u' ' +
                     QString::number(std::get<double>(row.at(3)));
    return lines;
}

void CodesDesk::choose(const QString &code)
{
    auto *view = in<tables::TableView>(*m_window, "codes");
    for (int row = 0; row < view->model()->rowCount(); ++row) {
        const QModelIndex index = view->model()->index(row, 0);
        if (index.data().toString() == code)
            return view->setCurrentIndex(index);
    }
    QFAIL(qPrintable(u"not listed: "_s + code));
}

void CodesDesk::inNextDialog(const std::function<void(QDialog &)> &act)
{
    QTimer::singleShot(0, this, [act] {
        auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
        QVERIFY(dialog);
        act(*dialog);
        dialog->reject();
    });
}

void CodesDesk::answerNextBox(QMessageBox::ButtonRole role)
{
    QTimer::singleShot(0, this, [this, role] {
        auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        QVERIFY(box);
        m_boxText = box->text();
        for (QAbstractButton *button : box->buttons()) {
            if (box->buttonRole(button) == role)
                return button->click();
        }
        box->reject();
    });
}

} // namespace harrowby::app::test
