// SPDX-License-Identifier: MIT
#include "platform/hand_over.h"

#include "basic/helper_process.h"
#include "basic/logging.h"

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>

#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby {
namespace {

void close(const QString &queue, const QString &path, const HelperProcess::Outcome &outcome)
{
    if (!outcome.succeeded) {
        qCWarning(lcPrint).noquote() << "Receipt kept: printer" << queue << "did not take" << path << "-"
                                     << outcome.reason;
        return;
    }
    QFile file(path);
    if (!file.remove())
        qCWarning(lcPrint).noquote() << "Printed receipt" << path << "cannot be removed -" << file.errorString();
}

} // namespace

HandOver::HandOver(PrintOptions options) : m_options(std::move(options)) {}

HandOver::~HandOver()
{
    finish();
}

void HandOver::start(const QString &queue, const QString &file)
{
    auto *const helper = new HelperProcess(this);
    m_running.push_back(helper);
    const QString title = QFileInfo(file).completeBaseName();
    helper->start(m_options.printProgram, {u"-d"_s, queue, u"-t"_s, title, u"--"_s, file}, m_options.handOverDeadline,
                  [this, helper, queue, file](const HelperProcess::Outcome &outcome) {
                      std::erase(m_running, helper);
                      helper->deleteLater();
                      close(queue, file, outcome);
                  });
}

void HandOver::finish()
{
    QElapsedTimer timer;
    timer.start();
    const auto helpers = m_running; // a copy: a helper that ends removes itself from m_running
    for (HelperProcess *const helper : helpers) {
        helper->wait(m_options.exitWait - std::chrono::milliseconds(timer.elapsed()));
        if (!helper->isSettled())
            helper->abandon(u"the program ended before the print service had answered"_s);
    }
}

} // namespace harrowby
