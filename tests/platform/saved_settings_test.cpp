// SPDX-License-Identifier: MIT
#include "platform/saved_settings.h"

#include "basic/private_files.h"
#include "platform/failure_telling.h"

#include "tests/platform/isolated_home.h"
#include "tests/platform/log_capture.h"
#include "tests/platform/replaced_file.h"
#include "tests/program/test_program.h"

#include <QDir>
#include <QFile>
#include <QScopeGuard>
#include <QTest>

#include <cstdlib>
#include <fcntl.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace harrowby;
using namespace harrowby::testing;
using namespace Qt::StringLiterals;

class SavedSettingsTest : public QObject
{
    Q_OBJECT

private:
    using Kind = FileFailure::Kind;

    IsolatedHome m_home;
    QList<FileFailure> m_failures;

    [[nodiscard]] QString file() const { return m_home.path(u".config/Harrowby/Harrowby.ini"_s); }

    void write(const QByteArray &bytes) const
    {
        QDir().mkpath(m_home.path(u".config/Harrowby"_s));
        QFile ini(file());
        QVERIFY(ini.open(QIODevice::WriteOnly));
        QCOMPARE(ini.write(bytes), bytes.size());
    }

    [[nodiscard]] QByteArray contents() const
    {
        QFile ini(file());
        return ini.open(QIODevice::ReadOnly) ? ini.readAll() : QByteArray();
    }

private Q_SLOTS:
    void init()
    {
        m_home.clear();
        m_failures.clear();
        FailureTelling::setHandler([this](const FileFailure &failure) { m_failures << failure; });
    }
    void cleanup()
    {
        IniSettings(m_home.path(u"other.ini"_s)).save(u"POS"_s, u"COM"_s, {}); // resets the failure that was reported
        FailureTelling::setHandler({});
    }

    void livesInTheConfigurationFolder() { QCOMPARE(IniSettings().path(), file()); }

    void aMissingFileGivesTheDefaultAndIsNotCreated()
    {
        QCOMPARE(IniSettings().get(u"POS"_s, u"COM"_s, u"COM1"_s), u"COM1"_s);
        QVERIFY(!QFile::exists(file()));
    }

    void savingCreatesFolderAndFile()
    {
        IniSettings().save(u"Option"_s, u"EmailReport"_s, u"1"_s);
        QCOMPARE(contents(), "[Option]\nEmailReport=1\n"_ba);
        QCOMPARE(IniSettings().get(u"option"_s, u"Emailreport"_s, u"0"_s), u"1"_s);
    }

    void anEmptyValueIsNoMissingOne()
    {
        IniSettings settings;
        settings.save(u"POS"_s, u"COM"_s, {});
        QCOMPARE(settings.get(u"POS"_s, u"COM"_s, u"COM1"_s), u""_s);
    }

    void seesWhatTheHostWritesMeanwhile()
    {
        IniSettings settings;
        write("[Option]\nTitle=Old\n");
        QCOMPARE(settings.get(u"option"_s, u"Title"_s, {}), u"Old"_s);
        write("[Option]\nTitle=New\n");
        QCOMPARE(settings.get(u"option"_s, u"Title"_s, {}), u"New"_s);
        settings.save(u"POS"_s, u"COM"_s, u"till"_s);
        QCOMPARE(contents(), "[Option]\nTitle=New\n\n[POS]\nCOM=till\n"_ba);
    }

    void savingLeavesNothingElseBehind()
    {
        IniSettings().save(u"POS"_s, u"COM"_s, u"till"_s);
        IniSettings().save(u"POS"_s, u"COM"_s, u"kitchen"_s);
        const QDir folder(m_home.path(u".config/Harrowby"_s));
        QCOMPARE(folder.entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot), {u"Harrowby.ini"_s});
    }

    void aFileThatCannotBeReadGivesTheDefaultAndStays()
    {
        const LogCapture log;
        QVERIFY(QDir().mkpath(file())); // a folder of that name: unreadable for the superuser too
        IniSettings settings;
        QCOMPARE(settings.get(u"POS"_s, u"COM"_s, u"COM1"_s), u"COM1"_s);
        settings.save(u"POS"_s, u"COM"_s, u"till"_s);
        QVERIFY(QFileInfo(file()).isDir());
        QVERIFY(log.hasLine({u"harrowby.settings"_s, file()}));
    }

    void aFolderThatCannotBeWrittenIsLogged()
    {
        const LogCapture log;
        QFile blocker(m_home.path(u".config"_s));
        QVERIFY(blocker.open(QIODevice::WriteOnly));
        IniSettings().save(u"POS"_s, u"COM"_s, u"till"_s);
        QVERIFY(log.hasLine({u"harrowby.settings"_s, u"Cannot write"_s, file()}));
        QCOMPARE(m_failures.size(), 1);
        QVERIFY(m_failures.constFirst().kind == Kind::SettingsWrite);
        QCOMPARE(m_failures.constFirst().path, file());
        QCOMPARE(m_failures.constFirst().reason, u"Not a directory"_s);
        QVERIFY(!m_failures.constFirst().isOver);
    }

    void theEndOfAFailureIsToldOnce()
    {
        QFile blocker(m_home.path(u".config"_s));
        QVERIFY(blocker.open(QIODevice::WriteOnly));
        IniSettings().save(u"POS"_s, u"COM"_s, u"till"_s);
        IniSettings().save(u"POS"_s, u"COM"_s, u"till"_s);
        QCOMPARE(m_failures.size(), 2);
        QVERIFY(blocker.remove());
        IniSettings().save(u"POS"_s, u"COM"_s, u"till"_s);
        IniSettings().save(u"POS"_s, u"COM"_s, u"till"_s);
        QCOMPARE(m_failures.size(), 3);
        QVERIFY(m_failures.constLast().isOver);
        QVERIFY(m_failures.constLast().kind == Kind::SettingsWrite);
    }

    void fileAndFoldersAreTheOwnersAlone()
    {
        const auto mode = [](const QString &path) {
            struct stat facts = {};
            return ::stat(QFile::encodeName(path).constData(), &facts) == 0 ? static_cast<int>(facts.st_mode & 0777)
                                                                            : -1;
        };
        IniSettings().save(u"POS"_s, u"COM"_s, u"till"_s);
        QCOMPARE(mode(file()), 0600);
        QCOMPARE(mode(m_home.path(u".config/Harrowby"_s)), 0700);
        QCOMPARE(mode(m_home.path(u".config"_s)), 0700);
        // Permissions that a person has set stay.
        QCOMPARE(::chmod(QFile::encodeName(file()).constData(), 0644), 0);
        IniSettings().save(u"POS"_s, u"COM"_s, u"kitchen"_s);
        QCOMPARE(mode(file()), 0644);
        QCOMPARE(contents(), "[POS]\nCOM=kitchen\n"_ba);
    }

    void whatIsNoFileIsNeitherWaitedForNorReplaced_data()
    {
        QTest::addColumn<QString>("device");
        QTest::newRow("pipe") << QString();
        QTest::newRow("endless device") << u"/dev/zero"_s;
        QTest::newRow("terminal") << u"/dev/pts/"_s;
    }

    void whatIsNoFileIsNeitherWaitedForNorReplaced()
    {
        QFETCH(QString, device);
        const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY);
        const auto end = qScopeGuard([terminal] { ::close(terminal); });
        if (device.endsWith(u'/'))
            device = QString::fromLocal8Bit(::ptsname(terminal));
        const LogCapture log;
        QVERIFY(QDir().mkpath(m_home.path(u".config/Harrowby"_s)));
        if (device.isEmpty())
            QCOMPARE(::mkfifo(QFile::encodeName(file()).constData(), 0600), 0);
        else
            QVERIFY(QFile::link(device, file()));
        IniSettings settings;
        QCOMPARE(settings.get(u"POS"_s, u"COM"_s, u"COM1"_s), u"COM1"_s);
        QCOMPARE(m_failures.size(), 1);
        QVERIFY(m_failures.constFirst().kind == Kind::SettingsRead);
        QCOMPARE(m_failures.constFirst().reason, u"it is not an ordinary file"_s);
        QVERIFY(log.hasLine({u"harrowby.settings"_s, file()}));
        if (device == u"/dev/zero"_s)
            return; // a broken save, run as root, would replace the machine's own device
        settings.save(u"POS"_s, u"COM"_s, u"till"_s);
        QVERIFY(m_failures.constLast().kind == Kind::SettingsWrite);
        QVERIFY(!QFileInfo(file()).isFile());
    }

    void aPipeIsNotEvenOpened()
    {
        // Opening a FIFO would wake a process waiting at its other end, and opening some devices has side effects.
        QVERIFY(QDir().mkpath(m_home.path(u".config/Harrowby"_s)));
        QCOMPARE(::mkfifo(QFile::encodeName(file()).constData(), 0600), 0);
        const int watch = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
        const auto end = qScopeGuard([watch] { ::close(watch); });
        QVERIFY(::inotify_add_watch(watch, QFile::encodeName(file()).constData(), IN_OPEN) >= 0);
        IniSettings settings;
        settings.save(u"POS"_s, u"COM"_s, u"till"_s);
        QCOMPARE(settings.get(u"POS"_s, u"COM"_s, u"COM1"_s), u"COM1"_s);
        char event[sizeof(inotify_event) + 256];
        QCOMPARE(::read(watch, event, sizeof event), ssize_t(-1));
    }

    void aPipeThatTakesTheNameMeanwhileIsRefused_data()
    {
        QTest::addColumn<int>("mode");
        QTest::newRow("to read") << static_cast<int>(QIODevice::ReadOnly);
        QTest::newRow("to add to") << static_cast<int>(QIODevice::WriteOnly | QIODevice::Append);
    }

    void aPipeThatTakesTheNameMeanwhileIsRefused()
    {
        QFETCH(int, mode);
        QFile settings(m_home.path(u"settings"_s));
        QVERIFY(settings.open(QIODevice::WriteOnly));
        settings.close();
        bool isReplaced = false;
        afterNextLookAtAFile([&] {
            isReplaced = settings.remove() && ::mkfifo(QFile::encodeName(settings.fileName()).constData(), 0600) == 0;
        });
        const auto opened = openOrdinaryFile(settings, QIODevice::OpenMode(mode));
        QVERIFY(!opened);
        QCOMPARE(opened.error(), u"it is not an ordinary file"_s);
        QVERIFY(isReplaced && !settings.isOpen());
    }

    void aHugeFileIsNotRead()
    {
        QVERIFY(QDir().mkpath(m_home.path(u".config/Harrowby"_s)));
        const QByteArray line = "[POS]\nCOM=till\n";
        write(line + QByteArray(1'000'000 - line.size(), ';'));
        QCOMPARE(IniSettings().get(u"POS"_s, u"COM"_s, u"COM1"_s), u"till"_s);
        QVERIFY(m_failures.isEmpty());
        write(line + QByteArray(1'000'001 - line.size(), ';'));
        QCOMPARE(IniSettings().get(u"POS"_s, u"COM"_s, u"COM1"_s), u"COM1"_s);
        QCOMPARE(m_failures.size(), 1);
        QCOMPARE(m_failures.constFirst().reason, u"it is larger than 1 MB"_s);
        IniSettings().save(u"POS"_s, u"COM"_s, u"kitchen"_s);
        QVERIFY(contents().startsWith(line));                         // and not replaced
        QVERIFY(QFile::resize(file(), static_cast<qint64>(1) << 40)); // sparse: it would fill no disk, but all memory
        QCOMPARE(IniSettings().get(u"POS"_s, u"COM"_s, u"COM1"_s), u"COM1"_s);
    }

    void aFileIsNotMadeTooLargeToBeRead()
    {
        IniSettings().save(u"POS"_s, u"COM"_s, u"till"_s);
        IniSettings().save(u"option"_s, u"Title"_s, QString(1'000'000, u'x'));
        QCOMPARE(m_failures.size(), 1);
        QCOMPARE(m_failures.constFirst().reason, u"it would be larger than 1 MB"_s);
        QCOMPARE(IniSettings().get(u"POS"_s, u"COM"_s, u"COM1"_s), u"till"_s);
        QCOMPARE(IniSettings().get(u"option"_s, u"Title"_s, u"none"_s), u"none"_s);
    }

    void aNameThatNoLineCanHoldIsLogged()
    {
        const LogCapture log;
        IniSettings().save(u"POS"_s, u"a=b"_s, u"till"_s);
        QVERIFY(!QFile::exists(file()));
        QVERIFY(log.hasLine({u"harrowby.settings"_s, u"a=b"_s}));
    }
};

HARROWBY_CORE_TEST(saved_settings_test, SavedSettingsTest)
#include "saved_settings_test.moc"
