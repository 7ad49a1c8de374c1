// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>

#include <sys/eventfd.h>
#include <unistd.h>

namespace harrowby::postgres {

/// What can only be done by a call that blocks, and nobody knows for how long: it is made on a thread of its own, whose
/// end nobody has to wait for. `work` owns all that it uses.
template <typename T>
class Aside
{
public:
    explicit Aside(std::function<T()> work) : m_state(std::make_shared<State>())
    {
        try {
            std::thread([state = m_state, work = std::move(work)] { state->finish(work()); }).detach();
        } catch (const std::system_error &) { // no thread to be had
            m_state->finish({});
        }
    }

    /// Readable once it is done; valid as long as this object lives.
    [[nodiscard]] int descriptor() const { return m_state->descriptor; }
    /// Empty as long as it is not done.
    [[nodiscard]] std::optional<T> result() const
    {
        const std::lock_guard lock(m_state->mutex);
        return m_state->result;
    }

private:
    struct State
    {
        State() = default;
        State(const State &) = delete;
        State &operator=(const State &) = delete;
        ~State() { ::close(descriptor); }

        void finish(T value)
        {
            const std::lock_guard lock(mutex);
            result = std::move(value);
            eventfd_write(descriptor, 1);
        }

        std::mutex mutex;
        std::optional<T> result;
        int descriptor = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    };

    std::shared_ptr<State> m_state;
};

} // namespace harrowby::postgres
