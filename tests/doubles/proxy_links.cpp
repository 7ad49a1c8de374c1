// SPDX-License-Identifier: MIT
#include "tests/doubles/proxy_links.h"

#include <array>
#include <cerrno>
#include <utility>

#include <arpa/inet.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace harrowby::test {

namespace {

constexpr int waiting = 64;

sockaddr_in loopback(quint16 port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(port);
    return address;
}

Socket atOnce(int descriptor)
{
    const int on = 1;
    ::setsockopt(descriptor, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    return Socket(descriptor);
}

} // namespace

Socket::Socket(Socket &&other) noexcept : m_descriptor(std::exchange(other.m_descriptor, -1)) {}

Socket &Socket::operator=(Socket &&other) noexcept
{
    std::swap(m_descriptor, other.m_descriptor);
    return *this;
}

void Socket::close()
{
    if (isOpen())
        ::close(std::exchange(m_descriptor, -1));
}

void Socket::breakOff() const
{
    const linger now{1, 0};
    ::setsockopt(m_descriptor, SOL_SOCKET, SO_LINGER, &now, sizeof now);
}

Socket Socket::listeningOn(quint16 port)
{
    Socket socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    const int on = 1;
    ::setsockopt(socket.m_descriptor, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    const sockaddr_in address = loopback(port);
    const bool listens =
        ::bind(socket.m_descriptor, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0 &&
        ::listen(socket.m_descriptor, waiting) == 0;
    return listens ? std::move(socket) : Socket();
}

Socket Socket::connectedTo(quint16 port)
{
    Socket socket = atOnce(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    const sockaddr_in address = loopback(port);
    const bool connected =
        ::connect(socket.m_descriptor, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0;
    return connected ? std::move(socket) : Socket();
}

Socket Socket::accepted() const
{
    return atOnce(::accept4(m_descriptor, nullptr, nullptr, SOCK_CLOEXEC));
}

quint16 Socket::port() const
{
    sockaddr_in address{};
    socklen_t size = sizeof address;
    ::getsockname(m_descriptor, reinterpret_cast<sockaddr *>(&address), &size);
    return ntohs(address.sin_port);
}

bool Flow::take(const Socket &from, Moment arrival)
{
    std::array<char, 65536> buffer; // NOLINT(cppcoreguidelines-pro-type-member-init): read below
    const ssize_t size = ::recv(from.descriptor(), buffer.data(), buffer.size(), MSG_DONTWAIT);
    if (size > 0) {
        m_chunks.push_back({arrival, QByteArray(buffer.data(), size)});
        m_size += size;
    } else {
        m_hasEnded = size == 0 || (errno != EAGAIN && errno != EINTR);
    }
    return size > 0;
}

void Flow::give(const Socket &to)
{
    while (!m_chunks.empty() && m_chunks.front().arrival <= std::chrono::steady_clock::now()) {
        QByteArray &bytes = m_chunks.front().bytes;
        const ssize_t size = ::send(to.descriptor(), bytes.constData(), static_cast<std::size_t>(bytes.size()),
                                    MSG_DONTWAIT | MSG_NOSIGNAL);
        if (size < 0 && (errno == EAGAIN || errno == EINTR))
            return;
        const qsizetype gone = size < 0 ? bytes.size() : size; // nobody is there to get it: the other direction ends
        m_size -= gone;
        bytes.remove(0, gone);
        if (bytes.isEmpty())
            m_chunks.pop_front();
    }
}

short Flow::awaited(Moment now) const
{
    return nextArrival() <= now ? POLLOUT : 0;
}

void Flow::forgetLast()
{
    m_size -= m_chunks.back().bytes.size();
    m_chunks.pop_back();
}

void Flow::end()
{
    m_chunks.clear();
    m_size = 0;
    m_hasEnded = true;
}

} // namespace harrowby::test
