// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

#include <chrono>
#include <deque>

namespace harrowby::test {

using Moment = std::chrono::steady_clock::time_point;

/// A socket that closes itself.
class Socket
{
public:
    explicit Socket(int descriptor = -1) : m_descriptor(descriptor) {}
    ~Socket() { close(); }
    Socket(Socket &&other) noexcept;
    Socket &operator=(Socket &&other) noexcept;

    [[nodiscard]] int descriptor() const { return m_descriptor; }
    [[nodiscard]] bool isOpen() const { return m_descriptor >= 0; }
    void close();
    /// The next close() tells the other end of an error instead of an end.
    void breakOff() const;

    /// On 127.0.0.1; port 0 takes any. Not open where that fails.
    [[nodiscard]] static Socket listeningOn(quint16 port);
    [[nodiscard]] static Socket connectedTo(quint16 port);
    [[nodiscard]] Socket accepted() const;
    [[nodiscard]] quint16 port() const;

private:
    int m_descriptor;
};

/// What is on its way in one direction.
class Flow
{
public:
    /// Takes what there is to be read; false when nothing came.
    bool take(const Socket &from, Moment arrival);
    /// Hands on what has arrived.
    void give(const Socket &to);

    [[nodiscard]] bool mayTake() const { return !m_hasEnded && m_size < mostBytes; }
    /// More than one packet is under way.
    [[nodiscard]] bool isCrowded() const { return m_chunks.size() > 1; }
    [[nodiscard]] bool isOver() const { return m_hasEnded && m_chunks.empty(); }
    /// What poll() is to wait for at its end, and when the next bytes are there.
    [[nodiscard]] short awaited(Moment now) const;
    [[nodiscard]] Moment nextArrival() const { return m_chunks.empty() ? Moment::max() : m_chunks.front().arrival; }
    void forgetLast();
    /// Drops all of it; nothing comes any more.
    void end();

private:
    static constexpr qsizetype mostBytes = 4'000'000;
    struct Chunk
    {
        Moment arrival;
        QByteArray bytes;
    };

    std::deque<Chunk> m_chunks;
    qsizetype m_size = 0;
    bool m_hasEnded = false;
};

/// One client and its server.
struct Link
{
    Socket client;
    Socket server;
    Flow up;   ///< to the server
    Flow down; ///< to the client
    bool isAnswered = true;
    bool isLast = false; ///< its request is the one whose answer does not come through
};

} // namespace harrowby::test
