// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#include <chrono>
#include <memory>

namespace harrowby::test {

/// A network between client and server at the test's command: listens on a free port of 127.0.0.1 and passes everything
/// on to another one, on a thread of its own. What cannot be set up ends the test program with a message.
class Proxy
{
public:
    explicit Proxy(quint16 target);
    ~Proxy();
    Proxy(const Proxy &) = delete;
    Proxy &operator=(const Proxy &) = delete;

    [[nodiscard]] quint16 port() const;
    /// Passes on to another port of 127.0.0.1 what connects from now on.
    void setTarget(quint16 target);

    /// As a cable that is pulled out: nothing comes through any more, in no direction, and nobody is told. New
    /// connections are accepted and get no answer. What was sent meanwhile arrives after speak().
    void goSilent();
    void speak();
    /// Breaks every connection that there is with a reset.
    void cut();
    /// Whether new connections are refused.
    void refuse(bool refused);
    /// How much longer a round trip takes from now on; half of it in each direction.
    void setLatency(std::chrono::microseconds roundTrip);
    /// Passes `requests` further requests on, the last one without its answer: every connection is cut once the server
    /// has answered it. 1: the next one.
    void loseAnswerOf(int requests);
    /// As a cable that is pulled out once the server has answered it.
    void goSilentAtAnswerOf(int requests);

    /// Round trips so far: how often a client has sent something after it had been answered.
    [[nodiscard]] int roundTrips() const;
    [[nodiscard]] int connections() const; ///< that are open now
    [[nodiscard]] int breaks() const;      ///< how often all were broken: by cut(), or by an answer that was lost

private:
    class Worker;
    std::unique_ptr<Worker> m_worker;
};

} // namespace harrowby::test
