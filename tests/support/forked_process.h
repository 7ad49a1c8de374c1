// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

#include <functional>

#include <sys/types.h>

namespace harrowby::test {

/// A fork() of this process that does some work and is killed meanwhile. Fonts, styles and the like are set up already,
/// so that ten thousand can be started. It has the calling thread alone, so its work must need no other thread, nor use
/// files and databases that were open before.
class ForkedProcess
{
public:
    /// The copy's standard output is read here; its exit code is the result of `work`.
    explicit ForkedProcess(const std::function<int()> &work);
    /// Kills it if it still runs.
    ~ForkedProcess();
    ForkedProcess(const ForkedProcess &) = delete;
    ForkedProcess &operator=(const ForkedProcess &) = delete;

    /// Its output since the last call; waits for it, and is empty when nothing comes within the time.
    [[nodiscard]] QByteArray read(int mostMs = 60'000) const;
    /// SIGKILL; returns the rest of its output.
    QByteArray kill();
    /// Whether it had ended before it was killed.
    [[nodiscard]] bool hasEnded() const { return m_ended; }

private:
    pid_t m_process = -1;
    int m_output = -1;
    bool m_ended = false;
};

} // namespace harrowby::test
