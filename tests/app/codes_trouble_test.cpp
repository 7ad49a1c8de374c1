// SPDX-License-Identifier: MIT
#include "app/records/shop_settings.h"
#include "tests/app/codes_desk.h"
#include "tests/program/test_program.h"

#include <QApplication>
#include <QCheckBox>
#include <QDialog>
#include <QInputDialog>
#include <QLineEdit>
#include <QPointer>
#include <QRegularExpression>
#include <QTimer>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;

/// The office's page of codes when a statement fails, or a code is an odd one.
class CodesTroubleTest : public CodesDesk
{
    Q_OBJECT

private Q_SLOTS:
    void everyStatementMayFail_data();
    void everyStatementMayFail();
    void oddCodesAreRefusedOrAdded_data();
    void oddCodesAreRefusedOrAdded();

private:
    void addCode(QDialog &dialog, const QString &code);
    void switchRules(QDialog &dialog);
    void meetDialogs(const QString &deed, QObject &until, QStringList &told);
    QStringList goThrough(const QString &deed);
    [[nodiscard]] static bool answer(QDialog &dialog);
};

void CodesTroubleTest::addCode(QDialog &dialog, const QString &code)
{
    auto *item = in<QLineEdit>(dialog, "itemEntry");
    item->setText(u"mil"_s);
    QTest::keyClick(item, Qt::Key_Return);
    if (auto *entry = in<QLineEdit>(dialog, "newCode"))
        entry->setText(code);
    QTest::mouseClick(in<QPushButton>(dialog, "codeAction"), Qt::LeftButton);
}

void CodesTroubleTest::switchRules(QDialog &dialog)
{
    for (const bool on : {true, false}) {
        in<QCheckBox>(dialog, "inStoreOn")->setChecked(on);
        QTest::mouseClick(in<QPushButton>(dialog, "saveInStore"), Qt::LeftButton);
    }
}

/// A box or the question for the units; false for a dialog of the page's own.
bool CodesTroubleTest::answer(QDialog &dialog)
{
    if (auto *units = qobject_cast<QInputDialog *>(&dialog)) {
        units->setTextValue(u"24"_s);
        units->accept();
    } else if (auto *box = qobject_cast<QMessageBox *>(&dialog)) {
        const QList<QAbstractButton *> buttons = box->buttons();
        const auto agrees = [box](QAbstractButton *button) {
            return box->buttonRole(button) == QMessageBox::AcceptRole;
        };
        (*std::find_if(buttons.begin(), buttons.end(), agrees))->click();
    } else {
        return false;
    }
    return true;
}

/// Meets one dialog after the other, also one that comes up while another one is used.
void CodesTroubleTest::meetDialogs(const QString &deed, QObject &until, QStringList &told)
{
    QTimer::singleShot(0, &until, [this, deed, &until, &told] {
        meetDialogs(deed, until, told);
        const QPointer<QDialog> dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
        if (!dialog || dialog->property("met").toBool())
            return;
        dialog->setProperty("met", true);
        const auto read = [&] {
            for (const QLabel *label : dialog ? dialog->findChildren<QLabel *>() : QList<QLabel *>())
                told << label->text();
        };
        read();
        if (answer(*dialog))
            return;
        deed == u"inStoreCodes"_s ? switchRules(*dialog) : addCode(*dialog, u"NEW"_s);
        read();
        if (dialog)
            dialog->reject();
    });
}

/// Does it, with whatever is asked, and reads what is told.
QStringList CodesTroubleTest::goThrough(const QString &deed)
{
    QStringList told;
    QObject end;
    meetDialogs(deed, end, told);
    if (deed == u"read"_s) {
        m_window->hide();
        m_window->show();
    } else {
        press(qPrintable(deed));
    }
    return told << outcome();
}

void CodesTroubleTest::everyStatementMayFail_data()
{
    QTest::addColumn<QString>("deed");
    for (const char *deed : {"read", "addCodes", "changeUnits", "giveCode", "deleteCode", "inStoreCodes"})
        QTest::newRow(deed) << QString::fromLatin1(deed);
}

/// Each is told where a person sees it, and the codes stay.
void CodesTroubleTest::everyStatementMayFail()
{
    QFETCH(const QString, deed);
    m_fussy->countsLooks = true;
    QVERIFY(!ShopSettings(*m_records).save(u"InStoreCode.02"_s, u"02IIIIIPPPPPC 2"_s));
    const QString codes = u"select group_concat(Code || StockID || Units, ' ') from HarrowbyCode"_s;
    const QString before = read(codes);
    int statements = 0;
    for (;; ++statements) {
        QVERIFY(statements < 40);
        choose(deed == u"giveCode"_s ? u"GONE"_s : u"CASE"_s);
        m_fussy->texts.clear();
        m_fussy->failAt = statements;
        const QString told = goThrough(deed).join(u'|');
        m_fussy->failAt = -1;
        if (m_fussy->texts.size() <= statements)
            break; // it has fewer
        const QString at = m_fussy->texts.at(statements);
        const bool isTold = told.contains(QRegularExpression(u"could not be read|was not |were not "_s));
        QVERIFY2(isTold || at.startsWith(u"look for"_s), qPrintable(at + u": "_s + told));
        if (isTold && !at.startsWith(u"select"_s) && !at.startsWith(u"look for"_s))
            QCOMPARE(read(codes), before);
        QVERIFY(!runSql(m_shop->file(), u"delete from HarrowbyCode"_s));
        QVERIFY(!runSql(m_shop->file(), u"insert into HarrowbyCode values ('036000291452', 'TEA-0001', 1), ('CASE', "
                                        "'TEA-0001', 12), ('GONE', 'BUT-0001', 1)"_s));
        goThrough(u"read"_s);
    }
    QVERIFY(statements > 1);
}

void CodesTroubleTest::oddCodesAreRefusedOrAdded_data()
{
    QTest::addColumn<QString>("odd");
    QTest::addColumn<bool>("isCode");
    for (const QString &code : {u"x' or 'a'='a"_s, u"'; drop table StockList; --"_s, u"%"_s, u"*"_s})
        QTest::newRow(qPrintable(code)) << code << true;
    QTest::newRow("NUL") << u"A"_s + QChar(u'\0') + u"B"_s << false;
    QTest::newRow("ten thousand") << QString(10'000, u'9') << false;
    QTest::newRow("right to left") << u"\u202eABC"_s << false;
    QTest::newRow("mark behind") << u"ABC\u200f"_s << false;
}

/// Typed or scanned into the dialog.
void CodesTroubleTest::oddCodesAreRefusedOrAdded()
{
    QFETCH(const QString, odd);
    QFETCH(const bool, isCode);
    QString said;
    inNextDialog([&](QDialog &dialog) {
        addCode(dialog, odd);
        said = in<QLabel>(dialog, "codeOutcome")->text();
    });
    press("addCodes");
    QVERIFY2(said.startsWith(isCode ? u"Added: "_s : u"\u26a0 This is no code: "_s), qPrintable(said));
    QCOMPARE(listed().size(), isCode ? 4 : 3);
    QCOMPARE(listed().contains(odd + u" MILK 1"_s), isCode);
    QCOMPARE(read(u"select count(*) from StockList"_s), u"2"_s);
    in<QLineEdit>(*m_window, "findCode")->setText(odd);
    QCOMPARE(listed().size(), isCode ? 1 : 0);
}

HARROWBY_TEST(app_codes_trouble_test, CodesTroubleTest)
#include "codes_trouble_test.moc"
