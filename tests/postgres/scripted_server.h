// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QList>

#include <atomic>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace harrowby::test {

/// A server that speaks PostgreSQL's protocol and says what the test has written down, on a free port of this machine.
/// So each silence, each break and each error can be had without a real one.
class ScriptedServer
{
public:
    enum class Then {
        Wait, ///< for the next statement
        HangUp,
        FallSilent,
        AwaitCancel, ///< until the client cancels; then it says that it did
    };
    /// What is said to a statement. Each piece is sent for itself, with a pause before it.
    struct Answer
    {
        QByteArrayList pieces;
        Then then = Then::Wait;
        int pauseMs = 0;
    };
    using Script = std::function<Answer(const QByteArray &statements, int number)>;

    struct Manners
    {
        QByteArray loginError; ///< what logging in is answered with, in place of being let in
        QByteArray address = "127.0.0.1";
        quint16 port = 0;      ///< 0: a free one
        bool isSilent = false; ///< takes connections and never says a word
        QByteArray version = "15.4";
        // What it says about itself.
        bool isReadOnly = false;
        QByteArray timeline = "00000001";
        QByteArray collation = "C";
        QByteArray letters = "C";
        QByteArray encoding = "UTF8";
        QByteArray schemaVersion; ///< empty: there is no schema
        QByteArray store = "5f0c9a34-3e6a-4c3f-9a52-1f6b7d0e8a11";
        std::optional<QByteArray> lastWord = {}; ///< in place of the schema; then it hangs up
    };

    explicit ScriptedServer(Manners manners, Script script = {});
    ScriptedServer() : ScriptedServer(Manners()) {}
    ~ScriptedServer();
    ScriptedServer(const ScriptedServer &) = delete;
    ScriptedServer &operator=(const ScriptedServer &) = delete;

    [[nodiscard]] quint16 port() const { return m_port; }
    [[nodiscard]] QByteArray conninfo() const;
    /// The statements so far, without the questions of connecting.
    [[nodiscard]] QByteArrayList statements() const;
    /// The questions of connecting, of each connection.
    [[nodiscard]] QByteArrayList questions() const;
    [[nodiscard]] int cancels() const { return m_cancelled; } ///< that were asked for
    /// Closes each connection that there is.
    void hangUp();

    // The messages of the protocol.

    [[nodiscard]] static QByteArray rows(const QByteArrayList &columns, const QList<QByteArrayList> &rows);
    [[nodiscard]] static QByteArray done(const QByteArray &tag = "SELECT 1");
    [[nodiscard]] static QByteArray passwordRequest();
    [[nodiscard]] static QByteArray error(const QByteArray &state, const QByteArray &text,
                                          const QByteArray &severity = "ERROR");
    /// A warning out of this function of the server.
    [[nodiscard]] static QByteArray warning(const QByteArray &function, const QByteArray &text);
    /// `state`: I outside a transaction, T within one, E within one that has failed.
    [[nodiscard]] static QByteArray ready(char state = 'I');

private:
    class Client;

    void work();
    void serve(int descriptor);
    [[nodiscard]] bool logIn(Client &client);
    [[nodiscard]] bool answer(Client &client, const QByteArray &statements);
    [[nodiscard]] Answer answerTo(const QByteArray &statements);
    [[nodiscard]] QByteArray facts(bool withSchema) const;

    const Manners m_manners;
    const Script m_script;
    int m_listening = -1;
    quint16 m_port = 0;
    std::atomic<bool> m_isOver = false;
    std::atomic<int> m_cancelled = 0;
    mutable std::mutex m_mutex;
    QByteArrayList m_statements;
    QByteArrayList m_questions;
    std::vector<int> m_open;
    std::vector<std::thread> m_clients;
    std::thread m_thread;
};

} // namespace harrowby::test
