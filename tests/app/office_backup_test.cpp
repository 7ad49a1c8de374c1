// SPDX-License-Identifier: MIT
#include "tests/app/office_desk.h"
#include "tests/program/test_program.h"

#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;

/// The office's page of backups.
class OfficeBackupTest : public OfficeDesk
{
    Q_OBJECT

private Q_SLOTS:
    void leftFolderOfTheLastBackupIsRemoved();
    void backupIsMade();
    void existingBackupIsAskedAbout();
    void badPlaceOfBackupIsTold();
    void focusStaysOnTheBackupPage_data();
    void focusStaysOnTheBackupPage();
    void overdueBackupIsWarnedOf();
    void backupIsChosenToRestore();
    void badBackupIsNotOffered();
    void openStoreIsNotRestored();

private:
    /// Makes a backup by the page.
    void backUp(const QString &target);
    /// Waits until the dialog has looked into its file.
    static void waitForLook(QDialog &dialog);
};

void OfficeBackupTest::leftFolderOfTheLastBackupIsRemoved()
{
    const QString left = m_folder->filePath(u"stick/.harrowby-backup-AbCdEf"_s);
    QVERIFY(QDir().mkpath(left));
    m_saved.insert(u"Office/LastBackup"_s, m_folder->filePath(u"stick/copy.db"_s));
    const OfficeSettings settings = {[this](const QString &section, const QString &key, const QString &usual) {
                                         return m_saved.value(section + u'/' + key, usual);
                                     },
                                     {}};
    m_window = std::make_unique<OfficeWindow>(store(), settings, officeAdministrator());
    showPage(u"Backup"_s);
    QVERIFY(!QFile::exists(left));
}

void OfficeBackupTest::backupIsMade()
{
    const QString target = m_folder->filePath(u"copy.db"_s);
    QCOMPARE(part<QLabel>("lastBackup")->text(), u"\u26a0 No backup of this store is known yet."_s);
    showPage(u"Backup"_s);
    part<QLineEdit>("backupPlace")->setText(target);
    press("startBackup");
    QVERIFY(!part<QPushButton>("startBackup")->isEnabled() && part<QPushButton>("stopBackup")->isEnabled());
    QTRY_VERIFY_WITH_TIMEOUT(part<QPushButton>("startBackup")->isEnabled(), 30000);
    QVERIFY2(part<QLabel>("backupOutcome")->text().contains(u"made and checked"_s),
             qPrintable(part<QLabel>("backupOutcome")->text()));
    QCOMPARE(column(target, u"SELECT StockID FROM StockList"_s), QStringList{u"TEA-0001"_s});
    QVERIFY(part<QLabel>("lastBackup")->text().contains(target));
}

void OfficeBackupTest::existingBackupIsAskedAbout()
{
    const QString target = m_folder->filePath(u"copy.db"_s);
    runAll(target, {u"CREATE TABLE Other (x)"_s});
    part<QLineEdit>("backupPlace")->setText(target);
    answerNextBox(QMessageBox::RejectRole);
    press("startBackup");
    QVERIFY(m_boxText.contains(target));
    QVERIFY(part<QPushButton>("startBackup")->isEnabled());
    QCOMPARE(column(target, u"SELECT count(*) FROM Other"_s), QStringList{u"0"_s});
    answerNextBox(QMessageBox::AcceptRole);
    press("startBackup");
    QTRY_VERIFY_WITH_TIMEOUT(part<QPushButton>("startBackup")->isEnabled(), 30000);
    QCOMPARE(column(target, u"SELECT StockID FROM StockList"_s), QStringList{u"TEA-0001"_s});
}

void OfficeBackupTest::badPlaceOfBackupIsTold()
{
    part<QLineEdit>("backupPlace")->setText(m_path);
    press("startBackup");
    QVERIFY(part<QLabel>("backupOutcome")->text().contains(u"store file itself"_s));
    QVERIFY(part<QPushButton>("startBackup")->isEnabled());
}

void OfficeBackupTest::focusStaysOnTheBackupPage_data()
{
    QTest::addColumn<QByteArray>("from");
    QTest::addColumn<QByteArray>("meanwhile");
    QTest::addColumn<QByteArray>("after");
    QTest::newRow("the button") << QByteArray("startBackup") << QByteArray("stopBackup") << QByteArray("startBackup");
    QTest::newRow("the entry") << QByteArray("backupPlace") << QByteArray("backupPlace") << QByteArray("backupPlace");
}

/// Started by its letter, so that the focus is where it was.
void OfficeBackupTest::focusStaysOnTheBackupPage()
{
    QFETCH(const QByteArray, from);
    QFETCH(const QByteArray, meanwhile);
    QFETCH(const QByteArray, after);
    m_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    showPage(u"Backup"_s);
    const auto typeABlank = [this] { QTest::keyClick(m_window->focusWidget(), Qt::Key_Space); };
    part<QLineEdit>("backupPlace")->setText(m_folder->filePath(u"copy.db"_s));
    part<QWidget>(from.constData())->setFocus();
    part<QPushButton>("startBackup")->click();
    QCOMPARE(m_window->focusWidget(), part<QWidget>(meanwhile.constData()));
    if (meanwhile == "backupPlace")
        typeABlank();
    QTRY_VERIFY_WITH_TIMEOUT(part<QPushButton>("startBackup")->isEnabled(), 30000);
    QVERIFY(part<QLabel>("backupOutcome")->text().contains(u"made and checked"_s));
    QCOMPARE(m_window->focusWidget(), part<QWidget>(after.constData()));
    QCOMPARE(part<QLineEdit>("backupPlace")->text(), m_folder->filePath(u"copy.db"_s));
    QVERIFY(!part<QLineEdit>("backupPlace")->isReadOnly());
    if (after == "backupPlace") {
        part<QLineEdit>("backupPlace")->end(false);
        typeABlank();
        QVERIFY(part<QLineEdit>("backupPlace")->text().endsWith(u' '));
    }
    QVERIFY(m_window->isVisible());
}

void OfficeBackupTest::backUp(const QString &target)
{
    part<QLineEdit>("backupPlace")->setText(target);
    press("startBackup");
    QTRY_VERIFY_WITH_TIMEOUT(part<QPushButton>("startBackup")->isEnabled(), 30000);
}

void OfficeBackupTest::waitForLook(QDialog &dialog)
{
    QTRY_VERIFY_WITH_TIMEOUT(!dialog.findChild<QLabel *>(u"restoreOutcome"_s)->text().isEmpty(), 30000);
}

void OfficeBackupTest::overdueBackupIsWarnedOf()
{
    QVERIFY(part<QPushButton>("warningOfBackup")->text().contains(u"No backup yet"_s));
    QVERIFY(part<QPushButton>("warningOfBackup")->isVisible());
    backUp(m_folder->filePath(u"copy.db"_s));
    QVERIFY(!part<QPushButton>("warningOfBackup")->isVisible()); // at once
    const auto reopen = [this] {
        const OfficeSettings settings = {[](const QString &, const QString &, const QString &usual) { return usual; },
                                         {}};
        m_window = std::make_unique<OfficeWindow>(store(), settings, officeAdministrator());
    };
    reopen();
    m_window->show();
    QVERIFY(!part<QPushButton>("warningOfBackup")->isVisible());
    QVERIFY(QFile::remove(m_folder->filePath(u"copy.db"_s)));
    reopen();
    QVERIFY(part<QPushButton>("warningOfBackup")->text().contains(u"The last backup is gone"_s));
    m_window->show();
    press("warningOfBackup");
    QVERIFY(part<QLabel>("lastBackup")->text().contains(u"not there any more"_s));
}

void OfficeBackupTest::backupIsChosenToRestore()
{
    const QString backup = m_folder->filePath(u"copy.db"_s);
    backUp(backup);
    QVERIFY(!runSql(file(), u"INSERT INTO PurchaseCart (PurchaseID, PurchasedDate) VALUES ('1', '261121180230')"_s));
    QString inBackup, now, offered;
    QStringList shown;
    inNextDialog([&](QDialog &dialog) {
        waitForLook(dialog);
        offered = dialog.findChild<QLineEdit *>(u"restoreFile"_s)->text();
        inBackup = dialog.findChild<QLabel *>(u"restoreCell03"_s)->text();
        now = dialog.findChild<QLabel *>(u"restoreCell13"_s)->text();
        for (const QString &cell : {u"restoreCell01"_s, u"restoreCell02"_s, u"restoreCell12"_s, u"restoreCell04"_s})
            shown << dialog.findChild<QLabel *>(cell)->text();
        QVERIFY(dialog.findChild<QLabel *>(u"restoreCell00"_s)->text().contains(u':')); // when it was written
        answerNextBox(QMessageBox::AcceptRole);
        QTest::mouseClick(dialog.findChild<QPushButton *>(u"startRestore"_s), Qt::LeftButton);
    });
    press("restoreBackup");
    QCOMPARE(offered, backup); // the last one
    QCOMPARE(inBackup, u"none"_s);
    QCOMPARE(now, u"21 November 2026, 18:02"_s);
    QCOMPARE(shown, (QStringList{u"1"_s, u"0"_s, u"1"_s, u"ADMINISTRATOR, ANNA, BOB"_s}));
    QVERIFY2(m_boxText.contains(u"Purchases after"_s), qPrintable(m_boxText));
    QTRY_COMPARE(m_window->askedRestore(), backup);
    QVERIFY(!m_window->isVisible());
}

void OfficeBackupTest::badBackupIsNotOffered()
{
    runAll(m_folder->filePath(u"other.db"_s), {u"CREATE TABLE Other (x)"_s});
    inNextDialog([&](QDialog &dialog) {
        auto *file = dialog.findChild<QLineEdit *>(u"restoreFile"_s);
        const auto look = [&](const QString &path, const QString &said) {
            file->setText(path);
            dialog.findChild<QLabel *>(u"restoreOutcome"_s)->clear();
            QTest::keyClick(file, Qt::Key_Return);
            waitForLook(dialog);
            const QString outcome = dialog.findChild<QLabel *>(u"restoreOutcome"_s)->text();
            QVERIFY2(outcome.contains(said), qPrintable(outcome));
            QVERIFY(!dialog.findChild<QPushButton *>(u"startRestore"_s)->isEnabled());
        };
        look({}, u"choose a backup"_s);
        look(m_path, u"the store file itself"_s);
        look(m_folder->filePath(u"none.db"_s), u"There is no file"_s);
        look(m_folder->filePath(u"other.db"_s), u"lacks the table"_s);
        dialog.reject();
    });
    press("restoreBackup");
    QVERIFY(m_window->askedRestore().isEmpty() && m_window->isVisible());
}

void OfficeBackupTest::openStoreIsNotRestored()
{
    backUp(m_folder->filePath(u"copy.db"_s));
    QProcess other;
    other.start(u"sh"_s, {u"-c"_s, u"exec 3<\"$1\"; echo open; read end"_s, u"sh"_s, m_path});
    QVERIFY(other.waitForReadyRead());
    inNextDialog([&](QDialog &dialog) {
        waitForLook(dialog);
        QTest::mouseClick(dialog.findChild<QPushButton *>(u"startRestore"_s), Qt::LeftButton);
        const QString outcome = dialog.findChild<QLabel *>(u"restoreOutcome"_s)->text();
        QVERIFY2(outcome.contains(u"(process %1)"_s.arg(other.processId())), qPrintable(outcome));
        dialog.reject();
    });
    press("restoreBackup");
    QVERIFY(m_window->askedRestore().isEmpty());
    other.write("\n");
    QVERIFY(other.waitForFinished());
}

HARROWBY_TEST(app_office_backup_test, OfficeBackupTest)
#include "office_backup_test.moc"
