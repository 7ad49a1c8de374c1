// SPDX-License-Identifier: MIT
#include "app/readers/code_line.h"
#include "app/readers/code_readers.h"
#include "app/readers/device_reader.h"
#include "app/readers/reader_keys.h"
#include "tests/program/test_program.h"

#include <QDialog>
#include <QFile>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

#include <linux/input.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <memory>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace harrowby::app;
using ReaderKind = ReaderDevice::Kind;

namespace {

constexpr int patience = 20000; // milliseconds

/// The reader's end of a serial line.
class SerialReader
{
public:
    /// `link` names the till's end.
    explicit SerialReader(const QString &link) : m_master(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC))
    {
        if (::grantpt(m_master) == 0 && ::unlockpt(m_master) == 0) {
            QFile::remove(link);
            m_good = QFile::link(QString::fromLocal8Bit(::ptsname(m_master)), link);
        }
    }
    ~SerialReader() { ::close(m_master); }
    Q_DISABLE_COPY_MOVE(SerialReader)

    [[nodiscard]] bool isGood() const { return m_good; }
    [[nodiscard]] bool send(const QByteArray &bytes) const
    {
        return ::write(m_master, bytes.constData(), static_cast<std::size_t>(bytes.size())) == bytes.size();
    }

private:
    int m_master;
    bool m_good = false;
};

/// An input device, as far as a FIFO can be one.
class InputDevice
{
public:
    explicit InputDevice(const QString &path)
    {
        const QByteArray name = QFile::encodeName(path);
        ::unlink(name.constData());
        if (::mkfifo(name.constData(), 0600) == 0)
            m_file = ::open(name.constData(), O_RDWR | O_CLOEXEC);
    }
    ~InputDevice() { ::close(m_file); }
    Q_DISABLE_COPY_MOVE(InputDevice)

    [[nodiscard]] bool send(int type, int code, int value) const
    {
        input_event event{};
        event.type = static_cast<decltype(event.type)>(type);
        event.code = static_cast<decltype(event.code)>(code);
        event.value = value;
        return ::write(m_file, &event, sizeof(event)) == sizeof(event);
    }
    [[nodiscard]] bool tap(int key) const
    {
        return send(EV_KEY, key, 1) && send(EV_SYN, SYN_REPORT, 0) && send(EV_KEY, key, 0) &&
               send(EV_SYN, SYN_REPORT, 0);
    }

private:
    int m_file = -1;
};

/// What the thread of a reader tells, once it has reached this one. A QSignalSpy would be written to by that thread.
class Heard
{
public:
    template <typename... Arguments>
    Heard(const DeviceReader *reader, void (DeviceReader::*signal)(Arguments...))
    {
        QObject::connect(reader, signal, &m_here,
                         [this](const Arguments &...arguments) { m_texts << textOf(arguments...); });
    }

    [[nodiscard]] const QStringList &all() const { return m_texts; }
    [[nodiscard]] qsizetype size() const { return m_texts.size(); }
    [[nodiscard]] bool isEmpty() const { return m_texts.isEmpty(); }
    void clear() { m_texts.clear(); }

private:
    [[nodiscard]] static QString textOf() { return {}; }
    template <typename... Others>
    [[nodiscard]] static QString textOf(const QString &text, const Others &...)
    {
        return text;
    }

    QStringList m_texts;
    QObject m_here;
};

std::chrono::milliseconds steadyNow()
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now().time_since_epoch());
}

QStringList texts(const Heard &heard)
{
    return heard.all();
}

QStringList texts(const QSignalSpy &spy)
{
    QStringList all;
    for (const auto &arguments : spy)
        all << arguments.at(0).toString();
    return all;
}

/// What came before the till held the line is nobody's; so a code is sent until one arrives, and then one that is the
/// last of these.
template <typename Read>
void begin(const SerialReader &line, Read &read)
{
    QTRY_VERIFY_WITH_TIMEOUT(line.send("first\r") && !read.isEmpty(), patience);
    QVERIFY(line.send("ready\r"));
    QTRY_COMPARE_WITH_TIMEOUT(texts(read).value(texts(read).size() - 1), u"ready"_s, patience);
    read.clear();
}

} // namespace

class ReadersTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void lines_data();
    void lines();
    void spoiltLine();
    void keys();
    void serialCodes();
    void serialIsHeldAlone();
    void serialGoesAndComes();
    void twoAtOnce();
    void inputDevice();
    void inputDeviceThatLosesKeys();
    void inputDeviceOfAnother();
    void missingFromTheStart();
    void whereCodesGo();
    void codesOfAWaitAreRefused();

private:
    QTemporaryDir m_folder;
};

void ReadersTest::lines_data()
{
    QTest::addColumn<QString>("sent");
    QTest::addColumn<QStringList>("codes");
    const QString most(CodeLine::longest, u'7');
    QTest::newRow("carriage return") << u"4006\r"_s << QStringList{u"4006"_s};
    QTest::newRow("both") << u"4006\r\n590\r\n"_s << QStringList{u"4006"_s, u"590"_s};
    QTest::newRow("tab") << u"A B\t"_s << QStringList{u"A B"_s};
    for (const QString &odd : {u"A1' or '1'='1"_s, u"%_*?\"\\"_s, u"A1\u0000"_s, u"\u202eA1"_s})
        QTest::newRow(qPrintable(u"as it is: "_s + odd)) << odd + u'\r' << QStringList{odd};
    QTest::newRow("ten thousand") << QString(10'000, u'7') + u"\r4006\r"_s << QStringList{u"!"_s, u"4006"_s};
    QTest::newRow("no end") << u"4006"_s << QStringList();
    QTest::newRow("ends alone") << u"\r\n\r"_s << QStringList();
    QTest::newRow("short") << u"1\r"_s << QStringList{u"1"_s};
    QTest::newRow("longest") << most + u'\r' << QStringList{most};
    QTest::newRow("too long, then one") << most + u"7777\r4006\r"_s << QStringList{u"!"_s, u"4006"_s};
}

void ReadersTest::lines()
{
    QFETCH(const QString, sent);
    CodeLine line;
    QStringList codes;
    for (const QChar character : sent)
        line.add(character,
                 [&](const CodeLine::Outcome &outcome) { codes << (outcome.tooLong ? u"!"_s : outcome.code); });
    QTEST(codes, "codes");
}

void ReadersTest::spoiltLine()
{
    CodeLine line;
    QStringList codes;
    const auto send = [&](const QString &text) {
        for (const QChar character : text)
            line.add(character, [&](const CodeLine::Outcome &outcome) { codes << outcome.code; });
    };
    send(u"40"_s);
    line.spoil();
    send(u"06\r590\r"_s);
    QCOMPARE(codes, QStringList{u"590"_s});
    send(u"40"_s);
    line.clear();
    send(u"06\r"_s);
    QCOMPARE(codes.last(), u"06"_s);
}

void ReadersTest::keys()
{
    ReaderKeys keys;
    QString typed;
    const auto tap = [&](int code) {
        if (const auto character = keys.key(code, 1))
            typed += *character;
        QVERIFY(!keys.key(code, 2));
        QVERIFY(!keys.key(code, 0));
    };
    for (int code = KEY_RESERVED; code < KEY_MAX; ++code) {
        if (code != KEY_LEFTSHIFT && code != KEY_RIGHTSHIFT && code != KEY_CAPSLOCK)
            tap(code);
    }
    QCOMPARE(typed, u"1234567890-=\tqwertyuiop[]\rasdfghjkl;'`\\zxcvbnm,./* 789-456+1230.\\\r/"_s);
    typed.clear();
    for (const int shift : {KEY_LEFTSHIFT, KEY_RIGHTSHIFT}) {
        QVERIFY(!keys.key(shift, 1));
        tap(KEY_A);
        tap(KEY_1);
        tap(KEY_MINUS);
        QVERIFY(!keys.key(shift, 0));
        tap(KEY_A);
    }
    QCOMPARE(typed, u"A!_aA!_a"_s);
    typed.clear();
    tap(KEY_CAPSLOCK);
    tap(KEY_A);
    tap(KEY_1);
    QVERIFY(!keys.key(KEY_LEFTSHIFT, 1));
    tap(KEY_A);
    QCOMPARE(typed, u"A1a"_s);
}

void ReadersTest::serialCodes()
{
    const QString path = m_folder.filePath(u"serial"_s);
    const SerialReader line(path);
    QVERIFY(line.isGood());
    DeviceReader reader({ReaderKind::Serial, path, 9600});
    Heard read(&reader, &DeviceReader::codeRead);
    Heard tooLong(&reader, &DeviceReader::tooLong);
    begin(line, read);
    QVERIFY(line.send("4006381"));
    QVERIFY(line.send("333931\r\n"));
    QVERIFY(line.send("Stra\xC3\x9F"
                      "e 1\t"));
    QVERIFY(line.send(QByteArray(2000, '7') + '\r'));
    QVERIFY(line.send("last\n"));
    QTRY_COMPARE_WITH_TIMEOUT(read.size(), 3, patience);
    QCOMPARE(texts(read), (QStringList{u"4006381333931"_s, u"Stra\u00DFe 1"_s, u"last"_s}));
    QCOMPARE(tooLong.size(), 1);
}

void ReadersTest::serialIsHeldAlone()
{
    const QString path = m_folder.filePath(u"held"_s);
    const SerialReader line(path);
    auto first = std::make_unique<DeviceReader>(ReaderDevice{ReaderKind::Serial, path, 115200});
    Heard read(first.get(), &DeviceReader::codeRead);
    QTRY_VERIFY_WITH_TIMEOUT(line.send("first\r") && !read.isEmpty(), patience);
    DeviceReader second({ReaderKind::Serial, path, 115200});
    Heard lost(&second, &DeviceReader::lost);
    Heard found(&second, &DeviceReader::found);
    QTRY_COMPARE_WITH_TIMEOUT(texts(lost), QStringList{u"Another program uses it"_s}, patience);
    first.reset();
    QTRY_COMPARE_WITH_TIMEOUT(found.size(), 1, patience);
    QCOMPARE(lost.size(), 1);
}

void ReadersTest::serialGoesAndComes()
{
    const QString path = m_folder.filePath(u"moving"_s);
    auto line = std::make_unique<SerialReader>(path);
    DeviceReader reader({ReaderKind::Serial, path, 9600});
    Heard read(&reader, &DeviceReader::codeRead);
    Heard lost(&reader, &DeviceReader::lost);
    Heard found(&reader, &DeviceReader::found);
    begin(*line, read);
    QVERIFY(line->send("half"));
    line.reset();
    QTRY_COMPARE_WITH_TIMEOUT(lost.size(), 1, patience);
    QTest::qWait(1500); // it looks again meanwhile, and says nothing
    QCOMPARE(lost.size(), 1);
    line = std::make_unique<SerialReader>(path);
    QTRY_COMPARE_WITH_TIMEOUT(found.size(), 1, patience);
    QVERIFY(line->send("whole\r"));
    QTRY_COMPARE_WITH_TIMEOUT(read.size(), 1, patience);
    QCOMPARE(texts(read), QStringList{u"whole"_s});
}

/// Characters of both at once, in turns: each code is whole.
void ReadersTest::twoAtOnce()
{
    const std::array paths{m_folder.filePath(u"one"_s), m_folder.filePath(u"two"_s)};
    const SerialReader one(paths[0]);
    const SerialReader two(paths[1]);
    CodeReaders readers({{ReaderKind::Serial, paths[0], 9600}, {ReaderKind::Serial, paths[1], 9600}});
    QSignalSpy read(&readers, &CodeReaders::codeRead);
    begin(one, read);
    begin(two, read);
    constexpr qsizetype scans = 50;
    for (qsizetype scan = 0; scan < scans; ++scan) {
        for (int place = 0; place < 4; ++place) {
            QVERIFY(one.send(place < 3 ? "4" : "\r"));
            QVERIFY(two.send(place < 3 ? "5" : "\r"));
        }
    }
    QTRY_COMPARE_WITH_TIMEOUT(read.size(), 2 * scans, patience);
    QCOMPARE(texts(read).count(u"444"_s), scans);
    QCOMPARE(texts(read).count(u"555"_s), scans);
}

void ReadersTest::inputDevice()
{
    const QString path = m_folder.filePath(u"event0"_s);
    const InputDevice device(path);
    int held = 0;
    DeviceReader reader({ReaderKind::Keyboard, path}, [&held](int) { return ++held > 0; });
    Heard read(&reader, &DeviceReader::codeRead);
    for (const int key : {KEY_4, KEY_0, KEY_0, KEY_6, KEY_LEFTSHIFT})
        QVERIFY(device.tap(key));
    QVERIFY(device.send(EV_KEY, KEY_LEFTSHIFT, 1));
    QVERIFY(device.tap(KEY_A));
    QVERIFY(device.send(EV_KEY, KEY_LEFTSHIFT, 0));
    QVERIFY(device.tap(KEY_A));
    QVERIFY(device.tap(KEY_KPENTER));
    QTRY_COMPARE_WITH_TIMEOUT(texts(read), QStringList{u"4006Aa"_s}, patience);
    QCOMPARE(held, 1);
}

/// The kernel says that it dropped events: what is left of that code is none.
void ReadersTest::inputDeviceThatLosesKeys()
{
    const QString path = m_folder.filePath(u"event1"_s);
    const InputDevice device(path);
    DeviceReader reader({ReaderKind::Keyboard, path}, [](int) { return true; });
    Heard read(&reader, &DeviceReader::codeRead);
    QVERIFY(device.tap(KEY_4));
    QVERIFY(device.send(EV_SYN, SYN_DROPPED, 0));
    for (const int key : {KEY_0, KEY_6, KEY_ENTER, KEY_5, KEY_9, KEY_ENTER})
        QVERIFY(device.tap(key));
    QTRY_COMPARE_WITH_TIMEOUT(texts(read), QStringList{u"59"_s}, patience);
}

void ReadersTest::inputDeviceOfAnother()
{
    const QString path = m_folder.filePath(u"event2"_s);
    const InputDevice device(path);
    DeviceReader reader({ReaderKind::Keyboard, path}); // held for real, which a FIFO does not let happen
    Heard read(&reader, &DeviceReader::codeRead);
    Heard lost(&reader, &DeviceReader::lost);
    QVERIFY(device.tap(KEY_4));
    QVERIFY(device.tap(KEY_ENTER));
    QTRY_COMPARE_WITH_TIMEOUT(lost.size(), 1, patience);
    QCOMPARE(read.size(), 0);
}

void ReadersTest::missingFromTheStart()
{
    CodeReaders readers({{ReaderKind::Serial, u"/nowhere/ttyACM0"_s}});
    QSignalSpy lost(&readers, &CodeReaders::readerLost);
    QTRY_COMPARE_WITH_TIMEOUT(lost.size(), 1, patience);
    QCOMPARE(lost.first().at(1).toString(), u"The code reader \"ttyACM0\" is not there: No such file or directory."_s);
}

void ReadersTest::whereCodesGo()
{
    const QString path = m_folder.filePath(u"places"_s);
    const SerialReader line(path);
    CodeReaders readers({{ReaderKind::Serial, path}});
    QSignalSpy read(&readers, &CodeReaders::codeRead);
    QSignalSpy refused(&readers, &CodeReaders::codeRefused);
    begin(line, read);
    QWidget window;
    QLineEdit entry(&window);
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    entry.setFocus();
    QSignalSpy entered(&entry, &QLineEdit::returnPressed);
    QVERIFY(line.send("4006\r"));
    QTRY_COMPARE_WITH_TIMEOUT(entry.text(), u"4006"_s, patience);
    entry.setEchoMode(QLineEdit::Password);
    QVERIFY(line.send("5901\r"));
    QTRY_COMPARE_WITH_TIMEOUT(texts(read), QStringList{u"5901"_s}, patience);
    QCOMPARE(entry.text(), u"4006"_s);
    QDialog box(&window);
    box.open();
    QVERIFY(line.send("7777\r"));
    QTRY_COMPARE_WITH_TIMEOUT(refused.size(), 1, patience);
    QVERIFY(box.isVisible());
    QCOMPARE(read.size(), 1);
    QCOMPARE(entered.size(), 0);
}

/// They come out of the queue when the wait is over.
void ReadersTest::codesOfAWaitAreRefused()
{
    const QString path = m_folder.filePath(u"waiting"_s);
    const SerialReader line(path);
    CodeReaders readers({{ReaderKind::Serial, path}});
    QSignalSpy read(&readers, &CodeReaders::codeRead);
    QList<CodeReaders::Refusal> refused;
    connect(&readers, &CodeReaders::codeRefused, this, [&](CodeReaders::Refusal why) { refused << why; });
    begin(line, read);
    const auto begun = steadyNow();
    QVERIFY(line.send("4006\r"));
    QThread::msleep(300); // the window waits, its reader does not
    const auto over = steadyNow();
    readers.refuseWhere([&](std::chrono::milliseconds at) { return at >= begun && at < over; });
    QVERIFY(line.send("5901\r"));
    QTRY_COMPARE_WITH_TIMEOUT(texts(read), QStringList{u"5901"_s}, patience);
    QCOMPARE(refused, QList{CodeReaders::Refusal::Waiting});
}

HARROWBY_TEST(app_readers_test, ReadersTest)
#include "readers_test.moc"
