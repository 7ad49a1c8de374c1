// SPDX-License-Identifier: MIT
#include "platform/queue_list.h"

#include "basic/helper_process.h"
#include "basic/logging.h"

#include <QRegularExpression>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby {
namespace {

using std::chrono::milliseconds;

/// "till accepting requests since Fri Nov 20 14:07:09 2026", one line a queue; other lines tell why it is not.
QStringList installedNames(const QString &answer)
{
    static const QRegularExpression line(u"^(\\S+) (?:not )?accepting requests since"_s,
                                         QRegularExpression::MultilineOption);
    QStringList names;
    for (auto match = line.globalMatch(answer); match.hasNext();)
        names += match.next().captured(1);
    return names;
}

/// A service without queues answers with an error message.
bool isNoQueues(const QString &failure)
{
    return failure.contains("No destinations added"_L1);
}

QString defaultIn(const QString &answer)
{
    static const QRegularExpression line(u"^system default destination: (\\S+)$"_s,
                                         QRegularExpression::MultilineOption);
    return line.match(answer).captured(1);
}

/// Runs wait() and takes the time that it took off the patience.
void spend(milliseconds &patience, HelperProcess &query, milliseconds most)
{
    QElapsedTimer timer;
    timer.start();
    query.wait(std::min(most, patience));
    if (!query.isSettled())
        patience = std::max(milliseconds(0), patience - milliseconds(timer.elapsed()));
}

} // namespace

QueueList::QueueList(PrintOptions options) : m_options(std::move(options)), m_patience(m_options.listWait) {}

QueueList::~QueueList() = default;

bool QueueList::isFresh() const
{
    return m_sinceAnswer.isValid() && m_sinceAnswer.elapsed() < m_options.listFreshness.count();
}

void QueueList::refresh()
{
    const bool isRunning = m_installedQuery && !m_installedQuery->isSettled();
    if (isRunning || isFresh())
        return;
    using Outcome = HelperProcess::Outcome;
    m_installedQuery = std::make_unique<HelperProcess>(nullptr);
    m_installedQuery->start(
        m_options.listProgram, {u"-a"_s, u"-d"_s}, m_options.listDeadline,
        [this](const Outcome &outcome) { onInstalled(QString::fromUtf8(outcome.output), outcome.reason); });
    m_reachablePatience =
        m_options.reachableWait; // once a query, so that three callers in a row do not wait three times
    m_reachableQuery = std::make_unique<HelperProcess>(nullptr);
    m_reachableQuery->start(m_options.listProgram, {u"-e"_s}, m_options.listDeadline, [this](const Outcome &outcome) {
        if (outcome.succeeded)
            onReachable(QString::fromUtf8(outcome.output));
    });
}

void QueueList::wait()
{
    if (!m_installedQuery)
        return;
    spend(m_patience, *m_installedQuery, m_options.listWait);
    if (m_answered)
        spend(m_reachablePatience, *m_reachableQuery, m_options.reachableWait);
}

void QueueList::onInstalled(const QString &answer, const QString &failure)
{
    m_sinceAnswer.start();
    const QStringList names = installedNames(answer);
    if (!failure.isEmpty() && names.isEmpty() && !isNoQueues(failure)) {
        qCWarning(lcPrint).noquote() << "The print service does not list its printers -" << failure;
        return;
    }
    m_installed = names;
    m_default = defaultIn(answer);
    m_patience = m_options.listWait;
    m_answered = true;
}

void QueueList::onReachable(const QString &answer)
{
    m_reachable = answer.split(u'\n', Qt::SkipEmptyParts);
}

QStringList QueueList::names() const
{
    QStringList all = m_installed + m_reachable;
    all.removeDuplicates();
    return all;
}

QString QueueList::defaultName() const
{
    return names().contains(m_default) ? m_default : QString();
}

} // namespace harrowby
