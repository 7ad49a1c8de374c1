// SPDX-License-Identifier: MIT
#include "tests/platform/log_capture.h"

#include <QLoggingCategory>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harrowby::testing {
namespace {

QStringList captured;
QtMessageHandler previous = nullptr;

void capture(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    const QString category = QString::fromUtf8(context.category);
    if (category.startsWith("harrowby."_L1))
        captured += category + u": "_s + message;
    else if (previous)
        previous(type, context, message);
}

} // namespace

LogCapture::LogCapture()
{
    captured.clear();
    QLoggingCategory::setFilterRules(u"harrowby.*=true"_s);
    previous = qInstallMessageHandler(capture);
}

LogCapture::~LogCapture()
{
    qInstallMessageHandler(previous);
    QLoggingCategory::setFilterRules({});
}

QStringList LogCapture::lines() const
{
    return captured;
}

bool LogCapture::hasLine(const QStringList &texts) const
{
    return std::ranges::any_of(captured, [&](const QString &line) {
        return std::ranges::all_of(texts, [&](const QString &text) { return line.contains(text); });
    });
}

} // namespace harrowby::testing
