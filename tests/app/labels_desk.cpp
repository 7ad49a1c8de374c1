// SPDX-License-Identifier: MIT
#include "tests/app/labels_desk.h"

#include "app/codes/code_table.h"
#include "tests/app/store_files.h"
#include "tests/platform/pdf_text.h"
#include "theme/dialogs.h"

#include <QApplication>
#include <QDialog>
#include <QFile>
#include <QLineEdit>
#include <QTimer>
#include <QTreeView>

using namespace Qt::StringLiterals;

namespace harrowby::app::test {

namespace {

void fill(const QString &store)
{
    makeStore(store);
    QStringList items = {u"DELETE FROM StockList"_s};
    for (const QString &values : {u"'BAK-0001', 'BREAD', 'BAKERY', '1.2', 3, 'Enabled'"_s,
                                  u"'BEV-0001', 'TEA', 'DRINKS', '1234.5', 2.9, 'Enabled'"_s,
                                  u"'BEV-0002', 'MILK', 'DRINKS', 0.99, 0, 'Enabled'"_s,
                                  u"'TH\u00c9', 'GREEN TEA', 'DRINKS', '2', -4, 'Enabled'"_s,
                                  u"'OLD-0001', 'OLD TEA', 'DRINKS', '2', 1, 'Disabled'"_s})
        items << u"INSERT INTO StockList (StockID, StockName, StockCategory, StockCost, StockAvailable, StockUse) "
                 u"VALUES (%1)"_s.arg(values);
    // Of three imports the second one counts: the last was taken back, and one row was left out.
    if (!harrowby::test::isOnServer(store))
        items += kept::import().making;
    for (const QString &values : {u"1, 'Items', 'APPLIED'"_s, u"2, 'Items', 'APPLIED'"_s, u"3, 'Items', 'TAKENBACK'"_s})
        items << u"INSERT INTO HarrowbyImport VALUES (%1, '', '', '', '', '', '', '', '', '', '', 0, 0, 0, 0)"_s.arg(
            values);
    for (const QString &values :
         {u"1, 2, 1, 0, 'BEV-0002'"_s, u"2, 2, 1, 0, 'BAK-0001'"_s, u"2, 3, 2, 0, 'BEV-0001'"_s,
          u"2, 4, 3, 0, 'BEV-0002'"_s, u"2, 5, 1, 1, 'TH\u00c9'"_s, u"3, 2, 1, 0, 'TH\u00c9'"_s})
        items << u"INSERT INTO HarrowbyImportRow (ImportID, Line, What, LeftOut, StockID, Mask) VALUES (%1, 0)"_s.arg(
            values);
    runAll(store, items);
    const OpenShop shop(store);
    CodeTable codes(*shop.records());
    QVERIFY(!codes.add(u"CASE"_s, u"BEV-0001"_s, 12));
    QVERIFY(!codes.add(u"4006381333931"_s, u"BEV-0001"_s, 1));
    QVERIFY(!codes.add(u"96385074"_s, u"BEV-0002"_s, 1));
}

} // namespace

void LabelsDesk::initTestCase()
{
    m_made = m_madeFolder.filePath(u"made.sqlite"_s);
    if (!harrowby::test::shopsAreOnAServer())
        fill(m_made);
}

void LabelsDesk::init()
{
    m_service.reset();
    m_service.answerList(u"Zebra\nOffice"_s);
    m_folder = std::make_unique<QTemporaryDir>();
    m_place = std::make_unique<ShopPlace>(m_folder->filePath(u"shop.sqlite"_s));
    m_store = m_place->address();
    if (harrowby::test::isOnServer(m_store))
        fill(m_store);
    else
        QVERIFY(QFile::copy(m_made, m_store));
    m_shop = std::make_unique<OpenShop>(m_store);
    m_records = m_shop->records().get();
    m_saved = {{u"Option/Currency"_s, u"EUR"_s}};
    m_path = m_folder->filePath(u"labels.pdf"_s);
    const OfficeSettings settings = {[this](const QString &section, const QString &key, const QString &usual) {
                                         return m_saved.value(section + u'/' + key, usual);
                                     },
                                     [this](const QString &section, const QString &key, const QString &value) {
                                         m_saved.insert(section + u'/' + key, value);
                                         return true;
                                     }};
    m_page = std::make_unique<LabelsPage>(SignedDeeds(*m_records, officePlace, u"ANNA"_s), m_store, settings);
    m_page->setFileChooser([this](QWidget *, const QString &) { return m_path; });
    enlargeFont(*m_page);
    dressDialog(*m_page);
    m_page->resize(718, 440);
    m_page->show();
}

void LabelsDesk::cleanup()
{
    m_page.reset();
    m_shop.reset();
    m_place.reset();
    m_folder.reset();
}

void LabelsDesk::inNextDialog(const std::function<void(QDialog &)> &act)
{
    QTimer::singleShot(0, this, [act] {
        auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
        QVERIFY(dialog);
        act(*dialog);
        if (dialog->isVisible())
            dialog->reject();
    });
}

void LabelsDesk::answerBox(QMessageBox::ButtonRole role)
{
    m_boxText.clear();
    auto *look = new QTimer(this); // not a wait, which would go on below the box
    connect(look, &QTimer::timeout, this, [this, look, role] {
        auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        if (box == nullptr)
            return;
        look->stop();
        look->deleteLater();
        m_boxText = box->text();
        for (QAbstractButton *button : box->buttons()) {
            if (box->buttonRole(button) == role)
                return button->click();
        }
    });
    look->start(5);
}

void LabelsDesk::pick(const QString &text, const std::function<void(QDialog &)> &act)
{
    inNextDialog([&](QDialog &dialog) {
        in<QLineEdit>(dialog, "labelItem")->setText(text);
        QTest::keyClick(in<QLineEdit>(dialog, "labelItem"), Qt::Key_Return);
        act(dialog);
    });
    press("addLabelItems");
}

void LabelsDesk::add(const QString &text)
{
    pick(text, [](QDialog &dialog) { QTest::mouseClick(in<QPushButton>(dialog, "addLabel"), Qt::LeftButton); });
}

QStringList LabelsDesk::listed()
{
    const QAbstractItemModel &model = *part<QTreeView>("labels")->model();
    QStringList lines;
    for (int row = 0; row < model.rowCount(); ++row)
        lines << model.index(row, 0).data().toString().replace(u'\n', u" | "_s) + u" | "_s +
                     model.index(row, 1).data().toString();
    return lines;
}

void LabelsDesk::chooseRow(const QString &item)
{
    auto *view = part<QTreeView>("labels");
    for (int row = 0; row < view->model()->rowCount(); ++row) {
        if (view->model()->index(row, 0).data().toString().section(u'\n', 0, 0) == item)
            return view->setCurrentIndex(view->model()->index(row, 0));
    }
    QFAIL(qPrintable(u"not listed: "_s + item));
}

QString LabelsDesk::savePdf()
{
    part<QLabel>("labelsOutcome")->clear();
    press("saveLabels");
    [&] { QTRY_VERIFY_WITH_TIMEOUT(!outcome().isEmpty() && !m_page->leaving(), 30000); }();
    return QFile::exists(m_path) ? harrowby::testing::pdfLines(m_path).join(u'|').simplified().replace(u'\u00a0', u' ')
                                 : QString();
}

} // namespace harrowby::app::test
