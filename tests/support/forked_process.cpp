// SPDX-License-Identifier: MIT
#include "tests/support/forked_process.h"

#include <QtGlobal>

#include <array>
#include <csignal>
#include <utility>

#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace harrowby::test {

ForkedProcess::ForkedProcess(const std::function<int()> &work)
{
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0)
        qFatal("no pipe can be had");
    m_process = ::fork();
    if (m_process < 0)
        qFatal("no process can be had");
    if (m_process == 0) {
        ::dup2(ends[1], STDOUT_FILENO);
        ::close(ends[0]);
        ::close(ends[1]);
        ::_exit(work());
    }
    ::close(ends[1]);
    m_output = ends[0];
}

ForkedProcess::~ForkedProcess()
{
    kill();
    ::close(m_output);
}

QByteArray ForkedProcess::read(int mostMs) const
{
    pollfd waiting{m_output, POLLIN, 0};
    std::array<char, 65536> buffer{};
    if (::poll(&waiting, 1, mostMs) <= 0)
        return {};
    const ssize_t size = ::read(m_output, buffer.data(), buffer.size());
    return {buffer.data(), size > 0 ? size : 0};
}

QByteArray ForkedProcess::kill()
{
    if (m_process < 0)
        return {};
    ::kill(m_process, SIGKILL);
    int status = 0;
    ::waitpid(std::exchange(m_process, -1), &status, 0);
    m_ended = !WIFSIGNALED(status) || WTERMSIG(status) != SIGKILL;
    QByteArray rest;
    for (QByteArray more = read(); !more.isEmpty(); more = read())
        rest += more;
    return rest;
}

} // namespace harrowby::test
