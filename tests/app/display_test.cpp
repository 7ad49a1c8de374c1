// SPDX-License-Identifier: MIT
#include "app/start/display.h"
#include "tests/program/test_program.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>

using namespace Qt::StringLiterals;
using namespace harrowby::app;

namespace {

/// Listens where a Wayland compositor would.
class Compositor
{
public:
    explicit Compositor(const QString &path) : m_socket(::socket(AF_UNIX, SOCK_STREAM, 0))
    {
        const QByteArray name = QFile::encodeName(path);
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        std::memcpy(address.sun_path, name.constData(), static_cast<std::size_t>(name.size()));
        m_listens = ::bind(m_socket, reinterpret_cast<const sockaddr *>(&address), sizeof(address)) == 0 &&
                    ::listen(m_socket, 1) == 0;
    }
    ~Compositor() { ::close(m_socket); }
    Compositor(const Compositor &) = delete;
    Compositor &operator=(const Compositor &) = delete;

    [[nodiscard]] bool listens() const { return m_listens; }

private:
    int m_socket;
    bool m_listens = false;
};

} // namespace

/// Displays of Wayland, whether or not Qt's plugin for them is installed here. Those of X11 are in program_test.cpp.
class DisplayTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void compositorIsFound_data();
    void compositorIsFound();
    void compositorIsMissed_data();
    void compositorIsMissed();
    void noBoxesWithoutAnApplicationOfWindows();

private:
    std::unique_ptr<QTemporaryDir> m_folder;
};

void DisplayTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(QDir(m_folder->path()).mkpath(u"platforms"_s));
    QVERIFY(QFile(m_folder->filePath(u"platforms/libqwayland-test.so"_s)).open(QIODevice::WriteOnly));
    qputenv("QT_PLUGIN_PATH", QFile::encodeName(m_folder->path()));
    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(m_folder->path()));
    qunsetenv("QT_QPA_PLATFORM");
    cleanup();
}

void DisplayTest::cleanup()
{
    for (const char *name : {"DISPLAY", "WAYLAND_DISPLAY", "XDG_SESSION_TYPE"})
        qunsetenv(name);
}

void DisplayTest::compositorIsFound_data()
{
    QTest::addColumn<QString>("socket");
    QTest::addColumn<QString>("variable"); // %1 is the folder
    QTest::newRow("usual name") << u"wayland-0"_s << QString();
    QTest::newRow("name of its own") << u"shop"_s << u"shop"_s;
    QTest::newRow("anywhere") << u"till"_s << u"%1/till"_s;
}

void DisplayTest::compositorIsFound()
{
    QFETCH(const QString, socket);
    QFETCH(const QString, variable);
    if (variable.isEmpty())
        qputenv("XDG_SESSION_TYPE", "wayland");
    else
        qputenv("WAYLAND_DISPLAY", QFile::encodeName(QString(variable).replace(u"%1"_s, m_folder->path())));
    QVERIFY(!findDisplay({}, {}));
    const Compositor compositor(m_folder->filePath(socket));
    QVERIFY(compositor.listens());
    const auto found = findDisplay({}, {});
    QVERIFY2(found.has_value(), found ? "" : qPrintable(found.error()));
    QVERIFY(*found == nullptr); // there is no connection to keep
}

void DisplayTest::compositorIsMissed_data()
{
    QTest::addColumn<QByteArray>("variable");
    QTest::newRow("nobody listens") << QByteArray("shop");
    QTest::newRow("longer than an address") << '/' + QByteArray(200, 'x');
}

void DisplayTest::compositorIsMissed()
{
    QFETCH(const QByteArray, variable);
    qputenv("WAYLAND_DISPLAY", variable);
    const auto found = findDisplay({}, {});
    QVERIFY(!found);
    QVERIFY2(found.error().startsWith(u"The display \"%1\" cannot be reached."_s.arg(QString::fromUtf8(variable))),
             qPrintable(found.error()));
}

void DisplayTest::noBoxesWithoutAnApplicationOfWindows()
{
    QVERIFY(!canShowBoxes());
}

HARROWBY_CORE_TEST(app_display_test, DisplayTest)
#include "display_test.moc"
