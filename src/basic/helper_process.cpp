// SPDX-License-Identifier: MIT
#include "basic/helper_process.h"

#include <QProcessEnvironment>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby {
namespace {

/// How long a program that was killed is waited for.
constexpr std::chrono::milliseconds killWait{500};

/// English answers, to be parsed, whatever the user's language; names of queues may be in any.
QProcessEnvironment plainEnvironment()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"LC_ALL"_s, u"C.UTF-8"_s);
    environment.remove(u"LANGUAGE"_s);
    return environment;
}

} // namespace

HelperProcess::HelperProcess(QObject *parent) : QObject(parent)
{
    m_deadline.setSingleShot(true);
    m_process.setProcessEnvironment(plainEnvironment());
    m_process.setStandardInputFile(QProcess::nullDevice());
    connect(&m_process, &QProcess::errorOccurred, this, &HelperProcess::onError);
    connect(&m_process, &QProcess::finished, this, &HelperProcess::onFinished);
}

HelperProcess::~HelperProcess()
{
    m_process.disconnect(this);
    if (m_process.state() == QProcess::NotRunning)
        return;
    m_process.kill();
    m_process.waitForFinished(static_cast<int>(killWait.count()));
}

void HelperProcess::setInput(const QByteArray &input)
{
    m_input = input;
    m_process.setStandardInputFile(input.isEmpty() ? QProcess::nullDevice() : QString());
}

void HelperProcess::start(const QString &program, const QStringList &arguments, std::chrono::milliseconds deadline,
                          Done done)
{
    m_done = std::move(done);
    connect(&m_deadline, &QTimer::timeout, this, [this, deadline] {
        abandon(u"no answer within %1 s"_s.arg(static_cast<double>(deadline.count()) / 1000));
    });
    m_deadline.start(deadline);
    m_process.start(program, arguments, m_input.isEmpty() ? QIODevice::ReadOnly : QIODevice::ReadWrite);
    if (m_input.isEmpty())
        return;
    m_process.write(m_input);
    m_process.closeWriteChannel();
}

void HelperProcess::wait(std::chrono::milliseconds time)
{
    if (!isSettled() && time.count() > 0)
        m_process.waitForFinished(static_cast<int>(time.count()));
}

void HelperProcess::abandon(const QString &reason)
{
    settle({false, {}, reason});
    m_process.kill();
}

void HelperProcess::onError(QProcess::ProcessError error)
{
    // Every other error comes with the end of the process.
    if (error == QProcess::FailedToStart)
        settle({false, {}, u"%1: %2"_s.arg(m_process.program(), m_process.errorString())});
}

void HelperProcess::onFinished(int exitCode, QProcess::ExitStatus status)
{
    const QByteArray output = m_process.readAllStandardOutput();
    if (status == QProcess::NormalExit && exitCode == 0) {
        settle({true, output, {}});
        return;
    }
    const QString said = QString::fromUtf8(m_process.readAllStandardError()).simplified();
    const QString how = status == QProcess::CrashExit ? u"%1 crashed"_s.arg(m_process.program())
                                                      : u"%1 failed with %2"_s.arg(m_process.program()).arg(exitCode);
    settle({false, output, said.isEmpty() ? how : said});
}

void HelperProcess::settle(const Outcome &outcome)
{
    m_deadline.stop();
    if (const Done done = std::exchange(m_done, nullptr))
        done(outcome);
}

} // namespace harrowby
