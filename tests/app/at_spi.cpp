// SPDX-License-Identifier: MIT
#include "tests/app/at_spi.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusPendingCall>
#include <QDBusVariant>
#include <QProcessEnvironment>
#include <QTest>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app::test {

QDBusArgument &operator<<(QDBusArgument &argument, const Address &address)
{
    argument.beginStructure();
    argument << address.service << address.path;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, Address &address)
{
    argument.beginStructure();
    argument >> address.service >> address.path;
    argument.endStructure();
    return argument;
}

namespace {

constexpr int busPatience = 30000; // milliseconds
constexpr int labelledBy = 2;      // of AT-SPI's relations
const QString busName = u"harrowby-screen-reader"_s;
const QString accessible = u"org.a11y.atspi.Accessible"_s;
const QString actions = u"org.a11y.atspi.Action"_s;
const Address desktop{u"org.a11y.atspi.Registry"_s, QDBusObjectPath(u"/org/a11y/atspi/accessible/root"_s)};

QDBusConnection bus()
{
    return QDBusConnection(busName);
}

template <typename Value>
Value firstOf(const QDBusMessage &answer)
{
    return answer.arguments().isEmpty() ? Value() : qdbus_cast<Value>(answer.arguments().constFirst());
}

} // namespace

ScreenReader::~ScreenReader()
{
    QDBusConnection::disconnectFromBus(busName);
    if (m_bus.state() == QProcess::NotRunning)
        return;
    m_bus.terminate();
    m_bus.waitForFinished();
}

bool ScreenReader::start(const QString &display)
{
    qDBusRegisterMetaType<Address>();
    qDBusRegisterMetaType<QList<Address>>();
    // The bus starts what belongs to AT-SPI when somebody asks for it, in this environment.
    qputenv("XDG_RUNTIME_DIR", m_folder.path().toUtf8());
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"DISPLAY"_s, display);
    m_bus.setProcessEnvironment(environment);
    m_bus.start(u"dbus-daemon"_s, {u"--session"_s, u"--nofork"_s, u"--print-address=1"_s});
    if (!m_bus.waitForReadyRead(busPatience))
        return false;
    const QString address = QString::fromUtf8(m_bus.readLine()).trimmed();
    qputenv("DBUS_SESSION_BUS_ADDRESS", address.toUtf8());
    qputenv("QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "1");
    const QString sessionName = u"harrowby-session"_s;
    QDBusMessage question =
        QDBusMessage::createMethodCall(u"org.a11y.Bus"_s, u"/org/a11y/bus"_s, u"org.a11y.Bus"_s, u"GetAddress"_s);
    const auto readers = firstOf<QString>(QDBusConnection::connectToBus(address, sessionName).call(question));
    QDBusConnection::disconnectFromBus(sessionName);
    return !readers.isEmpty() && QDBusConnection::connectToBus(readers, busName).isConnected() && listen();
}

bool ScreenReader::listen()
{
    const Address registry{desktop.service, QDBusObjectPath(u"/org/a11y/atspi/registry"_s)};
    for (const QString &signal : {u"PropertyChange"_s, u"StateChanged"_s}) {
        const QVariantList arguments{u"Object:"_s + signal, QStringList(), QString()};
        if (ask(registry, u"org.a11y.atspi.Registry"_s, u"RegisterEvent"_s, arguments).type() !=
            QDBusMessage::ReplyMessage)
            return false;
        if (!bus().connect({}, {}, u"org.a11y.atspi.Event.Object"_s, signal, this, SLOT(hear(QDBusMessage))))
            return false;
    }
    return true;
}

void ScreenReader::hear(const QDBusMessage &signal)
{
    const QVariantList told = signal.arguments();
    m_told << Told{signal.member(),
                   told.value(0).toString(),
                   told.value(1).toInt(),
                   {signal.service(), QDBusObjectPath(signal.path())}};
}

QList<ScreenReader::Told> ScreenReader::heard()
{
    // An answer comes behind all that was told before it.
    static_cast<void>(everything());
    QCoreApplication::processEvents();
    return std::exchange(m_told, {});
}

QDBusMessage ScreenReader::ask(const Address &whom, const QString &interface, const QString &method,
                               const QVariantList &arguments) const
{
    QDBusMessage question = QDBusMessage::createMethodCall(whom.service, whom.path.path(), interface, method);
    question.setArguments(arguments);
    return bus().call(question, QDBus::Block, busPatience);
}

QVariant ScreenReader::property(const Address &whom, const QString &interface, const QString &name) const
{
    const auto answer = ask(whom, u"org.freedesktop.DBus.Properties"_s, u"Get"_s, {interface, name});
    return firstOf<QDBusVariant>(answer).variant();
}

QList<Address> ScreenReader::children(const Address &parent) const
{
    return firstOf<QList<Address>>(ask(parent, accessible, u"GetChildren"_s));
}

Part ScreenReader::read(const Address &address, int parent) const
{
    Part part{address, parent, {}, {}, {}, {}, {}};
    part.role = firstOf<QString>(ask(address, accessible, u"GetRoleName"_s));
    part.name = nameOf(address);
    part.description = property(address, accessible, u"Description"_s).toString();
    const auto bits = firstOf<QList<uint>>(ask(address, accessible, u"GetState"_s));
    for (int state = 0; state < 32 && !bits.isEmpty(); ++state) {
        if (bits.constFirst() & (1U << state))
            part.states << state;
    }
    return part;
}

QString ScreenReader::labelsOf(const Address &address) const
{
    const QDBusMessage answer = ask(address, accessible, u"GetRelationSet"_s);
    if (answer.arguments().isEmpty())
        return {};
    QStringList names;
    const auto relations = answer.arguments().constFirst().value<QDBusArgument>();
    relations.beginArray();
    while (!relations.atEnd()) {
        uint kind = 0;
        QList<Address> targets;
        relations.beginStructure();
        relations >> kind >> targets;
        relations.endStructure();
        for (const Address &target : targets) {
            if (kind == labelledBy)
                names << nameOf(target);
        }
    }
    relations.endArray();
    return names.join(u'\n');
}

void ScreenReader::readInto(QList<Part> &parts, const Address &address, int parent) const
{
    Part part = read(address, parent);
    if (part.role != u"application"_s && !part.is(Showing))
        return;
    part.labelledBy = labelsOf(address);
    const int place = static_cast<int>(parts.size());
    parts << part;
    for (const Address &child : children(address))
        readInto(parts, child, place);
}

QList<Part> ScreenReader::everything() const
{
    QList<Part> parts;
    for (const Address &program : children(desktop))
        readInto(parts, program, -1);
    return parts;
}

bool ScreenReader::sees(const QString &role, const QString &name) const
{
    const QList<Part> parts = everything();
    return std::any_of(parts.cbegin(), parts.cend(),
                       [&](const Part &part) { return part.role == role && part.name == name; });
}

std::optional<Part> ScreenReader::find(const QString &role, const QString &name) const
{
    std::optional<Part> found;
    const auto look = [&] {
        for (const Part &part : everything()) {
            if (part.role == role && part.name == name)
                found = part; // the last one: what is in front was made last
        }
        return found.has_value();
    };
    if (QTest::qWaitFor(look, busPatience))
        return found;
    qWarning("No %s \"%s\" on the screen, but:", qPrintable(role), qPrintable(name));
    for (const Part &part : everything())
        qWarning("%s \"%s\"", qPrintable(part.role), qPrintable(part.name));
    return std::nullopt;
}

bool ScreenReader::press(const Part &part) const
{
    const int count = property(part.address, actions, u"NActions"_s).toInt();
    for (int action = 0; action < count; ++action) {
        if (firstOf<QString>(ask(part.address, actions, u"GetName"_s, {action})) != u"Press"_s)
            continue;
        QDBusMessage press =
            QDBusMessage::createMethodCall(part.address.service, part.address.path.path(), actions, u"DoAction"_s);
        press.setArguments({action});
        bus().asyncCall(press);
        return true;
    }
    return false;
}

bool ScreenReader::press(const QString &role, const QString &name) const
{
    const auto part = find(role, name);
    return part && press(*part);
}

bool ScreenReader::enter(const QString &role, const QString &name, const QString &text) const
{
    const auto part = find(role, name);
    return part && firstOf<bool>(ask(part->address, u"org.a11y.atspi.EditableText"_s, u"SetTextContents"_s, {text}));
}

QString ScreenReader::text(const Part &part) const
{
    return firstOf<QString>(ask(part.address, u"org.a11y.atspi.Text"_s, u"GetText"_s, {0, -1}));
}

QString ScreenReader::nameOf(const Address &address) const
{
    return property(address, accessible, u"Name"_s).toString();
}

bool ScreenReader::focus(const Part &part) const
{
    return firstOf<bool>(ask(part.address, u"org.a11y.atspi.Component"_s, u"GrabFocus"_s));
}

} // namespace harrowby::app::test
