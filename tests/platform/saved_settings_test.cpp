// SPDX-License-Identifier: MIT
#include "platform/saved_settings.h"

#include "isolated_home.h"
#include "log_capture.h"

#include <QDir>
#include <QFile>
#include <QTest>

using namespace harrowby;
using namespace harrowby::testing;
using namespace Qt::StringLiterals;

class SavedSettingsTest : public QObject
{
    Q_OBJECT

private:
    IsolatedHome m_home;

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
    void init() { m_home.clear(); }

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
    }

    void aNameThatNoLineCanHoldIsLogged()
    {
        const LogCapture log;
        IniSettings().save(u"POS"_s, u"a=b"_s, u"till"_s);
        QVERIFY(!QFile::exists(file()));
        QVERIFY(log.hasLine({u"harrowby.settings"_s, u"a=b"_s}));
    }
};

QTEST_GUILESS_MAIN(SavedSettingsTest)
#include "saved_settings_test.moc"
