// SPDX-License-Identifier: MIT
#include "app/codes/code_finder.h"
#include "app/codes/code_table.h"
#include "app/labels/step_entry.h"
#include "app/work/work_strip.h"
#include "tests/app/labels_desk.h"
#include "tests/platform/pdf_text.h"
#include "tests/program/test_program.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QFile>
#include <QLineEdit>
#include <QListWidget>
#include <QTreeView>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;

class LabelsPageTest : public LabelsDesk
{
    Q_OBJECT

private Q_SLOTS:
    void itemsAreFound();
    void itemIsAddedWithItsCode();
    void allOfAGroupAreAdded();
    void asManyAsInStock();
    void codeAndCountAreChosen();
    void itemWithoutBarsIsTold();
    void idOfTwoItemsIsTold();
    void pricesAreTheTills();
    void pdfIsSavedAndNoted();
    void cancelledChoiceSavesNothing();
    void failedSaveIsTold();
    void labelsGoToThePrinter();
    void deadPrinterIsTold();
    void tooLongCodesAreAskedAbout();
    void placesAreKeptOnThisMachine();
    void stepsAreTypedAndPressed();
    void everythingIsLargeEnoughForAThumbAndNamed();
    void theListHasALimit();
    void longWorkIsShownAndCancelled();
};

void LabelsPageTest::itemsAreFound()
{
    const QString bread = u"BREAD (BAK-0001)"_s;
    const QString green = u"GREEN TEA (TH\u00c9)"_s;
    const QString milk = u"MILK (BEV-0002)"_s;
    const QString tea = u"TEA (BEV-0001)"_s;
    struct Find
    {
        QString group;
        QString text;
        QStringList items;
    };
    const QList<Find> finds = {{u"All items"_s, {}, {bread, green, milk, tea}}, // that can be sold
                               {u"All items"_s, u" tea "_s, {green, tea}},
                               {u"All items"_s, u"bev-"_s, {milk, tea}},
                               {u"All items"_s, u"400638"_s, {tea}},
                               {u"All items"_s, u"%"_s, {}},
                               {u"Items without a code"_s, {}, {bread, green}},
                               {u"Items without a code"_s, u"b"_s, {bread}},
                               {u"Items of the last import"_s, {}, {bread, tea}},
                               {u"Items of the last import"_s, u"tea"_s, {tea}},
                               {u"DRINKS"_s, {}, {green, milk, tea}},
                               {u"BAKERY"_s, u"tea"_s, {}}};
    pick({}, [&](QDialog &dialog) {
        auto *box = in<QComboBox>(dialog, "labelGroup");
        auto *entry = in<QLineEdit>(dialog, "labelItem");
        const auto *view = in<QListWidget>(dialog, "labelItems");
        for (const Find &find : finds) {
            QVERIFY2(box->findText(find.group) >= 0, qPrintable(find.group));
            box->setCurrentText(find.group);
            entry->setText(find.text);
            QTest::keyClick(entry, Qt::Key_Return);
            QStringList found;
            for (int row = 0; row < view->count(); ++row)
                found << view->item(row)->text();
            QCOMPARE(found, find.items);
            QCOMPARE(in<QPushButton>(dialog, "addLabel")->isEnabled(), !find.items.isEmpty());
        }
    });
}

void LabelsPageTest::itemIsAddedWithItsCode()
{
    QCOMPARE(part<QLabel>("labelsSum")->text(), u"Add the items that you want labels for."_s);
    QVERIFY(!part<QPushButton>("printLabels")->isEnabled() && !part<QComboBox>("labelCode")->isEnabled());
    QString said;
    pick(u"bread"_s, [&](QDialog &dialog) {
        in<QLineEdit>(dialog, "labelsOfEach")->clear();
        QTest::keyClicks(in<QLineEdit>(dialog, "labelsOfEach"), u"4"_s);
        QTest::mouseClick(in<QPushButton>(dialog, "addLabel"), Qt::LeftButton);
        said = in<QLabel>(dialog, "labelPickerOutcome")->text();
    });
    QCOMPARE(said, u"Added: 4 labels of 1 item."_s);
    add(u"4006381333931"_s);
    add(u"4006381333931"_s); // once more, as by a reader
    QCOMPARE(listed(), (QStringList{u"BREAD | BAK-0001 | 4"_s, u"TEA | 4006381333931 | 2"_s}));
    QCOMPARE(part<QLabel>("labelsSum")->text(), u"2 items, 6 labels: 1 sheet"_s);
    press("removeLabelItem");
    QCOMPARE(listed(), QStringList{u"TEA | 4006381333931 | 2"_s});
    press("removeAllLabels");
    QCOMPARE(listed(), QStringList());
}

void LabelsPageTest::allOfAGroupAreAdded()
{
    pick(QString(), [&](QDialog &dialog) {
        auto *all = in<QPushButton>(dialog, "addAllLabels");
        QCOMPARE(all->text(), u"Add A&ll 4"_s);
        QTest::mouseClick(all, Qt::LeftButton);
        QTRY_COMPARE_WITH_TIMEOUT(in<QLabel>(dialog, "labelPickerOutcome")->text(), u"Added: 4 labels of 4 items."_s,
                                  30000);
    });
    QCOMPARE(listed(), (QStringList{u"BREAD | BAK-0001 | 1"_s, u"GREEN TEA | No code | 1"_s, u"MILK | 96385074 | 1"_s,
                                    u"TEA | 4006381333931 | 1"_s}));
}

void LabelsPageTest::asManyAsInStock()
{
    pick(QString(), [&](QDialog &dialog) {
        QTest::mouseClick(in<QCheckBox>(dialog, "labelsAsInStock"), Qt::LeftButton, {}, QPoint(12, 12));
        QVERIFY(!in<QLineEdit>(dialog, "labelsOfEach")->isEnabled());
        QTest::mouseClick(in<QPushButton>(dialog, "addAllLabels"), Qt::LeftButton);
        QTRY_COMPARE_WITH_TIMEOUT(in<QLabel>(dialog, "labelPickerOutcome")->text(),
                                  u"Added: 5 labels of 2 items. 2 items have none in stock."_s, 30000);
    });
    QCOMPARE(listed(), (QStringList{u"BREAD | BAK-0001 | 3"_s, u"TEA | 4006381333931 | 2"_s}));
}

void LabelsPageTest::codeAndCountAreChosen()
{
    add(u"BEV-0001"_s);
    auto *code = part<QComboBox>("labelCode");
    QStringList choices;
    for (int i = 0; i < code->count(); ++i)
        choices << code->itemText(i);
    QCOMPARE(choices, (QStringList{u"4006381333931"_s, u"CASE, sells 12"_s, u"BEV-0001 (the ID)"_s, u"No code"_s}));
    code->setCurrentIndex(1);
    Q_EMIT code->activated(1);
    auto *count = part<QLineEdit>("labelCount");
    count->clear();
    QTest::keyClicks(count, u"66"_s);
    QCOMPARE(listed(), QStringList{u"TEA | CASE, sells 12 | 66"_s});
    QCOMPARE(part<QLabel>("labelsSum")->text(), u"1 item, 66 labels: 2 sheets"_s);
    count->clear();
    QTest::keyClicks(count, u"1"_s);
    QCOMPARE(savePdf(), u"12 x TEA|EUR 14,814.00|CASE"_s); // the price is for what a scan sells
}

void LabelsPageTest::itemWithoutBarsIsTold()
{
    add(u"th\u00c9"_s);
    QCOMPARE(listed(), QStringList{u"GREEN TEA | No code | 1"_s});
    QVERIFY2(outcome().contains(u"name and price alone"_s), qPrintable(outcome()));
    QCOMPARE(savePdf(), u"GREEN TEA|EUR 2.00"_s);
}

void LabelsPageTest::idOfTwoItemsIsTold()
{
    m_shop->run(u"UPDATE StockList SET StockID = 'BEV-0001', StockName = 'WATER' WHERE StockName = 'BREAD'"_s);
    for (const QString &code : {u"BEV-0001"_s, u"4006381333931"_s})
        QVERIFY(CodeFinder(*m_records).find(code).kind == FoundCode::Kind::Several);
    for (const QString &item : {u"water"_s, u"4006381333931"_s})
        add(item);
    QCOMPARE(listed(), (QStringList{u"WATER | No code | 1"_s, u"TEA | No code | 1"_s}));
    for (const QString &item : {u"TEA"_s, u"WATER"_s}) {
        chooseRow(item);
        QVERIFY2(outcome().contains(u"Another item has the ID BEV-0001"_s), qPrintable(outcome()));
    }
    // One item that is stored twice can be sold.
    m_shop->run(u"UPDATE StockList SET StockName = 'TEA' WHERE StockName = 'WATER'"_s);
    press("removeAllLabels");
    add(u"4006381333931"_s);
    QCOMPARE(listed(), QStringList{u"TEA | 4006381333931 | 1"_s});
}

void LabelsPageTest::pricesAreTheTills()
{
    add(u"4006381333931"_s);
    QCOMPARE(savePdf(), u"TEA|EUR 1,234.50|4 006381 333931"_s);
    m_saved.remove(u"Option/Currency"_s);
    m_page->hide();
    m_page->show();
    QCOMPARE(savePdf(), u"TEA|N 1,234.50|4 006381 333931"_s);
}

void LabelsPageTest::pdfIsSavedAndNoted()
{
    add(u"bread"_s);
    add(u"milk"_s);
    QVERIFY(savePdf().contains(u"BREAD"_s));
    QCOMPARE(outcome(), u"2 labels saved as %1"_s.arg(m_path));
    QCOMPARE(m_shop->read(u"SELECT Kind || ' ' || Who || ' ' || What FROM HarrowbyActivity"_s),
             u"LabelsPrinted ANNA 2 labels to %1"_s.arg(m_path));
}

void LabelsPageTest::cancelledChoiceSavesNothing()
{
    add(u"bread"_s);
    m_path.clear();
    press("saveLabels");
    QCOMPARE(outcome(), QString());
    QVERIFY(!m_page->leaving());
}

void LabelsPageTest::failedSaveIsTold()
{
    add(u"bread"_s);
    m_path = m_folder->filePath(u"no such folder/labels.pdf"_s);
    answerBox(QMessageBox::AcceptRole);
    (void)savePdf();
    QVERIFY(m_boxText.contains(u"no such folder"_s));
    QVERIFY(outcome().contains(u"not saved"_s));
}

void LabelsPageTest::labelsGoToThePrinter()
{
    m_service.answerLp(u"for last; do :; done; cp \"$last\" %1; exit 0"_s.arg(m_path));
    auto *printers = part<QComboBox>("labelPrinter");
    QTRY_COMPARE_WITH_TIMEOUT(printers->count(), 2, 30000);
    add(u"milk"_s);
    press("printLabels");
    QVERIFY(outcome().contains(u"Choose the printer"_s));
    printers->setEditText(u"Zebra"_s);
    auto *paper = part<QComboBox>("labelPaper");
    paper->setCurrentIndex(paper->count() - 1);
    Q_EMIT paper->activated(paper->count() - 1);
    QVERIFY(!part<QLineEdit>("labelPlace")->isEnabled());
    printers->setEditText(u"Zebra"_s); // of this paper
    press("printLabels");
    QTRY_COMPARE_WITH_TIMEOUT(outcome(), u"1 label handed to the printer Zebra."_s, 30000);
    const QString call = m_service.calls().constLast();
    QVERIFY2(call.startsWith(u"lp -d Zebra -t Labels -o print-scaling=none -- /"_s), qPrintable(call));
    QVERIFY(!QFile::exists(call.section(u' ', -1))); // what was handed over is gone
    QCOMPARE(harrowby::testing::pdfLines(m_path).constFirst(), u"MILK"_s);
    QCOMPARE(m_saved.value(u"Labels/roll-38x25-Printer"_s), u"Zebra"_s);
    QCOMPARE(m_saved.value(u"Labels/Paper"_s), u"roll-38x25"_s);
    QVERIFY(m_shop->read(u"SELECT What FROM HarrowbyActivity"_s).contains(u"1 label to printer Zebra"_s));
}

/// The service never answers: the page goes on all the while, and says so at the deadline.
void LabelsPageTest::deadPrinterIsTold()
{
    m_service.answerLp(u"exec sleep 60"_s);
    LabelPrinting printing(nullptr, std::chrono::milliseconds(300));
    QString reason;
    printing.print(u"Zebra"_s, labelPaper({}), "%PDF",
                   [&](const Result<void, QString> &taken) { reason = taken ? u"taken"_s : taken.error(); });
    QVERIFY(printing.isRunning());
    QTRY_VERIFY_WITH_TIMEOUT(!reason.isEmpty(), 30000);
    QVERIFY2(reason != u"taken"_s, qPrintable(reason));

    m_service.answerLp(u"echo 'lp: The printer or class does not exist.' >&2; exit 1"_s);
    add(u"milk"_s);
    part<QComboBox>("labelPrinter")->setEditText(u"Gone"_s);
    press("printLabels");
    QTRY_VERIFY_WITH_TIMEOUT(outcome().contains(u"Gone has not taken the labels"_s), 30000);
    QVERIFY(!m_page->leaving());
    QCOMPARE(m_shop->read(u"SELECT count(*) FROM sqlite_master WHERE name = 'HarrowbyActivity'"_s), u"0"_s);
}

void LabelsPageTest::tooLongCodesAreAskedAbout()
{
    QVERIFY(!CodeTable(*m_records).add(QString(30, u'W'), u"BAK-0001"_s, 1));
    add(u"bread"_s);
    QVERIFY2(outcome().contains(u"too long for the label"_s), qPrintable(outcome()));
    add(u"milk"_s);
    answerBox(QMessageBox::RejectRole);
    QCOMPARE(savePdf(), QString());
    QCOMPARE(outcome(), u"Nothing was printed."_s);
    QVERIFY(m_boxText.contains(u"BREAD (BAK-0001): "_s + QString(30, u'W')) && !m_boxText.contains(u"MILK"_s));
    answerBox(QMessageBox::AcceptRole);
    press("saveLabels");
    QTRY_VERIFY_WITH_TIMEOUT(outcome().startsWith(u"2 labels saved"_s), 30000);
    const QString read = harrowby::testing::pdfLines(m_path).join(u'|');
    QVERIFY2(read.contains(u"BREAD"_s) && !read.contains(u"WWW"_s) && read.contains(u"9638"_s), qPrintable(read));
}

void LabelsPageTest::placesAreKeptOnThisMachine()
{
    add(u"milk"_s);
    inNextDialog([&](QDialog &dialog) {
        QTest::mouseClick(in<QPushButton>(dialog, "labelsRightMore"), Qt::LeftButton);
        auto *down = in<QLineEdit>(dialog, "labelsDown");
        down->clear();
        QTest::keyClicks(down, u"-1.5"_s);
        auto *dots = in<QComboBox>(dialog, "labelDots");
        dots->setCurrentIndex(dots->findData(300));
        QTest::mouseClick(in<QPushButton>(dialog, "saveAdjustment"), Qt::LeftButton);
    });
    press("adjustLabels");
    QCOMPARE(m_saved.value(u"Labels/a4-65-Right"_s), u"1"_s);
    QCOMPARE(m_saved.value(u"Labels/a4-65-Down"_s), u"-15"_s);
    QCOMPARE(m_saved.value(u"Labels/a4-65-Dots"_s), u"300"_s);
    const OfficeSettings settings = {[this](const QString &section, const QString &key, const QString &usual) {
                                         return m_saved.value(section + u'/' + key, usual);
                                     },
                                     {}};
    QCOMPARE(readLabelSetting(settings, labelPaper(u"a4-65"_s)), (LabelSetting{300, {1, -15}, {}}));
    QCOMPARE(readLabelSetting(settings, labelPaper(u"roll-38x25"_s)), (LabelSetting{203, {0, 0}, {}}));
    m_saved.insert(u"Labels/a4-65-Down"_s, u"nonsense"_s); // by hand
    m_saved.insert(u"Labels/a4-65-Dots"_s, u"1"_s);
    m_saved.insert(u"Labels/a4-65-Right"_s, u"99999"_s);
    QCOMPARE(readLabelSetting(settings, labelPaper(u"a4-65"_s)), (LabelSetting{600, {100, 0}, {}}));
}

void LabelsPageTest::stepsAreTypedAndPressed()
{
    StepEntry steps(u"steps"_s, u"Steps"_s, 1);
    steps.setRange(-20, 20);
    steps.setValue(0);
    QList<int> told;
    connect(&steps, &StepEntry::changed, &steps, [&told](int value) { told << value; });
    steps.show();
    QLineEdit &entry = *steps.entry();
    QTest::keyClick(&entry, Qt::Key_Up);
    QCOMPARE(entry.text(), u"0.1"_s);
    QTest::keyClick(&entry, Qt::Key_Down);
    QTest::mouseClick(in<QPushButton>(steps, "stepsLess"), Qt::LeftButton);
    QCOMPARE(entry.text(), u"-0.1"_s);
    entry.selectAll();
    QTest::keyClicks(&entry, u"1,7"_s); // as much of Europe writes it
    QCOMPARE(steps.value(), 17);
    entry.selectAll();
    QTest::keyClicks(&entry, u"abc"_s);
    QTest::keyClick(&entry, Qt::Key_Return);
    QCOMPARE(entry.text(), u"1.7"_s);
    entry.selectAll();
    QTest::keyClicks(&entry, u"99"_s);
    QTest::keyClick(&entry, Qt::Key_Return);
    QCOMPARE(entry.text(), u"2.0"_s);
    QVERIFY(!in<QPushButton>(steps, "stepsMore")->isEnabled());
    QCOMPARE(told, (QList<int>{1, 0, -1, 10, 17, 20}));
}

void LabelsPageTest::everythingIsLargeEnoughForAThumbAndNamed()
{
    constexpr int touch = 44;
    const auto look = [](QWidget &window) {
        int seen = 0;
        for (const QWidget *widget : window.findChildren<QWidget *>()) {
            const bool isControl = widget->inherits("QAbstractButton") || widget->inherits("QComboBox") ||
                                   (widget->inherits("QLineEdit") && !widget->parentWidget()->inherits("QComboBox"));
            if (!isControl || !widget->isVisible())
                continue;
            ++seen;
            const auto *button = qobject_cast<const QAbstractButton *>(widget);
            const QString name = button != nullptr ? button->text() : widget->accessibleName();
            QVERIFY2(widget->height() >= touch && widget->width() >= touch, qPrintable(name));
            QVERIFY2(!name.isEmpty(), qPrintable(widget->objectName()));
            QVERIFY2(window.rect().contains(QRect(widget->mapTo(&window, QPoint()), widget->size())), qPrintable(name));
        }
        QVERIFY(seen > 4);
    };
    add(u"milk"_s);
    look(*m_page);
    QCOMPARE(m_page->size(), QSize(718, 440));
    pick(QString(), [&](QDialog &dialog) { look(dialog); });
    inNextDialog([&](QDialog &dialog) { look(dialog); });
    press("adjustLabels");
}

void LabelsPageTest::theListHasALimit()
{
    LabelList list;
    QList<LabelItem> items;
    for (int i = 0; i < 11; ++i)
        items << LabelItem{QString::number(i), u"ITEM"_s, u"1"_s, 1e12, {}};
    QVERIFY(!list.add(items.first(10), 0).isFull);
    QCOMPARE(list.labels(), 99'990);
    QVERIFY(list.add(items, 1).isFull);
    QCOMPARE(list.rows().size(), 10);
    list.setCount(3, 1);
    QCOMPARE(list.labels(), 99'990 - 9'998);
    list.setCount(3, 1'000'000);
    QCOMPARE(list.rows().at(3).count, 9'999);
    list.remove(0);
    QCOMPARE(list.labels(), 9 * 9'999);
    QCOMPARE(list.add(items.first(1), 7).labels, 7);
    QCOMPARE(list.rows().constLast().item.id, u"0"_s);
    QCOMPARE(list.add(items.last(1), 9'999).labels, 9'999);
    list.setCount(9, 9'999); // as many as there is room for
    QCOMPARE(list.labels(), LabelList::mostLabels);
    list.clear();
    QCOMPARE(list.labels(), 0);
}

void LabelsPageTest::longWorkIsShownAndCancelled()
{
    pick(u"milk"_s, [](QDialog &dialog) {
        in<QLineEdit>(dialog, "labelsOfEach")->setText({});
        QTest::keyClicks(in<QLineEdit>(dialog, "labelsOfEach"), u"9999"_s);
        QTest::mouseClick(in<QPushButton>(dialog, "addLabel"), Qt::LeftButton);
    });
    m_page->findChild<WorkStrip *>()->setDelay(0);
    press("saveLabels");
    QVERIFY(m_page->leaving());
    QTRY_VERIFY_WITH_TIMEOUT(part<QPushButton>("workCancel")->isVisible(), 30000);
    QVERIFY(!part<QPushButton>("printLabels")->isEnabled());
    press("workCancel");
    QTRY_COMPARE_WITH_TIMEOUT(outcome(), u"Cancelled: nothing was printed."_s, 30000);
    QVERIFY(!QFile::exists(m_path) && !m_page->leaving());
    QVERIFY(part<QPushButton>("printLabels")->isEnabled());
}

HARROWBY_TEST(app_labels_page_test, LabelsPageTest)
#include "labels_page_test.moc"
