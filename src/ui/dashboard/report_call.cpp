// SPDX-License-Identifier: MIT
#include "ui/dashboard/report_call.h"

#include <harrowby/report_component.h>

#include <QMetaMethod>
#include <QObject>

namespace harrowby {

bool callAccountPreview(QObject &report, ReportArguments &arguments)
{
    const int index = report.metaObject()->indexOfMethod(AccountPreviewSignature);
    if (index < 0)
        return false;
    // DirectConnection: the arguments need no registered types, references refer to the caller's variables, and an
    // exception reaches the caller.
    return report.metaObject()->method(index).invoke(
        &report, Qt::DirectConnection, Q_ARG(std::shared_ptr<harrowby::DbConnection> &, arguments.connection),
        Q_ARG(QString, arguments.folder), Q_ARG(bool, arguments.third), Q_ARG(QString &, *arguments.msgTitle),
        Q_ARG(bool, arguments.fifth), Q_ARG(bool, arguments.mayEditStock), Q_ARG(bool &, *arguments.canSettings),
        Q_ARG(QString &, *arguments.loggedUser));
}

} // namespace harrowby
