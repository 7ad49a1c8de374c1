// SPDX-License-Identifier: MIT
#include "app/office/office_window.h"
#include "app/office/user_rules.h"
#include "app/shop/store_access.h"
#include "tests/app/office_desk.h"
#include "tests/app/store_files.h"
#include "tests/program/test_program.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QHash>
#include <QKeySequence>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QWheelEvent>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;

class OfficeWindowTest : public OfficeDesk
{
    Q_OBJECT

private Q_SLOTS:
    void openStoreIsToldAndClosed();
    void usersAreListed();
    void usersBeforeADamagedRowAreListed();
    void rightIsSwitchedAndStored();
    void failedSwitchShowsWhatIsStored();
    void administratorIsLocked();
    void userIsAdded();
    void takenNameKeepsTheDialogOpen();
    void passwordIsChanged();
    void typeIsChanged();
    void strangeTypeStays();
    void receiptIsSaved();
    void longTitleIsNotSaved();
    void unsavedReceiptIsAskedAbout();
    void searchIsSwitched();
    void failedSwitchOfTheSearchIsTold();
    void wheelTurnsNoPage();
    void wheelChangesNoType();
    void everythingIsLargeEnoughForAThumbAndNamed();
    void noLetterStandsForTwoThings();
    void fitsASmallScreen();
};

void OfficeWindowTest::openStoreIsToldAndClosed()
{
    QVERIFY(!part<QLabel>("storeAccess")->isVisible());
    QVERIFY(QFile::setPermissions(m_path, QFile::Permissions(0x6644)));
    m_window = std::make_unique<OfficeWindow>(
        store(), OfficeSettings{[](const QString &, const QString &, const QString &usual) { return usual; }, {}},
        officeAdministrator());
    m_window->show();
    QVERIFY(part<QLabel>("storeAccess")->isVisible());
    answerNextBox(QMessageBox::RejectRole);
    press("closeStoreAccess");
    QVERIFY(m_boxText.contains(u"Close it to others?"_s));
    QVERIFY(isOpenToOthers(m_path));
    answerNextBox(QMessageBox::AcceptRole);
    press("closeStoreAccess");
    QVERIFY(!isOpenToOthers(m_path));
    QVERIFY(part<QLabel>("storeAccess")->text().contains(u"Only you"_s));
    QVERIFY(!part<QPushButton>("closeStoreAccess")->isVisible());
}

void OfficeWindowTest::usersAreListed()
{
    const auto *list = part<QListWidget>("users");
    QCOMPARE(list->count(), 3);
    QCOMPARE(list->item(0)->text(), u"ADMINISTRATOR\nADMINISTRATOR"_s);
    QCOMPARE(list->item(1)->text(), u"ANNA\nSTAFF"_s);
    QCOMPARE(list->item(2)->text(), u"BOB\nOWNER \u2013 may not use the till"_s);
}

void OfficeWindowTest::usersBeforeADamagedRowAreListed()
{
    m_window.reset();
    m_shop.reset();
    loseIndexedRows(m_path, u"harrowby_user_name"_s, u"Users WHERE Username = 'BOB'"_s);
    m_shop = std::make_unique<OpenShop>(m_path);
    const OfficeSettings settings = {[](const QString &, const QString &, const QString &usual) { return usual; }, {}};
    m_window = std::make_unique<OfficeWindow>(store(), settings, officeAdministrator());
    QCOMPARE(part<QListWidget>("users")->count(), 2);
    QVERIFY(part<QLabel>("usersOutcome")->text().contains(u"could not be read"_s));
}

void OfficeWindowTest::rightIsSwitchedAndStored()
{
    choose(u"ANNA"_s);
    QVERIFY(part<QCheckBox>("InventoryUse")->isChecked());
    QVERIFY(!part<QCheckBox>("InventorySales")->isChecked());
    part<QCheckBox>("InventorySales")->click();
    QCOMPARE(read(u"SELECT InventorySales FROM Users WHERE Username = 'ANNA'"_s), u"-1"_s);
    QVERIFY(part<QLabel>("usersOutcome")->text().contains(u"ANNA now has the right"_s));
    part<QCheckBox>("InventoryUse")->click();
    QCOMPARE(read(u"SELECT InventoryUse FROM Users WHERE Username = 'ANNA'"_s), u"0"_s);
    QCOMPARE(part<QLabel>("chosenUser")->text(), u"ANNA"_s);
    QVERIFY(part<QListWidget>("users")->currentItem()->text().contains(u"may not use the till"_s));
}

void OfficeWindowTest::failedSwitchShowsWhatIsStored()
{
    choose(u"ANNA"_s);
    SqliteDatabase other;
    QVERIFY(!into(other, openDatabase(m_path, OpenMode::Write)));
    QVERIFY(!runSql(other.get(), u"BEGIN IMMEDIATE"_s));
    answerNextBox(QMessageBox::AcceptRole);
    part<QCheckBox>("InventorySales")->click();
    QVERIFY2(m_boxText.contains(u"locked"_s), qPrintable(m_boxText));
    QVERIFY(!part<QCheckBox>("InventorySales")->isChecked());
}

void OfficeWindowTest::administratorIsLocked()
{
    choose(u"ADMINISTRATOR"_s);
    for (const Right &right : userRights()) {
        const auto *box = m_window->findChild<QCheckBox *>(right.column);
        QVERIFY(box->isChecked() && !box->isEnabled());
        QVERIFY(box->text().replace(u'\n', u' ').contains(right.words));
    }
    QVERIFY(!part<QComboBox>("chosenType")->isEnabled());
    QVERIFY(part<QPushButton>("changePassword")->isEnabled());
    choose(u"BOB"_s);
    QVERIFY(part<QCheckBox>("InventoryUse")->isEnabled() && !part<QCheckBox>("InventoryUse")->isChecked());
}

void OfficeWindowTest::userIsAdded()
{
    inNextDialog([](QDialog &dialog) {
        enter(dialog, "userName", u" clara "_s);
        enter(dialog, "userPassword", u"key"_s);
        enter(dialog, "userPasswordAgain", u"KEY"_s);
        auto *type = dialog.findChild<QComboBox *>(u"userType"_s);
        type->setCurrentIndex(type->findData(u"MANAGER"_s));
        accept(dialog);
    });
    press("addUser");
    QCOMPARE(read(u"SELECT Username || Password || Type || InventoryUse || InventoryReorder FROM Users "
                  "WHERE Username = 'CLARA'"_s),
             u"CLARAKEYMANAGER-1-1"_s);
    QCOMPARE(part<QLabel>("chosenUser")->text(), u"CLARA"_s);
    QVERIFY(part<QLabel>("usersOutcome")->text().startsWith(u"CLARA was added."_s));
}

void OfficeWindowTest::takenNameKeepsTheDialogOpen()
{
    bool open = false;
    QString said;
    inNextDialog([&](QDialog &dialog) {
        enter(dialog, "userName", u"anna"_s);
        enter(dialog, "userPassword", u"key"_s);
        enter(dialog, "userPasswordAgain", u"kay"_s);
        accept(dialog);
        QVERIFY(dialog.findChild<QLabel *>(u"problem"_s)->text().contains(u"differ"_s));
        enter(dialog, "userPasswordAgain", u"key"_s);
        accept(dialog);
        open = dialog.isVisible();
        said = dialog.findChild<QLabel *>(u"problem"_s)->text();
        dialog.reject();
    });
    press("addUser");
    QVERIFY(open);
    QVERIFY2(said.contains(u"There is a user \"ANNA\" already"_s), qPrintable(said));
    QCOMPARE(read(u"SELECT count(*) FROM Users"_s), u"3"_s);
}

void OfficeWindowTest::passwordIsChanged()
{
    choose(u"ANNA"_s);
    inNextDialog([](QDialog &dialog) {
        QVERIFY(dialog.findChild<QLineEdit *>(u"userName"_s) == nullptr);
        enter(dialog, "userPassword", u"new"_s);
        enter(dialog, "userPasswordAgain", u"new"_s);
        accept(dialog);
    });
    press("changePassword");
    QCOMPARE(column(m_path, u"SELECT Username || Password FROM Users ORDER BY Username"_s),
             (QStringList{u"ADMINISTRATORSECRET"_s, u"ANNANEW"_s, u"BOBP"_s}));
    QVERIFY(part<QLabel>("usersOutcome")->text().contains(u"password of ANNA"_s));
}

void OfficeWindowTest::typeIsChanged()
{
    choose(u"ANNA"_s);
    auto *type = part<QComboBox>("chosenType");
    QCOMPARE(type->currentData().toString(), u"STAFF"_s);
    type->setCurrentIndex(type->findData(u"VIEWER"_s));
    Q_EMIT type->activated(type->currentIndex());
    QCOMPARE(read(u"SELECT Type FROM Users WHERE Username = 'ANNA'"_s), u"VIEWER"_s);
    QVERIFY(part<QListWidget>("users")->currentItem()->text().contains(u"cannot log in"_s));
}

void OfficeWindowTest::strangeTypeStays()
{
    choose(u"BOB"_s);
    QCOMPARE(part<QComboBox>("chosenType")->currentData().toString(), u"OWNER"_s);
    choose(u"ANNA"_s);
    QCOMPARE(part<QComboBox>("chosenType")->findData(u"OWNER"_s), -1);
    QCOMPARE(read(u"SELECT Type FROM Users WHERE Username = 'BOB'"_s), u"OWNER"_s);
}

void OfficeWindowTest::receiptIsSaved()
{
    part<QLineEdit>("receiptTitle")->setText(u"Corner Shop"_s);
    part<QCheckBox>("emailReport")->click();
    press("saveReceipt");
    QCOMPARE(m_saved.value(u"option/Title"_s), u"Corner Shop"_s);
    QCOMPARE(m_saved.value(u"Option/EmailReport"_s), u"0"_s);
    QVERIFY(!m_saved.contains(u"Option/Currency"_s)); // as it was
    QVERIFY(part<QLabel>("receiptOutcome")->text().startsWith(u"Saved."_s));
    m_window->reject();
    QVERIFY(!m_window->isVisible());
}

void OfficeWindowTest::longTitleIsNotSaved()
{
    part<QLineEdit>("receiptTitle")->setText(QString(80, u'W'));
    press("saveReceipt");
    QVERIFY(m_saved.isEmpty());
    QVERIFY(part<QLabel>("receiptOutcome")->text().contains(u"too long"_s));
}

void OfficeWindowTest::unsavedReceiptIsAskedAbout()
{
    part<QLineEdit>("receiptTitle")->setText(u"Corner Shop"_s);
    answerNextBox(QMessageBox::RejectRole);
    m_window->reject();
    QVERIFY(m_window->isVisible());
    QVERIFY(m_boxText.contains(u"not saved"_s));
    answerNextBox(QMessageBox::AcceptRole);
    m_window->close();
    QVERIFY(!m_window->isVisible());
    QVERIFY(m_saved.isEmpty());
}

void OfficeWindowTest::searchIsSwitched()
{
    const auto saved = [this] {
        return column(m_path, u"SELECT Value FROM HarrowbySetting WHERE Name = 'SearchFindsAnywhere'"_s);
    };
    auto *search = part<QCheckBox>("searchAnywhere");
    QVERIFY(search->isChecked()); // the store program has made this store
    QVERIFY(part<QLabel>("searchHint")->text().contains(u"with this store file may rely on"_s));
    search->click();
    QCOMPARE(saved(), QStringList{u"no"_s});
    QVERIFY(part<QLabel>("shopOutcome")->text().startsWith(u"Saved."_s));
    const auto reopen = [this] {
        const OfficeSettings none = {[](const QString &, const QString &, const QString &usual) { return usual; },
                                     [](const QString &, const QString &, const QString &) { return true; }};
        m_window = std::make_unique<OfficeWindow>(store(), none, officeAdministrator());
        return part<QCheckBox>("searchAnywhere")->isChecked();
    };
    QVERIFY(!reopen());
    part<QCheckBox>("searchAnywhere")->click();
    QCOMPARE(saved(), QStringList{u"yes"_s});
    QVERIFY(reopen());
    runAll(m_path, {u"DELETE FROM HarrowbySetting"_s, u"PRAGMA application_id = 77"_s});
    QVERIFY(!reopen()); // a file from elsewhere
    QVERIFY(!runSql(file(), u"ALTER TABLE HarrowbySetting RENAME COLUMN Value TO Former"_s));
    QVERIFY(!reopen());
    QVERIFY(part<QLabel>("shopOutcome")->text().startsWith(u"\u26a0 What was chosen could not be read.\n"_s));
}

void OfficeWindowTest::failedSwitchOfTheSearchIsTold()
{
    m_shop->refuseWritesTo(u"HarrowbySetting"_s);
    answerNextBox(QMessageBox::AcceptRole);
    part<QCheckBox>("searchAnywhere")->click();
    QVERIFY2(m_boxText.startsWith(u"The search was not switched."_s), qPrintable(m_boxText));
    QVERIFY(part<QCheckBox>("searchAnywhere")->isChecked());
    QCOMPARE(part<QLabel>("shopOutcome")->text(), QString());
}

void OfficeWindowTest::wheelTurnsNoPage()
{
    auto *pages = part<QListWidget>("officePages");
    showPage(u"Receipt"_s);
    const QPointF middle = pages->viewport()->rect().center();
    for (const int step : {120, -120}) {
        QWheelEvent turn(middle, pages->viewport()->mapToGlobal(middle), {}, {0, step}, Qt::NoButton, Qt::NoModifier,
                         Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(pages->viewport(), &turn);
        QCOMPARE(part<QLabel>("officeTitle")->text(), u"Receipt"_s);
    }
}

void OfficeWindowTest::wheelChangesNoType()
{
    auto *type = part<QComboBox>("chosenType");
    part<QListWidget>("users")->setCurrentRow(1);
    part<QListWidget>("users")->setFocus();
    const int chosen = type->currentIndex();
    const QPointF middle = type->rect().center();
    for (const int step : {120, -120}) {
        QWheelEvent turn(middle, type->mapToGlobal(middle), {}, {0, step}, Qt::NoButton, Qt::NoModifier,
                         Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(type, &turn);
        QCOMPARE(type->currentIndex(), chosen);
    }
    QCOMPARE(type->focusPolicy(), Qt::StrongFocus);
}

void OfficeWindowTest::everythingIsLargeEnoughForAThumbAndNamed()
{
    constexpr int thumb = 44;
    auto *pages = part<QListWidget>("officePages");
    for (int row = 0; row < pages->count(); ++row) {
        if (pages->item(row)->flags().testFlag(Qt::ItemIsEnabled))
            QVERIFY(pages->visualItemRect(pages->item(row)).height() >= thumb);
    }
    for (const QString &page : m_window->pageTitles()) {
        showPage(page);
        for (QWidget *widget : m_window->findChildren<QWidget *>()) {
            const bool touched = qobject_cast<QAbstractButton *>(widget) != nullptr ||
                                 qobject_cast<QComboBox *>(widget) != nullptr ||
                                 (qobject_cast<QLineEdit *>(widget) != nullptr &&
                                  qobject_cast<QComboBox *>(widget->parentWidget()) == nullptr);
            if (!touched || !widget->isVisible())
                continue;
            QVERIFY2(widget->height() >= thumb, qPrintable(widget->objectName()));
            auto *accessible = QAccessible::queryAccessibleInterface(widget);
            QVERIFY2(!accessible->text(QAccessible::Name).isEmpty(), qPrintable(widget->objectName()));
        }
    }
}

void OfficeWindowTest::noLetterStandsForTwoThings()
{
    for (const QString &page : m_window->pageTitles()) {
        showPage(page);
        QStringList texts = {u"Close &It to Others"_s}; // shown while others can read the store
        for (const OfficePageEntry &entry : officePages()) {
            QVERIFY2(!QKeySequence::mnemonic(entry.caption).isEmpty(), qPrintable(entry.caption));
            texts << entry.caption;
        }
        for (const auto *button : m_window->findChildren<QAbstractButton *>())
            texts << (button->isVisible() ? button->text() : QString());
        for (const auto *label : m_window->findChildren<QLabel *>())
            texts << (label->isVisible() && label->buddy() != nullptr ? label->text() : QString());
        QHash<QString, QString> taken;
        for (const QString &text : texts) {
            const QString key = QKeySequence::mnemonic(text).toString();
            if (key.isEmpty())
                continue;
            QVERIFY2(!taken.contains(key), qPrintable(taken.value(key) + u" / "_s + text));
            taken.insert(key, text);
        }
    }
}

void OfficeWindowTest::fitsASmallScreen()
{
    QVERIFY(m_window->minimumSizeHint().width() <= 1016);
    QVERIFY(m_window->minimumSizeHint().height() <= 700);
}

HARROWBY_TEST(app_office_window_test, OfficeWindowTest)
#include "office_window_test.moc"
