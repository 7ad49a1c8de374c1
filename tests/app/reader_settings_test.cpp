// SPDX-License-Identifier: MIT
#include "app/readers/reader_settings.h"
#include "app/readers/reader_settings_page.h"
#include "tests/program/test_program.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>

#include <map>

using namespace Qt::StringLiterals;
using namespace harrowby::app;
using ReaderKind = ReaderDevice::Kind;

/// What is saved, and the page for it.
class ReaderSettingsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_saved.clear(); }
    void nothingSaved();
    void readBack();
    void onlyWhatDiffersIsSaved();
    void whatIsNotUnderstood_data();
    void whatIsNotUnderstood();
    void devicesAreFound();
    void pageSaves();
    void pageRefuses();

private:
    [[nodiscard]] OfficeSettings settings();

    std::map<QString, QString> m_saved;
    int m_saves = 0;
};

OfficeSettings ReaderSettingsTest::settings()
{
    return {[this](const QString &section, const QString &key, const QString &otherwise) {
                const auto entry = m_saved.find(section + u'/' + key);
                return entry == m_saved.end() ? otherwise : entry->second;
            },
            [this](const QString &section, const QString &key, const QString &value) {
                m_saved[section + u'/' + key] = value;
                ++m_saves;
                return true;
            }};
}

void ReaderSettingsTest::nothingSaved()
{
    const ReaderSettings read = readReaderSettings(settings());
    QVERIFY(read.typing);
    QCOMPARE(read.gapMs, 50);
    QCOMPARE(read.prefix, QString());
    QVERIFY(read.devices.isEmpty());
}

void ReaderSettingsTest::readBack()
{
    const ReaderSettings set{false,
                             99,
                             u"]"_s,
                             {{ReaderKind::Keyboard, u"/dev/input/by-id/usb-A reader: 1-event-kbd"_s, 9600},
                              {ReaderKind::Serial, u"/dev/ttyACM0"_s, 115200}}};
    QVERIFY(saveReaderSettings(settings(), {}, set));
    QVERIFY(readReaderSettings(settings()) == set);
    QVERIFY(saveReaderSettings(settings(), set, {}));
    QVERIFY(readReaderSettings(settings()) == ReaderSettings());
}

void ReaderSettingsTest::onlyWhatDiffersIsSaved()
{
    ReaderSettings set;
    m_saves = 0;
    QVERIFY(saveReaderSettings(settings(), set, set));
    QCOMPARE(m_saves, 0);
    const ReaderSettings before = set;
    set.gapMs = 60;
    QVERIFY(saveReaderSettings(settings(), before, set));
    QCOMPARE(m_saves, 1);
    OfficeSettings full = settings();
    full.save = [](const QString &, const QString &, const QString &) { return false; };
    QVERIFY(!saveReaderSettings(full, before, set));
}

void ReaderSettingsTest::whatIsNotUnderstood_data()
{
    QTest::addColumn<QString>("line");
    for (const char *line : {"", "serial", "serial 9600", "serial x /dev/tty", "serial 9601 /dev/tty", "keyboard",
                             "mouse /dev/x", "keyboard event0", "serial 9600 ttyS0"})
        QTest::newRow(line) << QString::fromLatin1(line);
}

void ReaderSettingsTest::whatIsNotUnderstood()
{
    QFETCH(const QString, line);
    QVERIFY(!deviceOfLine(line));
    m_saved = {{u"Readers/Device1"_s, line},
               {u"Readers/Device3"_s, u"keyboard /dev/input/event0"_s},
               {u"Readers/Gap"_s, u"soon"_s}};
    const ReaderSettings read = readReaderSettings(settings());
    QCOMPARE(read.devices.size(), 1);
    QCOMPARE(read.gapMs, 50);
    m_saved[u"Readers/Gap"_s] = u"5"_s;
    QCOMPARE(readReaderSettings(settings()).gapMs, 20);
    m_saved[u"Readers/Gap"_s] = u"5000"_s;
    QCOMPARE(readReaderSettings(settings()).gapMs, 300);
}

void ReaderSettingsTest::devicesAreFound()
{
    const QTemporaryDir folder;
    const auto make = [&folder](const QString &path) {
        QVERIFY(QDir().mkpath(folder.filePath(path.section(u'/', 0, -2))));
        QVERIFY(QFile(folder.filePath(path)).open(QIODevice::WriteOnly));
    };
    for (const QString &path :
         {u"input/by-id/usb-Reader-event-kbd"_s, u"input/by-id/usb-Mouse-event-mouse"_s, u"ttyUSB0"_s, u"ttyS0"_s})
        make(path);
    QCOMPARE(foundDevices(folder.path()),
             (QStringList{folder.filePath(u"input/by-id/usb-Reader-event-kbd"_s), folder.filePath(u"ttyUSB0"_s)}));
    make(u"serial/by-id/usb-Reader-if00"_s);
    QCOMPARE(foundDevices(folder.path()).last(), folder.filePath(u"serial/by-id/usb-Reader-if00"_s));
    QCOMPARE(kindOfPath(u"/dev/input/event3"_s), ReaderKind::Keyboard);
    QCOMPARE(kindOfPath(u"/dev/ttyACM0"_s), ReaderKind::Serial);
}

void ReaderSettingsTest::pageSaves()
{
    m_saved[u"Readers/Gap"_s] = u"99"_s; // written by hand
    ReaderSettingsPage page(settings(), {u"/dev/input/by-id/usb-Reader-event-kbd"_s, u"/dev/ttyACM0"_s});
    QVERIFY(!page.leaving().has_value());
    auto *gap = page.findChild<QComboBox *>(u"readerGap"_s);
    QCOMPARE(gap->currentText(), u"99 ms"_s);
    gap->setCurrentIndex(gap->findData(200));
    page.findChild<QLineEdit *>(u"readerPrefix"_s)->setText(u"~"_s);
    auto *path = page.findChild<QComboBox *>(u"readerPath"_s);
    auto *speed = page.findChild<QComboBox *>(u"readerSpeed"_s);
    auto *add = page.findChild<QPushButton *>(u"addReader"_s);
    auto *remove = page.findChild<QPushButton *>(u"removeReader"_s);
    QVERIFY(!speed->isEnabled());
    add->click();
    path->setCurrentIndex(1);
    QVERIFY(speed->isEnabled());
    speed->setCurrentIndex(speed->findData(115200));
    add->click();
    path->setEditText(u" /dev/ttyUSB7 "_s);
    add->click();
    QVERIFY(!remove->isEnabled());
    page.findChild<QListWidget *>(u"readerDevices"_s)->setCurrentRow(1);
    QVERIFY(remove->isEnabled());
    remove->click();
    QVERIFY(page.leaving().has_value());
    page.findChild<QPushButton *>(u"saveReaders"_s)->click();
    QVERIFY(!page.leaving().has_value());
    const ReaderSettings expected{true,
                                  200,
                                  u"~"_s,
                                  {{ReaderKind::Keyboard, u"/dev/input/by-id/usb-Reader-event-kbd"_s, 9600},
                                   {ReaderKind::Serial, u"/dev/ttyUSB7"_s, 115200}}};
    QVERIFY(readReaderSettings(settings()) == expected);
    page.findChild<QCheckBox *>(u"readersType"_s)->setChecked(false);
    QVERIFY(!gap->isEnabled());
    QVERIFY(page.leaving().has_value());
}

void ReaderSettingsTest::pageRefuses()
{
    ReaderSettingsPage page(settings(), {});
    auto *path = page.findChild<QComboBox *>(u"readerPath"_s);
    auto *add = page.findChild<QPushButton *>(u"addReader"_s);
    const auto *outcome = page.findChild<QLabel *>(u"readersOutcome"_s);
    QVERIFY(!add->isEnabled());
    path->setEditText(u"COM1"_s);
    add->click();
    QVERIFY(outcome->text().contains(u"is a path"_s));
    path->setEditText(u"/dev/ttyS0"_s);
    add->click();
    QCOMPARE(outcome->text(), QString());
    add->click();
    QVERIFY(outcome->text().contains(u"already"_s));
    for (const QString &other : {u"/dev/ttyS1"_s, u"/dev/ttyS2"_s, u"/dev/ttyS3"_s, u"/dev/ttyS4"_s}) {
        path->setEditText(other);
        add->click();
    }
    QCOMPARE(page.findChild<QListWidget *>(u"readerDevices"_s)->count(), 4);
    QVERIFY(!add->isEnabled());
}

HARROWBY_TEST(app_reader_settings_test, ReaderSettingsTest)
#include "reader_settings_test.moc"
