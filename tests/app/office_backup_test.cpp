// SPDX-License-Identifier: MIT
#include "tests/app/office_desk.h"
#include "tests/program/test_program.h"

#include <QDir>
#include <QLabel>
#include <QLineEdit>
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
    m_window = std::make_unique<OfficeWindow>(m_database.get(), m_path, settings, officeAdministrator());
    showPage(u"Backup"_s);
    QVERIFY(!QFile::exists(left));
}

void OfficeBackupTest::backupIsMade()
{
    const QString target = m_folder->filePath(u"copy.db"_s);
    QCOMPARE(part<QLabel>("lastBackup")->text(), u"No backup has been made from here yet."_s);
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

HARROWBY_TEST(app_office_backup_test, OfficeBackupTest)
#include "office_backup_test.moc"
