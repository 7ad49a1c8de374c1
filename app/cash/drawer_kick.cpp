// SPDX-License-Identifier: MIT
#include "app/cash/drawer_kick.h"

#include <QRegularExpression>
#include <QTimer>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

using std::chrono::milliseconds;
using namespace std::chrono_literals;

constexpr milliseconds shortest = 1s; ///< that a program gets even near the end

/// "request id is till-12 (0 file(s))"
QString jobIn(const QByteArray &answer)
{
    static const QRegularExpression line(u"^request id is (\\S+-[0-9]+) "_s, QRegularExpression::MultilineOption);
    return line.match(QString::fromUtf8(answer)).captured(1);
}

/// "till-12    ann    1024   Sun Nov 22 05:21:04 2026", one line a job.
bool holdsJob(const QByteArray &answer, const QString &job)
{
    const QStringList lines = QString::fromUtf8(answer).split(u'\n');
    return std::any_of(lines.cbegin(), lines.cend(), [&](const QString &line) {
        return line.startsWith(job) && (line.size() == job.size() || line.at(job.size()).isSpace());
    });
}

} // namespace

DrawerKick::DrawerKick(QString queue, const DrawerOptions &options, QObject *parent) :
    QObject(parent), m_queue(std::move(queue)), m_options(options)
{
}

void DrawerKick::start(const QByteArray &pulse, Done done)
{
    m_done = std::move(done);
    m_time.start();
    // Raw, as every filter would make a page of it; and without the cover sheet that a queue may have.
    run(m_options.printProgram,
        {u"-d"_s, m_queue, u"-o"_s, u"raw"_s, u"-o"_s, u"job-sheets=none"_s, u"-t"_s, u"Cash drawer"_s},
        m_options.deadline, &DrawerKick::handedOver, pulse);
}

void DrawerKick::finish(milliseconds time)
{
    if (m_program != nullptr && m_job.isEmpty())
        m_program->wait(time);
}

void DrawerKick::run(const QString &program, const QStringList &arguments, milliseconds deadline,
                     void (DrawerKick::*then)(const Outcome &), const QByteArray &input)
{
    m_program = new HelperProcess(this);
    m_program->setInput(input);
    m_program->start(program, arguments, deadline, [this, then](const Outcome &outcome) {
        std::exchange(m_program, nullptr)->deleteLater();
        (this->*then)(outcome);
    });
}

void DrawerKick::handedOver(const Outcome &outcome)
{
    if (!outcome.succeeded)
        return settle(outcome.reason);
    m_job = jobIn(outcome.output);
    if (m_job.isEmpty()) // of another kind of service: it has taken it, and tells no more
        return settle({});
    QTimer::singleShot(m_options.pause, this, &DrawerKick::look);
}

void DrawerKick::look()
{
    run(m_options.listProgram, {u"-W"_s, u"not-completed"_s, u"-o"_s, m_queue}, std::max(left(), shortest),
        &DrawerKick::looked);
}

void DrawerKick::looked(const Outcome &outcome)
{
    if (outcome.succeeded && !holdsJob(outcome.output, m_job))
        return settle({});
    if (left() > 0ms)
        QTimer::singleShot(std::min(m_options.pause, left()), this, &DrawerKick::look);
    else
        withdraw();
}

void DrawerKick::withdraw()
{
    run(m_options.cancelProgram, {m_job}, std::max(m_options.deadline / 4, shortest), &DrawerKick::withdrawn);
}

void DrawerKick::withdrawn(const Outcome &outcome)
{
    const QString reason =
        u"the printer has not taken it within %1 s"_s.arg(static_cast<double>(m_options.deadline.count()) / 1000);
    settle(outcome.succeeded ? reason : reason + u", and may still do so ("_s + outcome.reason + u')');
}

milliseconds DrawerKick::left() const
{
    return m_options.deadline - milliseconds(m_time.elapsed());
}

void DrawerKick::settle(const QString &reason)
{
    if (const Done done = std::exchange(m_done, nullptr))
        done(reason);
}

} // namespace harrowby::app
