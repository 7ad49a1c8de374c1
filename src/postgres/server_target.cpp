// SPDX-License-Identifier: MIT
#include "postgres/server_target.h"

#include <libpq-fe.h>

#include <netdb.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <memory>

using namespace Qt::StringLiterals;

namespace harrowby::postgres {

namespace {

/// libpq has no call that reads the service file and then stops. This value is none of the ones it knows, so that it
/// stops once it has put all options together, and before it asks the network for anything.
constexpr const char *stoppingValue = "stop-here";

QByteArray valueOf(const ConnectOptions &options, const QByteArray &key)
{
    for (const auto &[name, value] : options) {
        if (name == key)
            return value;
    }
    return {};
}

void setOption(ConnectOptions &options, const QByteArray &key, const QByteArray &value)
{
    options.removeIf([&key](const auto &option) { return option.first == key; });
    options.emplaceBack(key, value);
}

/// What libpq says about a text that it cannot read quotes a part of it, which may be that of a password.
QString unreadable()
{
    return u"it cannot be read; in a name or a password, what is neither letter nor digit stands as %XX in an address, "
           "and between quotes among keywords"_s;
}

bool isReadable(const QByteArray &conninfo)
{
    char *message = nullptr;
    PQconninfoOption *options = PQconninfoParse(conninfo.constData(), &message);
    const bool isRead = options != nullptr;
    PQconninfoFree(options);
    PQfreemem(message);
    return isRead;
}

/// A password with a slash puts its beginning in the place of a port.
bool hasPorts(const ConnectOptions &options)
{
    const QList<QByteArray> ports = valueOf(options, "port").split(',');
    return std::all_of(ports.begin(), ports.end(), [](const QByteArray &port) {
        return std::all_of(port.begin(), port.end(), [](char c) { return c >= '0' && c <= '9'; });
    });
}

ConnectOptions optionsOf(PGconn *connection)
{
    ConnectOptions options;
    PQconninfoOption *all = PQconninfo(connection);
    for (const PQconninfoOption *option = all; option && option->keyword; ++option) {
        if (option->val && *option->val)
            options.emplaceBack(option->keyword, option->val);
    }
    PQconninfoFree(all);
    return options;
}

/// The nth of values separated by commas; a single one is everybody's.
QByteArray nth(const QList<QByteArray> &values, qsizetype n)
{
    return values.size() == 1 ? values.first() : values.value(n);
}

bool isNumeric(const QByteArray &name)
{
    addrinfo hints{};
    hints.ai_flags = AI_NUMERICHOST;
    addrinfo *found = nullptr;
    const bool isNumber = getaddrinfo(name.constData(), nullptr, &hints, &found) == 0;
    if (isNumber)
        freeaddrinfo(found);
    return isNumber;
}

bool isSocket(const QByteArray &name)
{
    return name.isEmpty() || name.startsWith('/') || name.startsWith('@');
}

QByteArray numericOf(const addrinfo &entry)
{
    std::array<char, NI_MAXHOST> text{};
    const int code = getnameinfo(entry.ai_addr, entry.ai_addrlen, text.data(), text.size(), nullptr, 0, NI_NUMERICHOST);
    return code == 0 ? QByteArray(text.data()) : QByteArray();
}

} // namespace

bool Host::needsLookup() const
{
    return address.isEmpty() && !isSocket(name) && !isNumeric(name);
}

QString Host::label() const
{
    const QByteArray machine = name.isEmpty() ? address : name;
    const QString text = machine.isEmpty() ? u"this machine"_s : QString::fromUtf8(machine);
    return port.isEmpty() || port == "5432" ? text : text + u':' + QString::fromUtf8(port);
}

Result<ConnectOptions, PgError> connectOptions(const QByteArray &conninfo)
{
    const std::array<const char *, 3> keys{"dbname", "target_session_attrs", nullptr};
    const std::array<const char *, 3> values{conninfo.constData(), stoppingValue, nullptr};
    const std::unique_ptr<PGconn, decltype(&PQfinish)> connection(PQconnectStartParams(keys.data(), values.data(), 1),
                                                                  &PQfinish);
    const QByteArray message = PQerrorMessage(connection.get());
    if (!message.contains(stoppingValue))
        return Unexpected(
            PgError{PgError::Kind::BadTarget, {}, isReadable(conninfo) ? oneLine(message) : unreadable()});
    ConnectOptions options = optionsOf(connection.get());
    // libpq's own choice; to get a ticket it would ask the network, and block. A store's servers speak TLS.
    if (valueOf(options, "gssencmode") == "prefer")
        setOption(options, "gssencmode", "disable");
    if (!hasPorts(options))
        return Unexpected(PgError{PgError::Kind::BadTarget, {}, unreadable()});
    setOption(options, "target_session_attrs", "any");
    return options;
}

QList<Host> hostsOf(const ConnectOptions &options)
{
    const QList<QByteArray> names = valueOf(options, "host").split(',');
    const QList<QByteArray> addresses = valueOf(options, "hostaddr").split(',');
    const QList<QByteArray> ports = valueOf(options, "port").split(',');
    QList<Host> hosts;
    for (qsizetype i = 0; i < qMax(names.size(), addresses.size()); ++i)
        hosts.append({names.value(i), addresses.value(i), nth(ports, i)});
    return hosts;
}

ConnectOptions optionsFor(ConnectOptions options, const Host &host)
{
    setOption(options, "host", host.name);
    setOption(options, "hostaddr", host.address);
    setOption(options, "port", host.port);
    return options;
}

PgAddresses resolve(const QByteArray &name)
{
    addrinfo hints{};
    hints.ai_socktype = SOCK_STREAM;
    addrinfo *found = nullptr;
    const int code = getaddrinfo(name.constData(), nullptr, &hints, &found);
    if (code != 0)
        return {{}, QString::fromLocal8Bit(gai_strerror(code))};
    PgAddresses addresses;
    for (const addrinfo *entry = found; entry; entry = entry->ai_next) {
        if (const QByteArray numeric = numericOf(*entry); !numeric.isEmpty())
            addresses.numeric.append(numeric);
    }
    freeaddrinfo(found);
    return addresses;
}

} // namespace harrowby::postgres
