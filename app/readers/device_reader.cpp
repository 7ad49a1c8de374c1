// SPDX-License-Identifier: MIT
#include "app/readers/device_reader.h"

#include "app/readers/code_line.h"
#include "app/readers/reader_keys.h"
#include "basic/steady_clock.h"

#include <QFile>
#include <QStringDecoder>

#include <fcntl.h>
#include <linux/input.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr int untilNextTryMs = 1000;
constexpr int restMs = 2000; ///< after so long what was begun is no longer the same code

/// A descriptor that is closed with the object, which lets go of what was held.
class Descriptor
{
public:
    explicit Descriptor(int number) : m_number(number) {}
    ~Descriptor()
    {
        if (m_number >= 0)
            ::close(m_number);
    }
    Q_DISABLE_COPY_MOVE(Descriptor)
    [[nodiscard]] int number() const { return m_number; }

private:
    int m_number;
};

constexpr std::array<std::pair<int, speed_t>, 8> speeds{{{1200, B1200},
                                                         {2400, B2400},
                                                         {4800, B4800},
                                                         {9600, B9600},
                                                         {19200, B19200},
                                                         {38400, B38400},
                                                         {57600, B57600},
                                                         {115200, B115200}}};

/// Of readerSpeeds(), as termios has it.
speed_t speedOf(int baud)
{
    const auto *const found =
        std::find_if(speeds.cbegin(), speeds.cend(), [baud](const auto &speed) { return speed.first == baud; });
    return found == speeds.cend() ? B9600 : found->second;
}

bool holdKeyboard(int descriptor)
{
    return ::ioctl(descriptor, EVIOCGRAB, 1) == 0;
}

/// flock() counts for root too, TIOCEXCL for all others.
bool holdSerial(int descriptor, int baud)
{
    if (::flock(descriptor, LOCK_EX | LOCK_NB) != 0)
        return false;
    termios settings{};
    if (::tcgetattr(descriptor, &settings) != 0)
        return false;
    ::cfmakeraw(&settings);
    settings.c_cflag |= CLOCAL | CREAD;
    ::cfsetspeed(&settings, speedOf(baud));
    settings.c_cc[VMIN] = 1;
    settings.c_cc[VTIME] = 0;
    static_cast<void>(::ioctl(descriptor, TIOCEXCL));
    return ::tcsetattr(descriptor, TCSANOW, &settings) == 0 && ::tcflush(descriptor, TCIFLUSH) == 0;
}

DeviceReader::Hold holderOf(const ReaderDevice &device)
{
    if (device.kind == ReaderDevice::Kind::Keyboard)
        return holdKeyboard;
    return [baud = device.baud](int descriptor) { return holdSerial(descriptor, baud); };
}

QString wordsOf(int error)
{
    if (error == EBUSY || error == EWOULDBLOCK)
        return u"Another program uses it"_s;
    return QString::fromLocal8Bit(std::strerror(error));
}

} // namespace

/// What the thread does. It touches nothing of the reader but its signals, which Qt queues for the reader's thread.
class DeviceReader::Work
{
public:
    Work(DeviceReader &reader, Hold hold) : m_reader(reader), m_device(reader.m_device), m_hold(std::move(hold)) {}

    void run(const std::stop_token &stop)
    {
        while (!stop.stop_requested()) {
            const int error = read(stop);
            if (stop.stop_requested())
                return;
            if (!std::exchange(m_lost, true))
                Q_EMIT m_reader.lost(wordsOf(error));
            static_cast<void>(wait(-1, untilNextTryMs));
        }
    }

private:
    /// Until the device is lost, or cannot be had; why.
    int read(const std::stop_token &stop)
    {
        const QByteArray path = QFile::encodeName(m_device.path);
        const Descriptor file(::open(path.constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
        if (file.number() < 0 || !m_hold(file.number()))
            return errno;
        if (std::exchange(m_lost, false))
            Q_EMIT m_reader.found();
        begin();
        std::array<char, 64 * sizeof(input_event)> bytes{};
        while (!stop.stop_requested()) {
            if (!wait(file.number(), m_rests ? -1 : restMs)) {
                begin();
                continue;
            }
            const ssize_t count = ::read(file.number(), bytes.data(), bytes.size());
            if (count > 0)
                take({bytes.data(), static_cast<qsizetype>(count)});
            else if (count == 0)
                return ENODEV;
            else if (errno != EAGAIN && errno != EINTR)
                return errno;
        }
        return 0;
    }

    /// True when there is something to read; false after the time, or when the reader ends.
    [[nodiscard]] bool wait(int descriptor, int ms) const
    {
        std::array<pollfd, 2> files{pollfd{m_reader.m_wake, POLLIN, 0}, pollfd{descriptor, POLLIN, 0}};
        return ::poll(files.data(), files.size(), ms) > 0 && files[1].revents != 0;
    }

    void begin()
    {
        m_line.clear();
        m_keys.clear();
        m_text.resetState();
        m_part.clear();
        m_rests = true;
    }

    void take(const QByteArray &bytes)
    {
        m_rests = false;
        if (m_device.kind == ReaderDevice::Kind::Keyboard)
            return takeKeys(bytes);
        const QString text = m_text.decode(bytes);
        for (const QChar character : text)
            add(character);
    }

    void takeKeys(const QByteArray &bytes)
    {
        m_part += bytes;
        input_event event{};
        for (; m_part.size() >= static_cast<qsizetype>(sizeof(event)); m_part.remove(0, sizeof(event))) {
            std::memcpy(&event, m_part.constData(), sizeof(event));
            if (event.type == EV_SYN && event.code == SYN_DROPPED) {
                m_line.spoil(); // keys are missing
                m_keys.clear();
            } else if (event.type == EV_KEY) {
                if (const auto character = m_keys.key(event.code, event.value))
                    add(*character);
            }
        }
    }

    void add(QChar character)
    {
        m_line.add(character, [this](const CodeLine::Outcome &outcome) {
            if (outcome.tooLong)
                Q_EMIT m_reader.tooLong();
            else
                Q_EMIT m_reader.codeRead(outcome.code, steadyNow());
        });
    }

    DeviceReader &m_reader;
    const ReaderDevice m_device;
    const Hold m_hold;
    bool m_lost = false;
    bool m_rests = true; ///< nothing has come since the last begin()
    CodeLine m_line;
    ReaderKeys m_keys;
    QStringDecoder m_text{QStringDecoder::Utf8};
    QByteArray m_part; ///< of an event
};

DeviceReader::DeviceReader(const ReaderDevice &device, QObject *parent) : DeviceReader(device, holderOf(device), parent)
{
}

/// The thread begins with the event loop, when whoever made the reader has connected its signals.
DeviceReader::DeviceReader(const ReaderDevice &device, Hold hold, QObject *parent) :
    QObject(parent), m_device(device), m_wake(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    auto work = std::make_shared<Work>(*this, std::move(hold));
    const auto begin = [this, work] {
        m_thread = std::jthread([work](const std::stop_token &stop) { work->run(stop); });
    };
    QMetaObject::invokeMethod(this, begin, Qt::QueuedConnection);
}

DeviceReader::~DeviceReader()
{
    m_thread.request_stop();
    const std::uint64_t one = 1;
    static_cast<void>(!::write(m_wake, &one, sizeof(one)));
    if (m_thread.joinable())
        m_thread.join();
    ::close(m_wake);
}

QList<int> readerSpeeds()
{
    QList<int> bauds;
    for (const auto &[baud, speed] : speeds)
        bauds << baud;
    return bauds;
}

} // namespace harrowby::app
