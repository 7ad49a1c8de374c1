// SPDX-License-Identifier: MIT
#include "app/backup/nightly_timer.h"
#include "app/backup/nightly_units.h"
#include "tests/app/office_desk.h"
#include "tests/app/quick_folder.h"
#include "tests/program/test_program.h"

#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>
#include <QSaveFile>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace harrowby::app;
using namespace harrowby::app::test;

/// The timer that backs a store up every day, with false programs in place of systemd's.
class NightlyTest : public OfficeDesk
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_programFolders = qgetenv("PATH"); }
    void cleanupTestCase() { qputenv("PATH", m_programFolders); }
    void init();

    void wordsAreQuoted_data();
    void wordsAreQuoted();
    void planIsReadBack();
    void passwordIsNobodysElse();
    void systemdTakesTheFiles();
    void timerIsSetUpAndChanged();
    void refusalLeavesWhatWasThere();
    void cancelLeavesWhatWasThere();
    void missingSystemdIsTold();
    void lingeringThatIsRefusedIsTold();
    void badPlanIsRefused_data();
    void badPlanIsRefused();
    void timerIsSwitchedOff();
    void pageShowsTheTimer();
    void closedMeanwhileIsRecorded();

private:
    [[nodiscard]] QString path(const QString &name) const { return m_home->filePath(name); }
    [[nodiscard]] NightlyTimer timer() const
    {
        return NightlyTimer({QCoreApplication::applicationFilePath(), path(u"shop.sqlite"_s)});
    }
    [[nodiscard]] NightlyPlan plan() const { return {QTime(21, 30), path(u"away"_s), 7}; }
    [[nodiscard]] static QString bytes(const QString &file)
    {
        QFile opened(file);
        return opened.open(QIODevice::ReadOnly) ? QString::fromUtf8(opened.readAll()) : QString();
    }
    /// Which the others do without.
    void openOffice() { OfficeDesk::init(); }
    /// What was asked of the false programs since the last time.
    [[nodiscard]] QStringList calls() const;
    /// A false program: notes how it is called, and does this.
    void falsify(const QString &program, const QString &script) const;
    void refuse(const QString &program, const QString &when) const
    {
        falsify(program, u"case \"$*\" in *%1*) echo 'no bus' >&2; exit 1;; esac"_s.arg(when));
    }

    std::unique_ptr<QTemporaryDir> m_home;
    QByteArray m_programFolders;
};

void NightlyTest::init()
{
    m_home = std::make_unique<QTemporaryDir>(quickFolder() + u"/nightly-XXXXXX"_s);
    QVERIFY(QDir(m_home->path()).mkdir(u"away"_s) && QDir(m_home->path()).mkdir(u"bin"_s));
    makeStore(path(u"shop.sqlite"_s));
    QDir(QFileInfo(timer().timerPath()).absolutePath()).removeRecursively();
    falsify(u"systemctl"_s, u"exit 0"_s);
    falsify(u"loginctl"_s, u"case \"$*\" in show-user*) echo no;; esac"_s);
    qputenv("PATH", QFile::encodeName(path(u"bin"_s)) + ":/usr/bin:/bin");
}

QStringList NightlyTest::calls() const
{
    QStringList lines = bytes(path(u"calls"_s)).split(u'\n', Qt::SkipEmptyParts);
    (void)QFile::remove(path(u"calls"_s));
    return lines;
}

void NightlyTest::falsify(const QString &program, const QString &script) const
{
    QSaveFile file(path(u"bin/"_s + program)); // in the place of one that may be running
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(u"#!/bin/sh\necho \"%1 $*\" >> '%2'\n%3\n"_s.arg(program, path(u"calls"_s), script).toUtf8());
    QVERIFY(file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    QVERIFY(file.commit());
}

void NightlyTest::wordsAreQuoted_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("argument");
    QTest::addColumn<QString>("program");
    const auto row = [](const char *name, const QString &text, const QString &argument, const QString &program) {
        QTest::newRow(name) << text << argument << program;
    };
    row("plain", u"/a/b"_s, u"\"/a/b\""_s, u"\"/a/b\""_s);
    row("blanks", u"/my shop/a  b"_s, u"\"/my shop/a  b\""_s, u"\"/my shop/a  b\""_s);
    row("percent", u"/100%n"_s, u"\"/100%%n\""_s, u"\"/100%%n\""_s);
    row("dollar", u"/$HOME/${X}"_s, u"\"/$$HOME/$${X}\""_s, u"\"/$HOME/${X}\""_s);
    row("quotes", u"/a\"b'c"_s, u"\"/a\\\"b'c\""_s, u"\"/a\\\"b'c\""_s);
    row("backslash", u"/a\\x41"_s, u"\"/a\\\\x41\""_s, u"\"/a\\\\x41\""_s);
    row("letters of other alphabets", u"/Läden/Ж"_s, u"\"/Läden/Ж\""_s, u"\"/Läden/Ж\""_s);
}

void NightlyTest::wordsAreQuoted()
{
    QFETCH(QString, text);
    QFETCH(QString, argument);
    QFETCH(QString, program);
    QCOMPARE(quotedForUnit(text, UnitWord::Argument), argument);
    QCOMPARE(quotedForUnit(text, UnitWord::Program), program);
    QVERIFY(fitsUnit(text) && !fitsUnit(text + u'\n') && !fitsUnit(QString(QChar(0x1b)) + text));
}

void NightlyTest::planIsReadBack()
{
    const NightlyPlan plan = {QTime(6, 5), u"/media/a = b % \"c\"\\d"_s, 365};
    const auto read = readNightlyTimer(nightlyTimerText({u"/usr/bin/harrowby"_s, u"/s.sqlite"_s}, plan));
    QVERIFY(read);
    QCOMPARE(read->plan, plan);
    QCOMPARE(read->program, u"/usr/bin/harrowby"_s);
    QVERIFY(!readNightlyTimer({}) && !readNightlyTimer(u"[Timer]\nOnCalendar=daily\n"_s));
    QVERIFY(!readNightlyTimer(u"[X-Harrowby]\nTime=25:00\nKeep=3\nFolder=/a\n"_s));
    QCOMPARE(nightlyCronLine({u"/p"_s, u"/my 100% shop's"_s}, {QTime(22, 5), u"/b"_s, 3}),
             u"5 22 * * * '/p' --database '/my 100\\% shop'\\''s' --backup '/b' --keep 3"_s);
}

/// What a unit is called stands in the machine's log; how it is called, in a file for its owner alone.
void NightlyTest::passwordIsNobodysElse()
{
    const NightlyJob job = {u"/p"_s, u"postgresql://till:secret@a/shop"_s};
    QVERIFY(
        nightlyServiceText(job, plan()).contains(u"\nDescription=Backup of the store postgresql://till@a/shop\n"_s));
    QVERIFY(!nightlyTimerText(job, plan()).contains(u"secret"_s));
    QVERIFY(timer().setUp(plan(), [](const WorkStep &) { return true; }).problem.isEmpty());
    const QFile::Permissions ofOthers = QFile::ReadGroup | QFile::ReadOther;
    QVERIFY((QFile::permissions(timer().servicePath()) & ofOthers) == QFile::Permissions());
}

void NightlyTest::systemdTakesTheFiles()
{
    const QString analyze = QStandardPaths::findExecutable(u"systemd-analyze"_s, {u"/usr/bin"_s, u"/bin"_s});
    if (analyze.isEmpty())
        QSKIP("systemd-analyze is not installed");
    const QString folder = path(u"my 100% \"units\"; $HOME \\x41 Ж"_s);
    QVERIFY(QDir().mkpath(folder));
    NightlyPlan plan = this->plan();
    plan.folder = folder;
    const NightlyJob job = {QCoreApplication::applicationFilePath(), folder + u"/shop %n.sqlite"_s};
    QFile service(path(u"night.service"_s));
    QFile units(path(u"night.timer"_s));
    QVERIFY(service.open(QIODevice::WriteOnly) && units.open(QIODevice::WriteOnly));
    service.write(nightlyServiceText(job, plan).toUtf8());
    units.write(nightlyTimerText(job, plan).toUtf8());
    service.close();
    units.close();
    QProcess verify;
    verify.setProcessChannelMode(QProcess::MergedChannels);
    verify.start(analyze, {u"--user"_s, u"--man=no"_s, u"verify"_s, service.fileName(), units.fileName()});
    QVERIFY(verify.waitForFinished(60000));
    const QString said = QString::fromUtf8(verify.readAll());
    // Where no manager can run (a container), it says so and nothing else.
    for (const QString &line : said.split(u'\n', Qt::SkipEmptyParts))
        QVERIFY2(!line.contains(u"night."_s), qPrintable(said));
}

void NightlyTest::timerIsSetUpAndChanged()
{
    QVERIFY(!timer().read());
    const auto on = [](const WorkStep &) { return true; };
    NightlyEnd end = timer().setUp(plan(), on);
    QCOMPARE(end.problem, QString());
    QCOMPARE(end.warning, QString());
    const QString name = QFileInfo(timer().timerPath()).fileName();
    QCOMPARE(calls(), (QStringList{u"systemctl --user daemon-reload"_s, u"systemctl --user enable "_s + name,
                                   u"systemctl --user restart "_s + name,
                                   u"loginctl show-user --property=Linger --value"_s, u"loginctl enable-linger"_s}));
    QCOMPARE(timer().read()->plan, plan());
    const QString service = bytes(timer().servicePath());
    QVERIFY2(service.contains(u"ExecStart=\"%1\" \"--database\" \"%2\" \"--backup\" \"%3\" \"--keep\" \"7\"\n"_s.arg(
                 QCoreApplication::applicationFilePath(), path(u"shop.sqlite"_s), path(u"away"_s))),
             qPrintable(service));
    const QString units = bytes(timer().timerPath());
    QVERIFY2(units.contains(u"OnCalendar=*-*-* 21:30:00\nPersistent=true\n"_s), qPrintable(units));

    falsify(u"loginctl"_s, u"echo yes"_s);
    NightlyPlan other = plan();
    other.time = QTime(3, 0);
    end = timer().setUp(other, on);
    QCOMPARE(end.problem, QString());
    QCOMPARE(timer().read()->plan, other);
    QVERIFY(!calls().contains(u"loginctl enable-linger"_s));
    QVERIFY(timer().isRunning());
}

void NightlyTest::refusalLeavesWhatWasThere()
{
    const auto on = [](const WorkStep &) { return true; };
    for (const QString &step : {u"daemon-reload"_s, u"enable"_s, u"restart"_s}) {
        refuse(u"systemctl"_s, step);
        const NightlyEnd end = timer().setUp(plan(), on);
        QVERIFY2(end.problem.contains(u"no bus"_s) && end.problem.contains(u"30 21 * * * '"_s),
                 qPrintable(end.problem));
        QVERIFY(!timer().read() && !QFile::exists(timer().servicePath()));
    }
    falsify(u"systemctl"_s, u"exit 0"_s);
    QCOMPARE(timer().setUp(plan(), on).problem, QString());
    refuse(u"systemctl"_s, u"restart"_s);
    NightlyPlan other = plan();
    other.keep = 99;
    QVERIFY(!timer().setUp(other, on).problem.isEmpty());
    QCOMPARE(timer().read()->plan, plan());
    QVERIFY(bytes(timer().servicePath()).contains(u"\"7\""_s));
    QVERIFY(calls().constLast().contains(u"restart"_s)); // it goes on
}

/// While systemd does not answer.
void NightlyTest::cancelLeavesWhatWasThere()
{
    falsify(u"systemctl"_s, u"case \"$*\" in *restart*) exec sleep 60;; esac"_s);
    const NightlyEnd end =
        timer().setUp(plan(), [this](const WorkStep &) { return !bytes(path(u"calls"_s)).contains(u"restart"_s); });
    QCOMPARE(end.problem, u"Cancelled. Nothing was changed."_s);
    QCOMPARE(calls().mid(3),
             (QStringList{u"systemctl --user disable --now "_s + QFileInfo(timer().timerPath()).fileName(),
                          u"systemctl --user daemon-reload"_s}));
    QVERIFY(!timer().read() && !QFile::exists(timer().servicePath()));
}

void NightlyTest::missingSystemdIsTold()
{
    qputenv("PATH", QFile::encodeName(path(u"nothing"_s)));
    const NightlyEnd end = timer().setUp(plan(), [](const WorkStep &) { return true; });
    QVERIFY2(end.problem.contains(u"there is no program \"systemctl\""_s), qPrintable(end.problem));
    QVERIFY(end.problem.contains(u"cron"_s));
    QVERIFY(!timer().read());
}

void NightlyTest::lingeringThatIsRefusedIsTold()
{
    refuse(u"loginctl"_s, u"linger"_s);
    const NightlyEnd end = timer().setUp(plan(), [](const WorkStep &) { return true; });
    QCOMPARE(end.problem, QString());
    QVERIFY2(end.warning.contains(u"only while you are logged in"_s) && end.warning.contains(u"no bus"_s),
             qPrintable(end.warning));
    QVERIFY(timer().read());
}

void NightlyTest::badPlanIsRefused_data()
{
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QString>("said");
    QTest::newRow("none") << QString() << u"choose a folder"_s;
    QTest::newRow("relative") << u"away"_s << u"choose a folder"_s;
    QTest::newRow("missing") << u"/no such/folder"_s << u"There is no folder"_s;
    QTest::newRow("line break") << u"/a\nExecStart=/bin/sh"_s << u"signs that systemd does not take"_s;
}

void NightlyTest::badPlanIsRefused()
{
    QFETCH(QString, folder);
    QFETCH(QString, said);
    NightlyPlan bad = plan();
    bad.folder = folder;
    const NightlyEnd end = timer().setUp(bad, [](const WorkStep &) { return true; });
    QVERIFY2(end.problem.contains(said), qPrintable(end.problem));
    QVERIFY(calls().isEmpty() && !timer().read());
}

void NightlyTest::timerIsSwitchedOff()
{
    const auto on = [](const WorkStep &) { return true; };
    QCOMPARE(timer().setUp(plan(), on).problem, QString());
    (void)calls();
    refuse(u"systemctl"_s, u"disable"_s);
    QVERIFY2(timer().switchOff(on).problem.contains(u"no bus"_s), "it still runs");
    QVERIFY(timer().read());
    falsify(u"systemctl"_s, u"exit 0"_s);
    (void)calls();
    QCOMPARE(timer().switchOff(on).problem, QString());
    const QString name = QFileInfo(timer().timerPath()).fileName();
    QCOMPARE(calls(), (QStringList{u"systemctl --user disable --now "_s + name, u"systemctl --user daemon-reload"_s}));
    QVERIFY(!timer().read() && !QFile::exists(timer().timerPath()) && !QFile::exists(timer().servicePath()));
}

void NightlyTest::pageShowsTheTimer()
{
    openOffice();
    showPage(u"Backup"_s);
    QCOMPARE(part<QLabel>("nightlyState")->text(), u"No backup is made by itself."_s);
    inNextDialog([this](QDialog &dialog) {
        dialog.findChild<QLineEdit *>(u"nightlyFolder"_s)->setText(path(u"away"_s));
        auto *time = dialog.findChild<QComboBox *>(u"nightlyTime"_s);
        time->setCurrentIndex(time->findText(u"23:30"_s));
        QVERIFY(!dialog.findChild<QPushButton *>(u"nightlyOff"_s)->isVisible());
        QTest::mouseClick(dialog.findChild<QPushButton *>(u"saveNightly"_s), Qt::LeftButton);
        auto *outcome = dialog.findChild<QLabel *>(u"nightlyOutcome"_s);
        QTRY_VERIFY_WITH_TIMEOUT(!outcome->text().isEmpty(), 30000);
        QVERIFY2(outcome->text().contains(u"every day at 23:30"_s), qPrintable(outcome->text()));
        QVERIFY(dialog.findChild<QPushButton *>(u"nightlyOff"_s)->isVisible());
        dialog.reject();
    });
    press("nightlyBackup");
    QVERIFY2(part<QLabel>("nightlyState")->text().contains(path(u"away"_s)),
             qPrintable(part<QLabel>("nightlyState")->text()));
    QVERIFY(read(u"select What from HarrowbyActivity where Kind = 'SettingChanged'"_s).contains(u"23:30"_s));
    inNextDialog([](QDialog &dialog) {
        auto *outcome = dialog.findChild<QLabel *>(u"nightlyOutcome"_s);
        auto *off = dialog.findChild<QPushButton *>(u"nightlyOff"_s);
        const auto pressed = [off] { // again while it is looked whether the timer runs, which hears no press
            if (off->isVisible())
                QTest::mouseClick(off, Qt::LeftButton);
            return false;
        };
        QTRY_VERIFY_WITH_TIMEOUT(outcome->text().contains(u"by itself any more"_s) || pressed(), 30000);
        dialog.reject();
    });
    press("nightlyBackup");
    QCOMPARE(part<QLabel>("nightlyState")->text(), u"No backup is made by itself."_s);
}

/// The dialog goes when the timer is set up; each change is told.
void NightlyTest::closedMeanwhileIsRecorded()
{
    openOffice();
    showPage(u"Backup"_s);
    inNextDialog([this](QDialog &dialog) {
        dialog.findChild<QLineEdit *>(u"nightlyFolder"_s)->setText(path(u"away"_s));
        auto *save = dialog.findChild<QPushButton *>(u"saveNightly"_s);
        QTest::mouseClick(save, Qt::LeftButton);
        auto *outcome = dialog.findChild<QLabel *>(u"nightlyOutcome"_s);
        QTRY_VERIFY_WITH_TIMEOUT(!outcome->text().isEmpty(), 30000);
        auto *keep = dialog.findChild<QComboBox *>(u"nightlyKeep"_s);
        keep->setCurrentIndex(keep->findText(u"90"_s));
        QTest::mouseClick(save, Qt::LeftButton);
        dialog.reject();
    });
    press("nightlyBackup");
    QVERIFY2(part<QLabel>("nightlyState")->text().contains(path(u"away"_s)),
             qPrintable(part<QLabel>("nightlyState")->text()));
    const QStringList told =
        column(m_path, u"select What from HarrowbyActivity where Kind = 'SettingChanged' order by rowid"_s);
    QCOMPARE(told.size(), 2);
    QVERIFY2(told.at(0).endsWith(u"the newest 14 stay"_s) && told.at(1).endsWith(u"the newest 90 stay"_s),
             qPrintable(told.join(u'\n')));
}

HARROWBY_TEST(app_nightly_test, NightlyTest)
#include "nightly_test.moc"
