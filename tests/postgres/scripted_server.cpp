// SPDX-License-Identifier: MIT
#include "tests/postgres/scripted_server.h"

#include <QtEndian>

#include <algorithm>
#include <chrono>
#include <utility>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace harrowby::test {

namespace {

constexpr quint32 askForTls = 80877103;
constexpr quint32 askForGss = 80877104;
constexpr quint32 cancelRequest = 80877102;
constexpr QByteArrayView questionsBegin = "begin;set client_min_messages";

QByteArray number32(quint32 value)
{
    QByteArray bytes(4, '\0');
    qToBigEndian(value, bytes.data());
    return bytes;
}

QByteArray number16(qsizetype value)
{
    QByteArray bytes(2, '\0');
    qToBigEndian(static_cast<quint16>(value), bytes.data());
    return bytes;
}

QByteArray message(char type, const QByteArray &body)
{
    return type + number32(static_cast<quint32>(body.size() + 4)) + body;
}

QByteArray text(const QByteArray &value)
{
    return value + '\0';
}

QByteArray parameter(const QByteArray &name, const QByteArray &value)
{
    return message('S', text(name) + text(value));
}

} // namespace

/// One connection. Its thread reads until the other end, or the test, closes it.
class ScriptedServer::Client
{
public:
    explicit Client(int descriptor) : m_descriptor(descriptor) {}

    [[nodiscard]] QByteArray read(qsizetype size) const
    {
        QByteArray bytes(size, '\0');
        for (qsizetype got = 0; got < size;) {
            const ssize_t more = ::recv(m_descriptor, bytes.data() + got, static_cast<size_t>(size - got), 0);
            if (more <= 0)
                return {};
            got += more;
        }
        return bytes;
    }
    [[nodiscard]] quint32 readNumber() const
    {
        const QByteArray bytes = read(4);
        return bytes.isEmpty() ? 0 : qFromBigEndian<quint32>(bytes.constData());
    }
    bool write(const QByteArray &bytes) const
    {
        return ::send(m_descriptor, bytes.constData(), static_cast<size_t>(bytes.size()), MSG_NOSIGNAL) == bytes.size();
    }

private:
    int m_descriptor;
};

ScriptedServer::ScriptedServer(Manners manners, Script script) :
    m_manners(std::move(manners)), m_script(std::move(script)), m_listening(::socket(AF_INET, SOCK_STREAM, 0))
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = ::inet_addr(m_manners.address.constData());
    address.sin_port = htons(m_manners.port);
    socklen_t size = sizeof address;
    auto *any = reinterpret_cast<sockaddr *>(&address);
    if (::bind(m_listening, any, size) != 0 || ::listen(m_listening, 16) != 0 ||
        ::getsockname(m_listening, any, &size) != 0)
        qFatal("the scripted server cannot listen");
    m_port = ntohs(address.sin_port);
    m_thread = std::thread([this] { work(); });
}

ScriptedServer::~ScriptedServer()
{
    m_isOver = true;
    ::shutdown(m_listening, SHUT_RDWR);
    m_thread.join();
    hangUp();
    for (std::thread &client : m_clients)
        client.join();
    ::close(m_listening);
}

QByteArray ScriptedServer::conninfo() const
{
    return "host=127.0.0.1 user=till dbname=shop port=" + QByteArray::number(m_port);
}

QByteArrayList ScriptedServer::statements() const
{
    const std::lock_guard lock(m_mutex);
    return m_statements;
}

QByteArrayList ScriptedServer::questions() const
{
    const std::lock_guard lock(m_mutex);
    return m_questions;
}

void ScriptedServer::hangUp()
{
    const std::lock_guard lock(m_mutex);
    for (const int descriptor : m_open)
        ::shutdown(descriptor, SHUT_RDWR);
}

void ScriptedServer::work()
{
    for (;;) {
        const int descriptor = ::accept(m_listening, nullptr, nullptr);
        if (descriptor < 0 || m_isOver)
            return;
        const std::lock_guard lock(m_mutex);
        m_open.push_back(descriptor);
        m_clients.emplace_back([this, descriptor] { serve(descriptor); });
    }
}

void ScriptedServer::serve(int descriptor)
{
    Client client(descriptor);
    if (logIn(client)) {
        for (;;) {
            const QByteArray type = client.read(1);
            const quint32 size = client.readNumber();
            const QByteArray body = size > 4 ? client.read(size - 4) : QByteArray();
            if (type != "Q" || !answer(client, body.chopped(1)))
                break;
        }
    }
    const std::lock_guard lock(m_mutex);
    std::erase(m_open, descriptor);
    ::close(descriptor);
}

bool ScriptedServer::logIn(Client &client)
{
    for (;;) {
        const quint32 size = client.readNumber();
        const quint32 what = client.readNumber();
        if (size == 0 || what == 0)
            return false;
        if (m_manners.isSilent)
            return client.read(1 << 20).size() > 0; // until it goes
        if (what == askForTls || what == askForGss) {
            client.write("N");
            continue;
        }
        (void)client.read(size - 8);
        if (what == cancelRequest) {
            ++m_cancelled;
            return false;
        }
        break;
    }
    if (!m_manners.loginError.isEmpty()) {
        client.write(m_manners.loginError);
        return false;
    }
    return client.write(message('R', number32(0)) + parameter("server_version", m_manners.version) +
                        parameter("client_encoding", "UTF8") + parameter("standard_conforming_strings", "on") +
                        message('K', number32(1) + number32(2)) + ready());
}

bool ScriptedServer::answer(Client &client, const QByteArray &statements)
{
    const Answer answer = answerTo(statements);
    for (const QByteArray &piece : answer.pieces) {
        std::this_thread::sleep_for(std::chrono::milliseconds(answer.pauseMs));
        if (!client.write(piece))
            return false;
    }
    switch (answer.then) {
    case Then::Wait:
        return true;
    case Then::HangUp:
        return false;
    case Then::FallSilent:
        return !client.read(1 << 20).isEmpty(); // until it goes
    case Then::AwaitCancel:
        while (m_cancelled == 0 && !m_isOver)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        return client.write(error("57014", "canceling statement due to user request") + ready());
    }
    return false;
}

ScriptedServer::Answer ScriptedServer::answerTo(const QByteArray &statements)
{
    int number = 0;
    {
        const std::lock_guard lock(m_mutex);
        if (statements.startsWith(questionsBegin)) {
            m_questions.append(statements);
            return {{facts(statements.contains("schema_version"))}, m_manners.lastWord ? Then::HangUp : Then::Wait};
        }
        number = static_cast<int>(m_statements.size());
        m_statements.append(statements);
    }
    return m_script ? m_script(statements, number) : Answer{{done("UPDATE 1") + ready()}};
}

QByteArray ScriptedServer::facts(bool withSchema) const
{
    const QByteArray said =
        rows({"r", "t", "d", "c", "l", "e"}, {{m_manners.isReadOnly ? "t" : "f", m_manners.timeline, "shop",
                                               m_manners.collation, m_manners.letters, m_manners.encoding}}) +
        done();
    if (!withSchema)
        return said + ready();
    if (m_manners.lastWord)
        return said + *m_manners.lastWord;
    if (m_manners.schemaVersion.isEmpty())
        return said + error("3F000", "schema \"harrowby\" does not exist") + ready();
    return said + rows({"v"}, {{m_manners.schemaVersion}}) + done() + rows({"i"}, {{m_manners.store}}) + done() +
           ready();
}

QByteArray ScriptedServer::rows(const QByteArrayList &columns, const QList<QByteArrayList> &rows)
{
    QByteArray head = number16(columns.size());
    for (const QByteArray &column : columns) // table, column, type text, size, modifier, in letters
        head += text(column) + number32(0) + number16(0) + number32(25) + number16(-1) + number32(0) + number16(0);
    QByteArray all = message('T', head);
    for (const QByteArrayList &row : rows) {
        QByteArray body = number16(row.size());
        for (const QByteArray &value : row)
            body += value.isNull() ? number32(0xffffffff) : number32(static_cast<quint32>(value.size())) + value;
        all += message('D', body);
    }
    return all;
}

QByteArray ScriptedServer::done(const QByteArray &tag)
{
    return message('C', text(tag));
}

QByteArray ScriptedServer::passwordRequest()
{
    return message('R', number32(3));
}

QByteArray ScriptedServer::error(const QByteArray &state, const QByteArray &words, const QByteArray &severity)
{
    return message('E', 'S' + text(severity) + 'V' + text(severity) + 'C' + text(state) + 'M' + text(words) + '\0');
}

QByteArray ScriptedServer::warning(const QByteArray &function, const QByteArray &words)
{
    return message('N', "S" + text("WARNUNG") + 'V' + text("WARNING") + 'C' + text("01000") + 'M' + text(words) + 'F' +
                            text("syncrep.c") + 'L' + text("300") + 'R' + text(function) + '\0');
}

QByteArray ScriptedServer::ready(char state)
{
    return message('Z', QByteArray(1, state));
}

} // namespace harrowby::test
