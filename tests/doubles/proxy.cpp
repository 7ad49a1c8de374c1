// SPDX-License-Identifier: MIT
#include "tests/doubles/proxy.h"

#include "tests/doubles/proxy_links.h"

#include <algorithm>
#include <condition_variable>
#include <functional>
#include <list>
#include <mutex>
#include <thread>
#include <vector>

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/prctl.h>
#include <unistd.h>

namespace harrowby::test {

namespace {

/// What comes meanwhile of a long answer is taken together, as from a network card. Packet by packet the proxy and
/// those on both sides of it would take more of a small machine than the answer does.
constexpr std::chrono::microseconds gathering{300};

enum class Loss { None, Break, Silence };

} // namespace

/// All state belongs to the thread that runs `work()`, but while that one waits in poll(); whoever holds the mutex may
/// look at it and change it, but for the sockets, which only the thread itself opens and closes.
class Proxy::Worker
{
public:
    explicit Worker(quint16 target) : m_target(target)
    {
        if (!m_listening.isOpen() || !m_bell.isOpen())
            qFatal("the proxy cannot listen");
        m_thread = std::thread([this] { work(); });
    }
    ~Worker()
    {
        ask([this] { m_isOver = true; });
        m_thread.join();
    }
    Worker(const Worker &) = delete;
    Worker &operator=(const Worker &) = delete;

    /// Has the thread do something, and returns when it is done.
    void ask(const std::function<void()> &command);
    [[nodiscard]] quint16 port() const { return m_port; }

    // For ask().
    void breakAll();
    void refuse(bool refused) { m_listening = refused ? Socket() : Socket::listeningOn(m_port); }
    quint16 m_target;
    bool m_isSilent = false;
    std::chrono::microseconds m_latency{0};
    Loss m_loss = Loss::None;
    int m_requestsLeft = 0; ///< until the loss; 0 when none is asked for
    int m_roundTrips = 0;
    int m_breaks = 0;
    std::list<Link> m_links;

private:
    void work();
    void await(std::unique_lock<std::mutex> &lock);
    [[nodiscard]] bool isCrowded() const;
    void acceptOne();
    void pass(Link &link, Moment now);
    void request(Link &link);
    void answer(Link &link);
    [[nodiscard]] std::vector<pollfd> awaited(Moment now) const;
    [[nodiscard]] Moment nextArrival(Moment now) const;

    Socket m_listening = Socket::listeningOn(0);
    const quint16 m_port = m_listening.port();
    const Socket m_bell{::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};
    std::mutex m_mutex;
    std::condition_variable m_answered;
    std::function<void()> m_command;
    bool m_isOver = false;
    std::thread m_thread;
};

void Proxy::Worker::ask(const std::function<void()> &command)
{
    std::unique_lock lock(m_mutex);
    m_command = command;
    const std::uint64_t once = 1;
    if (::write(m_bell.descriptor(), &once, sizeof once) != sizeof once)
        qFatal("the proxy does not hear");
    m_answered.wait(lock, [this] { return !m_command; });
}

void Proxy::Worker::work()
{
    ::prctl(PR_SET_TIMERSLACK, 1UL); // a wait ends when it is to end
    std::unique_lock lock(m_mutex);
    while (!m_isOver) {
        await(lock);
        if (m_command) {
            m_command();
            m_command = nullptr;
            m_answered.notify_all();
        }
        if (m_isSilent)
            continue; // what there is waits in the sockets
        acceptOne();
        const Moment now = std::chrono::steady_clock::now();
        for (Link &link : m_links)
            pass(link, now);
        m_links.remove_if([](const Link &link) { return link.up.isOver() || link.down.isOver(); });
    }
    m_links.clear();
}

/// Waits for a command, for bytes, and for what is on its way.
void Proxy::Worker::await(std::unique_lock<std::mutex> &lock)
{
    if (isCrowded()) {
        lock.unlock();
        std::this_thread::sleep_for(gathering);
        lock.lock();
    }
    const Moment now = std::chrono::steady_clock::now();
    std::vector<pollfd> all = awaited(now);
    const Moment next = nextArrival(now);
    timespec left{};
    if (next < Moment::max()) {
        const auto nanoseconds = std::chrono::duration_cast<std::chrono::nanoseconds>(next - now).count();
        left = {nanoseconds / 1'000'000'000, nanoseconds % 1'000'000'000};
    }
    lock.unlock();
    ::ppoll(all.data(), all.size(), next < Moment::max() ? &left : nullptr, nullptr);
    lock.lock();
    std::uint64_t rung = 0;
    [[maybe_unused]] const ssize_t size = ::read(m_bell.descriptor(), &rung, sizeof rung);
}

bool Proxy::Worker::isCrowded() const
{
    return std::any_of(m_links.begin(), m_links.end(), [](const Link &link) { return link.down.isCrowded(); });
}

std::vector<pollfd> Proxy::Worker::awaited(Moment now) const
{
    std::vector<pollfd> all{{m_bell.descriptor(), POLLIN, 0}};
    if (m_isSilent)
        return all;
    if (m_listening.isOpen())
        all.push_back({m_listening.descriptor(), POLLIN, 0});
    for (const Link &link : m_links) {
        const auto events = [now](const Flow &in, const Flow &out) {
            return static_cast<short>((in.mayTake() ? POLLIN : 0) | out.awaited(now));
        };
        all.push_back({link.client.descriptor(), events(link.up, link.down), 0});
        all.push_back({link.server.descriptor(), events(link.down, link.up), 0});
    }
    return all;
}

/// Of what is under way and not there yet; what is there already waits for its receiver.
Moment Proxy::Worker::nextArrival(Moment now) const
{
    Moment next = Moment::max();
    for (const Link &link : m_links) {
        for (const Moment arrival : {link.up.nextArrival(), link.down.nextArrival()}) {
            if (arrival > now && !m_isSilent)
                next = std::min(next, arrival);
        }
    }
    return next;
}

void Proxy::Worker::acceptOne()
{
    pollfd waiting{m_listening.descriptor(), POLLIN, 0};
    if (!m_listening.isOpen() || ::poll(&waiting, 1, 0) != 1)
        return;
    Link link{m_listening.accepted(), Socket::connectedTo(m_target), {}, {}};
    if (link.server.isOpen())
        m_links.push_back(std::move(link));
    else
        link.client.breakOff();
}

void Proxy::Worker::pass(Link &link, Moment now)
{
    const Moment arrival = now + m_latency / 2;
    if (link.up.mayTake() && link.up.take(link.client, arrival))
        request(link);
    if (link.down.mayTake() && link.down.take(link.server, arrival))
        answer(link);
    if (m_isSilent)
        return;
    link.up.give(link.server);
    link.down.give(link.client);
}

void Proxy::Worker::request(Link &link)
{
    if (!link.isAnswered)
        return; // more of the same
    link.isAnswered = false;
    ++m_roundTrips;
    if (m_requestsLeft > 0 && --m_requestsLeft == 0)
        link.isLast = true;
}

void Proxy::Worker::answer(Link &link)
{
    link.isAnswered = true;
    if (!link.isLast)
        return;
    link.isLast = false;
    if (m_loss == Loss::Silence) {
        m_isSilent = true;
        return;
    }
    link.down.forgetLast();
    breakAll();
}

void Proxy::Worker::breakAll()
{
    ++m_breaks;
    for (Link &link : m_links) {
        link.client.breakOff();
        link.server.breakOff();
        link.client.close();
        link.server.close();
        link.up.end();
        link.down.end();
    }
}

Proxy::Proxy(quint16 target) : m_worker(std::make_unique<Worker>(target)) {}

Proxy::~Proxy() = default;

quint16 Proxy::port() const
{
    return m_worker->port();
}

void Proxy::setTarget(quint16 target)
{
    m_worker->ask([&] { m_worker->m_target = target; });
}

void Proxy::goSilent()
{
    m_worker->ask([&] { m_worker->m_isSilent = true; });
}

void Proxy::speak()
{
    m_worker->ask([&] { m_worker->m_isSilent = false; });
}

void Proxy::cut()
{
    m_worker->ask([&] { m_worker->breakAll(); });
}

void Proxy::refuse(bool refused)
{
    m_worker->ask([&] { m_worker->refuse(refused); });
}

void Proxy::setLatency(std::chrono::microseconds roundTrip)
{
    m_worker->ask([&] { m_worker->m_latency = roundTrip; });
}

void Proxy::loseAnswerOf(int requests)
{
    m_worker->ask([&] {
        m_worker->m_loss = Loss::Break;
        m_worker->m_requestsLeft = requests;
    });
}

void Proxy::goSilentAtAnswerOf(int requests)
{
    m_worker->ask([&] {
        m_worker->m_loss = Loss::Silence;
        m_worker->m_requestsLeft = requests;
    });
}

int Proxy::roundTrips() const
{
    int trips = 0;
    m_worker->ask([&] { trips = m_worker->m_roundTrips; });
    return trips;
}

int Proxy::breaks() const
{
    int breaks = 0;
    m_worker->ask([&] { breaks = m_worker->m_breaks; });
    return breaks;
}

int Proxy::connections() const
{
    int open = 0;
    m_worker->ask([&] { open = static_cast<int>(m_worker->m_links.size()); });
    return open;
}

} // namespace harrowby::test
