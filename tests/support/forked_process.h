// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

#include <functional>

#include <sys/types.h>

namespace harrowby::test {

/// A copy of this process that does a work and is killed for it: what a program sets up once, such as fonts and styles,
/// is there already, so that ten thousand of them can be started. It has the calling thread
/// alone, so nothing that it does may need another one; files and databases that are open here are not for it.
class ForkedProcess
{
public:
    /// The copy's standard output is heard here; it ends with the result of `work`, if it comes to it.
    explicit ForkedProcess(const std::function<int()> &work);
    /// Kills it when it has not been killed yet.
    ~ForkedProcess();
    ForkedProcess(const ForkedProcess &) = delete;
    ForkedProcess &operator=(const ForkedProcess &) = delete;

    /// What it has said since the last call; waits for it, and is empty when nothing more comes within the time.
    [[nodiscard]] QByteArray read(int mostMs = 60'000) const;
    /// SIGKILL, and all that it had still said.
    QByteArray kill();
    /// Whether it had come to its end before it was killed.
    [[nodiscard]] bool hasEnded() const { return m_ended; }

private:
    pid_t m_process = -1;
    int m_output = -1;
    bool m_ended = false;
};

} // namespace harrowby::test
