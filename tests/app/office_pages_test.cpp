// SPDX-License-Identifier: MIT
#include "app/office/office_pages.h"
#include "app/office/office_window.h"
#include "tests/app/office_desk.h"
#include "tests/program/test_program.h"

#include <QAccessible>
#include <QCheckBox>
#include <QComboBox>
#include <QKeySequence>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;

/// How the office's pages are found: by the list at the side, by their letters, and by words.
class OfficePagesTest : public OfficeDesk
{
    Q_OBJECT

private Q_SLOTS:
    void pagesStandInTheirGroups();
    void pageIsBuiltWhenItIsTurnedTo();
    void stockRightSeesItsPages();
    void letterTurnsThePage();
    void arrowKeysTurnThePage();
    void wordsFindTheSetting_data();
    void wordsFindTheSetting();
    void everyPageIsFoundByItsTitle();
    void moreWordsLeadSomewhere();
    void arrowsChooseAmongWhatIsFound();
    void nothingFoundIsTold();
    void typingInTheListBeginsTheSearch();
    void narrowWindowShowsListOrPage();
    void foundRowsAreSpokenWhole();
    void enterPressesTheFocusedButtonAlone();
    void restoreEndsTheOffice();
    void rightTakenAwayCountsInAnOpenOffice();

private:
    [[nodiscard]] QString title() const { return part<QLabel>("officeTitle")->text(); }
    [[nodiscard]] QStringList rows() const;
    void open(const OfficeUser &user);
    void seek(const QString &words);
};

QStringList OfficePagesTest::rows() const
{
    const auto *list = part<QListWidget>("officePages");
    QStringList texts;
    for (int row = 0; row < list->count(); ++row)
        texts << list->item(row)->text();
    return texts;
}

void OfficePagesTest::open(const OfficeUser &user)
{
    const OfficeSettings settings = {[](const QString &, const QString &, const QString &usual) { return usual; }, {}};
    m_window = std::make_unique<OfficeWindow>(store(), settings, user);
    m_window->show();
}

/// By keys alone.
void OfficePagesTest::seek(const QString &words)
{
    m_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    QTest::keyClick(m_window.get(), Qt::Key_F, Qt::ControlModifier);
    QCOMPARE(m_window->focusWidget(), part<QLineEdit>("findSetting"));
    QTest::keyClicks(m_window->focusWidget(), words);
}

void OfficePagesTest::pagesStandInTheirGroups()
{
    QStringList expected;
    QStringList groups;
    for (const OfficePageEntry &entry : officePages()) {
        if (groups.isEmpty() || groups.constLast() != entry.group) {
            QVERIFY2(!groups.contains(entry.group), qPrintable(entry.group));
            groups << entry.group;
            expected << entry.group;
        }
        expected << entry.title();
    }
    QCOMPARE(rows(), expected);
    QCOMPARE(title(), u"Users"_s);
    QVERIFY(part<QLabel>("officeFoot")->text().startsWith(u"ADMINISTRATOR"_s));
}

void OfficePagesTest::pageIsBuiltWhenItIsTurnedTo()
{
    open(officeAdministrator());
    QVERIFY(builtPart<QPushButton>("addUser") != nullptr);
    QVERIFY(builtPart<QLineEdit>("receiptTitle") == nullptr);
    showPage(u"Receipt"_s);
    QVERIFY(builtPart<QLineEdit>("receiptTitle")->isVisible());
    QVERIFY(builtPart<QLineEdit>("drawerName") == nullptr);
    QVERIFY(!builtPart<QPushButton>("saveReceipt")->autoDefault());
}

void OfficePagesTest::stockRightSeesItsPages()
{
    open({u"ANNA"_s, false, true});
    const QStringList pages = m_window->pageTitles();
    QVERIFY(pages.contains(u"Codes"_s));
    for (const QString &page : {u"Users"_s, u"Cash"_s, u"Receipt"_s, u"Shop"_s, u"Backup"_s, u"Readers"_s})
        QVERIFY2(!pages.contains(page), qPrintable(page));
    QVERIFY(part<QLabel>("officeFoot")->text().startsWith(u"ANNA"_s));
    seek(u"drawer"_s);
    QCOMPARE(rows(), QStringList());
    QVERIFY(builtPart<QPushButton>("addUser") == nullptr);
    QVERIFY(builtPart<QLineEdit>("drawerName") == nullptr);
}

void OfficePagesTest::letterTurnsThePage()
{
    m_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    for (const OfficePageEntry &entry : officePages()) {
        const int key = QKeySequence::mnemonic(entry.caption)[0].key();
        QTest::keyClick(m_window->focusWidget(), static_cast<Qt::Key>(key), Qt::AltModifier);
        QCOMPARE(title(), entry.title());
        QVERIFY2(!part<QListWidget>("officePages")->hasFocus(), qPrintable(entry.title()));
    }
    QTest::keyClick(m_window.get(), Qt::Key_PageUp, Qt::ControlModifier);
    QCOMPARE(title(), m_window->pageTitles().at(m_window->pageTitles().size() - 2));
}

void OfficePagesTest::arrowKeysTurnThePage()
{
    auto *list = part<QListWidget>("officePages");
    const QStringList titles = m_window->pageTitles();
    list->setFocus();
    for (qsizetype i = 1; i < titles.size(); ++i) { // over the headings, too
        QTest::keyClick(list, Qt::Key_Down);
        QCOMPARE(title(), titles.at(i));
        QCOMPARE(m_window->focusWidget(), list);
    }
    QTest::keyClick(list, Qt::Key_Return);
    QVERIFY(!list->hasFocus());
}

void OfficePagesTest::wordsFindTheSetting_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("page");
    QTest::addColumn<QByteArray>("control");
    const auto row = [](const QString &typed, const QString &page, const char *control) {
        QTest::newRow(qPrintable(typed)) << typed << page << QByteArray(control);
    };
    row(u"drawer"_s, u"Cash"_s, "drawerName");
    row(u"DRAW"_s, u"Cash"_s, "drawerName");
    row(u"drawer plug"_s, u"Cash"_s, "drawerSettings");
    row(u"currency"_s, u"Receipt"_s, "receiptCurrency");
    row(u"password"_s, u"Users"_s, "changePassword");
    row(u"anywhere"_s, u"Shop"_s, "searchAnywhere");
    row(u"receipt title"_s, u"Receipt"_s, "receiptTitle");
    row(u"scale price"_s, u"Codes"_s, "inStoreCodes");
    row(u"undo"_s, u"Users"_s, "InventoryUndo");
    row(u"prefix"_s, u"Readers"_s, "readerPrefix");
}

void OfficePagesTest::wordsFindTheSetting()
{
    QFETCH(const QString, typed);
    QFETCH(const QString, page);
    QFETCH(const QByteArray, control);
    choose(u"ANNA"_s); // whose rights can be switched
    seek(typed);
    QTest::keyClick(m_window->focusWidget(), Qt::Key_Return);
    QCOMPARE(title(), page);
    QCOMPARE(m_window->focusWidget(), part<QWidget>(control.constData()));
    QVERIFY(part<QWidget>(control.constData())->isVisible());
    QCOMPARE(part<QLineEdit>("findSetting")->text(), QString());
    QVERIFY(rows().contains(u"Users"_s)); // the pages again
}

void OfficePagesTest::everyPageIsFoundByItsTitle()
{
    for (const OfficePageEntry &entry : officePages()) {
        QVERIFY2(!entry.about.isEmpty(), qPrintable(entry.title()));
        seek(entry.title());
        QCOMPARE(rows().value(0), entry.title());
        QTest::keyClick(m_window->focusWidget(), Qt::Key_Return);
        QCOMPARE(title(), entry.title());
    }
}

void OfficePagesTest::moreWordsLeadSomewhere()
{
    m_window->buildPages();
    for (const OfficePageEntry &entry : officePages()) {
        for (const MoreWords &more : entry.words) {
            QVERIFY2(!more.words.isEmpty(), qPrintable(entry.title()));
            QVERIFY2(more.control.isEmpty() || m_window->findChild<QWidget *>(more.control) != nullptr,
                     qPrintable(more.control));
        }
    }
}

void OfficePagesTest::arrowsChooseAmongWhatIsFound()
{
    seek(u"save"_s);
    auto *list = part<QListWidget>("officePages");
    QVERIFY(list->count() > 1);
    QCOMPARE(part<QLabel>("foundCount")->text(), u"%1 places"_s.arg(list->count()));
    const QString before = title();
    QTest::keyClick(m_window->focusWidget(), Qt::Key_Down);
    QCOMPARE(list->currentRow(), 1);
    QCOMPARE(title(), before); // not yet
    QTest::keyClick(m_window->focusWidget(), Qt::Key_Escape);
    QVERIFY(m_window->isVisible());
    QCOMPARE(part<QLineEdit>("findSetting")->text(), QString());
    QCOMPARE(title(), before);
    QTest::keyClick(m_window->focusWidget(), Qt::Key_Escape);
    QVERIFY(!m_window->isVisible());
}

void OfficePagesTest::nothingFoundIsTold()
{
    seek(u"zebra"_s);
    QCOMPARE(rows(), QStringList());
    QVERIFY(part<QLabel>("foundCount")->isVisible());
    QCOMPARE(part<QLabel>("foundCount")->text(), u"Nothing has these words."_s);
    QTest::keyClick(m_window->focusWidget(), Qt::Key_Return);
    QVERIFY(m_window->isVisible());
}

void OfficePagesTest::typingInTheListBeginsTheSearch()
{
    m_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    part<QListWidget>("officePages")->setFocus();
    QTest::keyClick(m_window->focusWidget(), Qt::Key_N);
    QTest::keyClicks(m_window->focusWidget(), u"otes"_s);
    QCOMPARE(part<QLineEdit>("findSetting")->text(), u"notes"_s);
    auto *list = part<QListWidget>("officePages");
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(list->item(0)).center());
    QCOMPARE(m_window->focusWidget(), part<QLineEdit>("cashNotes"));
}

void OfficePagesTest::narrowWindowShowsListOrPage()
{
    m_window->resize(800, 576);
    auto *list = part<QListWidget>("officePages");
    auto *close = part<QPushButton>("closeOffice");
    QVERIFY(!list->isVisible() && close->isVisible());
    press("officeMenu");
    QVERIFY(list->isVisible() && !close->isVisible());
    QCOMPARE(m_window->focusWidget(), list);
    QTest::keyClick(list, Qt::Key_Escape);
    QVERIFY(!list->isVisible() && close->isVisible());
    press("officeMenu");
    const auto receipt = list->findItems(u"Receipt"_s, Qt::MatchExactly).constFirst();
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(receipt).center());
    QCOMPARE(title(), u"Receipt"_s);
    QVERIFY(!list->isVisible() && close->isVisible());
    QCOMPARE(m_window->focusWidget(), part<QPushButton>("officeMenu")); // no entry, and no keyboard for it
    seek(u"drawer"_s);
    QVERIFY(list->isVisible());
    QTest::keyClick(m_window->focusWidget(), Qt::Key_Return);
    QVERIFY(!list->isVisible());
    QCOMPARE(m_window->focusWidget(), part<QLineEdit>("drawerName"));
    m_window->resize(1000, 600);
    QVERIFY(list->isVisible() && close->isVisible() && !part<QPushButton>("officeMenu")->isVisible());
}

void OfficePagesTest::foundRowsAreSpokenWhole()
{
    seek(u"drawer name"_s);
    auto *list = part<QListWidget>("officePages");
    auto *spoken = QAccessible::queryAccessibleInterface(list);
    QCOMPARE(spoken->text(QAccessible::Name), u"Pages"_s);
    QCOMPARE(spoken->child(0)->text(QAccessible::Name), u"Name of the drawer, Cash"_s);
    QVERIFY(!QAccessible::queryAccessibleInterface(part<QLineEdit>("findSetting"))->text(QAccessible::Name).isEmpty());
}

void OfficePagesTest::enterPressesTheFocusedButtonAlone()
{
    m_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    showPage(u"Receipt"_s);
    auto *title = part<QLineEdit>("receiptTitle");
    title->setText(u"Corner Shop"_s);
    part<QCheckBox>("emailReport")->setFocus();
    QTest::keyClick(m_window->focusWidget(), Qt::Key_Return);
    QVERIFY(m_saved.isEmpty());
    part<QPushButton>("saveReceipt")->setFocus();
    QTest::keyClick(m_window->focusWidget(), Qt::Key_Return);
    QCOMPARE(m_saved.value(u"option/Title"_s), u"Corner Shop"_s);
    QVERIFY(m_window->isVisible());
}

void OfficePagesTest::restoreEndsTheOffice()
{
    auto *page = m_window->findChild<OfficePage *>();
    part<QLineEdit>("receiptTitle")->setText(u"Not saved"_s);
    Q_EMIT page->restoreAsked(u"/a/backup.db"_s);
    answerNextBox(QMessageBox::RejectRole);
    QTRY_VERIFY(m_boxText.contains(u"not saved"_s));
    QVERIFY(m_window->isVisible());
    QCOMPARE(m_window->askedRestore(), QString());
    Q_EMIT page->restoreAsked(u"/a/backup.db"_s);
    answerNextBox(QMessageBox::AcceptRole);
    QTRY_VERIFY(!m_window->isVisible());
    QCOMPARE(m_window->askedRestore(), u"/a/backup.db"_s);
}

void OfficePagesTest::rightTakenAwayCountsInAnOpenOffice()
{
    open({u"ANNA"_s, false, true}); // who has it in the store no more
    showPage(u"Catalogue"_s);
    press("beginExport");
    press("exportNow");
    const QString told = part<QLabel>("exportOutcome")->text();
    QVERIFY2(told.contains(u"The right \"Stock\" was taken away from ANNA"_s), qPrintable(told));
    open(officeAdministrator());
    runAll(m_path, {u"UPDATE Users SET Username = 'BOSS' WHERE Username = 'ADMINISTRATOR'"_s});
    Q_EMIT m_window->findChild<OfficePage *>()->restoreAsked(u"/a/backup.db"_s);
    answerNextBox(QMessageBox::AcceptRole);
    QTRY_VERIFY2(m_boxText.startsWith(u"ADMINISTRATOR can no longer log in"_s), qPrintable(m_boxText));
    QVERIFY(m_window->isVisible());
    QCOMPARE(m_window->askedRestore(), QString());
}

HARROWBY_TEST(app_office_pages_test, OfficePagesTest)
#include "office_pages_test.moc"
