// SPDX-License-Identifier: MIT
// RANDR by hand: the library for it is not otherwise needed, nor is the command.
#include "tests/app/monitors.h"

#include <xcb/xcb.h>
#include <xcb/xcbext.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace harrowby::app::test {

namespace {

struct Free
{
    void operator()(void *reply) const noexcept { std::free(reply); }
};

template <typename Reply>
using Owned = std::unique_ptr<Reply, Free>;

enum Request : std::uint8_t {
    QueryVersion = 0,
    GetMonitors = 42,
    SetMonitor = 43,
    DeleteMonitor = 44,
};

/// A request is words of 32 bits; the first one is the library's.
class Server
{
public:
    explicit Server(const QString &display) :
        m_connection(xcb_connect(display.toLatin1().constData(), nullptr), &xcb_disconnect)
    {
        const char *name = "RANDR";
        const Owned<xcb_query_extension_reply_t> found(xcb_query_extension_reply(
            server(), xcb_query_extension(server(), static_cast<std::uint16_t>(std::strlen(name)), name), nullptr));
        m_opcode = found ? found->major_opcode : std::uint8_t{0};
        std::array<std::uint32_t, 3> version = {0, 1, 5}; // without it the server knows no monitors
        (void)ask(QueryVersion, version);
    }

    [[nodiscard]] std::uint32_t root() const { return xcb_setup_roots_iterator(xcb_get_setup(server())).data->root; }
    [[nodiscard]] std::uint32_t atom(const QString &name) const
    {
        const QByteArray text = name.toLatin1();
        const Owned<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
            server(), xcb_intern_atom(server(), 0, static_cast<std::uint16_t>(text.size()), text.constData()),
            nullptr));
        return reply ? reply->atom : 0;
    }
    template <typename Words>
    Owned<std::uint32_t> ask(Request request, Words &words)
    {
        void *reply = xcb_wait_for_reply(server(), send(request, words, 0), nullptr);
        Owned<std::uint32_t> owned(static_cast<std::uint32_t *>(reply));
        return owned;
    }
    template <typename Words>
    [[nodiscard]] bool tell(Request request, Words &words)
    {
        const Owned<xcb_generic_error_t> error(xcb_request_check(server(), {send(request, words, 1)}));
        return !error;
    }

private:
    [[nodiscard]] xcb_connection_t *server() const { return m_connection.get(); }
    template <typename Words>
    unsigned send(Request request, Words &words, std::uint8_t isVoid)
    {
        auto *bytes = reinterpret_cast<std::uint8_t *>(words.data());
        bytes[1] = request;
        iovec parts[3] = {}; // the library wants room before the first
        parts[2] = {bytes, words.size() * sizeof(std::uint32_t)};
        const xcb_protocol_request_t protocol = {1, nullptr, m_opcode, isVoid};
        return static_cast<unsigned>(xcb_send_request(server(), XCB_REQUEST_CHECKED, parts + 2, &protocol));
    }

    std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> m_connection;
    std::uint8_t m_opcode = 0;
};

std::uint32_t pair(int low, int high)
{
    return static_cast<std::uint32_t>(low) | static_cast<std::uint32_t>(high) << 16;
}

/// The first output of the first monitor; 0 when it has none.
std::uint32_t outputOf(Server &server)
{
    std::array<std::uint32_t, 3> request = {0, server.root(), 1};
    const auto reply = server.ask(GetMonitors, request);
    constexpr int outputCount = 4;
    constexpr int firstOutput = 14; // words: head of the reply, then the monitor
    return reply && reply.get()[outputCount] > 0 ? reply.get()[firstOutput] : 0;
}

} // namespace

bool setMonitor(const QString &display, const QString &name, const QRect &place, bool isFirst)
{
    Server server(display);
    const std::uint32_t output = isFirst ? outputOf(server) : 0;
    const std::array<std::uint32_t, 8> head = {0,
                                               server.root(),
                                               server.atom(name),
                                               pair(0, isFirst ? 1 : 0),
                                               pair(place.x(), place.y()),
                                               pair(place.width(), place.height()),
                                               static_cast<std::uint32_t>(place.width() / 4), // millimetres
                                               static_cast<std::uint32_t>(place.height() / 4)};
    if (!isFirst) {
        auto request = head;
        return server.tell(SetMonitor, request);
    }
    std::array<std::uint32_t, 9> request = {};
    std::copy(head.begin(), head.end(), request.begin());
    request.back() = output;
    return server.tell(SetMonitor, request);
}

bool removeMonitor(const QString &display, const QString &name)
{
    Server server(display);
    std::array<std::uint32_t, 3> request = {0, server.root(), server.atom(name)};
    return server.tell(DeleteMonitor, request);
}

} // namespace harrowby::app::test
