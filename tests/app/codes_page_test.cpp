// SPDX-License-Identifier: MIT
#include "app/codes/code_finder.h"
#include "tables/table_view.h"
#include "tests/app/codes_desk.h"
#include "tests/program/test_program.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;

class CodesPageTest : public CodesDesk
{
    Q_OBJECT

private Q_SLOTS:
    void codesAreListed();
    void listIsSearched();
    void codeIsScannedIn();
    void takenCodeIsRefusedByName();
    void itemIsPickedFirst();
    void unitsAreChanged();
    void unitsThatAreNoneAreTold();
    void codeIsDeletedAfterAQuestion();
    void orphanIsGivenToAnItem();
    void failureIsToldAndNothingChanged();
    void ruleIsSwitchedOnAndOff();
    void wrongPatternIsNotSaved();
    void everythingIsLargeEnoughForAThumbAndNamed();
};

void CodesPageTest::codesAreListed()
{
    QCOMPARE(listed(), (QStringList{u"GONE (the item is gone) 1"_s, u"036000291452 TEA 1"_s, u"CASE TEA 12"_s}));
    QCOMPARE(in<QLabel>(*m_window, "codesCount")->text(), u"3 codes, 1 of items that are gone"_s);
    for (const char *name : {"changeUnits", "giveCode", "deleteCode"})
        QVERIFY(!in<QPushButton>(*m_window, name)->isEnabled());
    choose(u"CASE"_s);
    for (const char *name : {"changeUnits", "giveCode", "deleteCode"})
        QVERIFY(in<QPushButton>(*m_window, name)->isEnabled());
}

void CodesPageTest::listIsSearched()
{
    auto *search = in<QLineEdit>(*m_window, "findCode");
    search->setText(u"case"_s);
    QCOMPARE(listed(), QStringList{u"CASE TEA 12"_s});
    search->setText(u" tea-00"_s);
    QCOMPARE(listed().size(), 2);
    search->setText(u"%"_s);
    QCOMPARE(listed(), QStringList());
    search->clear();
    QCOMPARE(listed().size(), 3);
}

void CodesPageTest::codeIsScannedIn()
{
    QString said;
    inNextDialog([&](QDialog &dialog) {
        in<QLineEdit>(dialog, "itemEntry")->setText(u"mil"_s);
        QTest::keyClick(in<QLineEdit>(dialog, "itemEntry"), Qt::Key_Return);
        QCOMPARE(in<QListWidget>(dialog, "itemList")->currentItem()->text(), u"MILK (MIL-0001)"_s);
        auto *code = in<QLineEdit>(dialog, "newCode");
        QTest::keyClicks(code, u"4006381333931"_s);
        QTest::keyClick(code, Qt::Key_Return); // as a reader ends it
        said = in<QLabel>(dialog, "codeOutcome")->text();
        QVERIFY(dialog.isVisible()); // for the next one
        QCOMPARE(code->text(), QString());
        in<QLineEdit>(dialog, "newUnits")->setText(u"6"_s);
        QTest::keyClicks(code, u"SIX"_s);
        QTest::mouseClick(in<QPushButton>(dialog, "codeAction"), Qt::LeftButton);
    });
    press("addCodes");
    QCOMPARE(said, u"Added: 4006381333931 to MILK (MIL-0001)."_s);
    QCOMPARE(CodeFinder(*m_records).find(u"SIX"_s).units, 6);
    QCOMPARE(listed().size(), 5);
}

void CodesPageTest::takenCodeIsRefusedByName()
{
    QString said;
    inNextDialog([&](QDialog &dialog) {
        in<QLineEdit>(dialog, "itemEntry")->setText(u"MIL-0001"_s);
        QTest::keyClick(in<QLineEdit>(dialog, "itemEntry"), Qt::Key_Return);
        auto *code = in<QLineEdit>(dialog, "newCode");
        QTest::keyClicks(code, u"0036000291452"_s); // as another reader writes it
        QTest::keyClick(code, Qt::Key_Return);
        said = in<QLabel>(dialog, "codeOutcome")->text();
        QCOMPARE(code->selectedText(), u"0036000291452"_s); // the next scan replaces it
    });
    press("addCodes");
    QCOMPARE(said, u"\u26a0 The code is taken: it belongs to TEA (TEA-0001)."_s);
    QCOMPARE(listed().size(), 3);
}

void CodesPageTest::itemIsPickedFirst()
{
    QString said;
    inNextDialog([&](QDialog &dialog) {
        in<QLineEdit>(dialog, "newCode")->setText(u"X"_s);
        QTest::mouseClick(in<QPushButton>(dialog, "codeAction"), Qt::LeftButton);
        said = in<QLabel>(dialog, "codeOutcome")->text();
        in<QLineEdit>(dialog, "itemEntry")->setText(u"nothing of this name"_s);
        QTRY_COMPARE(in<QLabel>(dialog, "itemsFound")->text(), u"No item has this in its name or ID."_s);
    });
    press("addCodes");
    QCOMPARE(said, u"\u26a0 Pick the item first."_s);
}

void CodesPageTest::unitsAreChanged()
{
    choose(u"CASE"_s);
    QTimer::singleShot(0, this, [] {
        auto *dialog = qobject_cast<QInputDialog *>(QApplication::activeModalWidget());
        QVERIFY(dialog);
        QCOMPARE(dialog->textValue(), u"12"_s);
        dialog->setTextValue(u"24"_s);
        dialog->accept();
    });
    press("changeUnits");
    QCOMPARE(outcome(), u"Saved: one scan of CASE sells 24."_s);
    QVERIFY(listed().contains(u"CASE TEA 24"_s));
}

void CodesPageTest::unitsThatAreNoneAreTold()
{
    choose(u"CASE"_s);
    QTimer::singleShot(0, this, [this] {
        answerNextBox(QMessageBox::AcceptRole);
        auto *dialog = qobject_cast<QInputDialog *>(QApplication::activeModalWidget());
        QVERIFY(dialog);
        dialog->setTextValue(u"1.5"_s);
        dialog->accept();
    });
    press("changeUnits");
    QTRY_COMPARE(m_boxText, u"A scan can sell 1 to 32767 units."_s);
    QVERIFY(listed().contains(u"CASE TEA 12"_s));
}

void CodesPageTest::codeIsDeletedAfterAQuestion()
{
    choose(u"CASE"_s);
    answerNextBox(QMessageBox::RejectRole);
    press("deleteCode");
    QCOMPARE(m_boxText, u"Delete the code CASE of TEA (TEA-0001)?"_s);
    QCOMPARE(listed().size(), 3);
    choose(u"CASE"_s);
    answerNextBox(QMessageBox::AcceptRole);
    press("deleteCode");
    QCOMPARE(listed().size(), 2);
    QCOMPARE(outcome(), u"Deleted: CASE."_s);
}

void CodesPageTest::orphanIsGivenToAnItem()
{
    choose(u"GONE"_s);
    inNextDialog([&](QDialog &dialog) {
        QVERIFY(!in<QLineEdit>(dialog, "newCode"));
        in<QLineEdit>(dialog, "itemEntry")->setText(u"milk"_s);
        QTest::keyClick(in<QLineEdit>(dialog, "itemEntry"), Qt::Key_Return);
        QTest::mouseClick(in<QPushButton>(dialog, "codeAction"), Qt::LeftButton);
        QVERIFY(!dialog.isVisible());
    });
    press("giveCode");
    QCOMPARE(CodeFinder(*m_records).find(u"GONE"_s).name, u"MILK"_s);
    QVERIFY(listed().contains(u"GONE MILK 1"_s));
}

void CodesPageTest::failureIsToldAndNothingChanged()
{
    choose(u"CASE"_s);
    m_shop->refuseWritesTo(u"HarrowbyCode"_s);
    QTimer::singleShot(0, this, [this] {
        answerNextBox(QMessageBox::AcceptRole); // what is told, after the question
        auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        QVERIFY(box);
        for (QAbstractButton *button : box->buttons()) {
            if (box->buttonRole(button) == QMessageBox::AcceptRole)
                return button->click();
        }
    });
    press("deleteCode");
    QTRY_VERIFY(m_boxText.startsWith(u"The code was not deleted.\n"_s));
    QCOMPARE(listed().size(), 3);
}

void CodesPageTest::ruleIsSwitchedOnAndOff()
{
    const QString stored = u"select Value from HarrowbySetting where Name = 'InStoreCode.21'"_s;
    inNextDialog([&](QDialog &dialog) {
        auto *prefix = in<QComboBox>(dialog, "inStorePrefix");
        QCOMPARE(prefix->count(), 11);
        prefix->setCurrentIndex(prefix->findData(u"21"_s));
        Q_EMIT prefix->activated(prefix->currentIndex());
        QVERIFY(!in<QCheckBox>(dialog, "inStoreOn")->isChecked());
        QVERIFY(!in<QLineEdit>(dialog, "inStorePattern")->isEnabled());
        in<QCheckBox>(dialog, "inStoreOn")->setChecked(true);
        in<QLineEdit>(dialog, "inStoreSample")->setText(u"2112345019994"_s);
        QCOMPARE(in<QLabel>(dialog, "inStoreReading")->text(), u"Item number 12345, price 19.99"_s);
        QTest::mouseClick(in<QPushButton>(dialog, "saveInStore"), Qt::LeftButton);
        QCOMPARE(read(stored), u"21IIIIIPPPPPC 2"_s);
        QCOMPARE(prefix->currentText(), u"21 (price)"_s);
        in<QCheckBox>(dialog, "inStoreOn")->setChecked(false);
        QTest::mouseClick(in<QPushButton>(dialog, "saveInStore"), Qt::LeftButton);
        QCOMPARE(read(stored), QString());
        QCOMPARE(in<QLabel>(dialog, "inStoreOutcome")->text(), u"Saved: nothing is read from these codes."_s);
    });
    press("inStoreCodes");
}

void CodesPageTest::wrongPatternIsNotSaved()
{
    inNextDialog([&](QDialog &dialog) {
        in<QCheckBox>(dialog, "inStoreOn")->setChecked(true);
        in<QLineEdit>(dialog, "inStorePattern")->setText(u"21IIIIIPPPPPC"_s); // of another prefix
        QTest::mouseClick(in<QPushButton>(dialog, "saveInStore"), Qt::LeftButton);
        QCOMPARE(in<QLabel>(dialog, "inStoreOutcome")->text(), u"\u26a0 The pattern of these codes begins with 02."_s);
        in<QLineEdit>(dialog, "inStorePattern")->setText(u"02IIIII"_s);
        QCOMPARE(in<QLabel>(dialog, "inStoreReading")->text(), u"\u26a0 A pattern has 13 signs."_s);
    });
    press("inStoreCodes");
    QCOMPARE(read(u"select count(*) from sqlite_master where name = 'HarrowbySetting'"_s), u"0"_s);
}

void CodesPageTest::everythingIsLargeEnoughForAThumbAndNamed()
{
    const auto check = [](QWidget &window) {
        for (QWidget *control : window.findChildren<QWidget *>()) {
            const bool isTouched = qobject_cast<QPushButton *>(control) || qobject_cast<QLineEdit *>(control) ||
                                   qobject_cast<QComboBox *>(control) || qobject_cast<QCheckBox *>(control);
            const bool isPart = control->objectName().startsWith(u"qt_"_s);
            if (!isTouched || isPart || !control->isVisible())
                continue;
            QVERIFY2(control->height() >= 44, qPrintable(control->objectName()));
            const auto *button = qobject_cast<QAbstractButton *>(control);
            QVERIFY2(button != nullptr || !control->accessibleName().isEmpty(), qPrintable(control->objectName()));
            QVERIFY2(control->focusPolicy() & Qt::TabFocus, qPrintable(control->objectName()));
        }
        QVERIFY2(window.minimumSizeHint().width() <= 760,
                 qPrintable(QString::number(window.minimumSizeHint().width())));
    };
    check(*m_window);
    inNextDialog(check);
    press("addCodes");
    inNextDialog(check);
    press("inStoreCodes");
}

HARROWBY_TEST(app_codes_page_test, CodesPageTest)
#include "codes_page_test.moc"
