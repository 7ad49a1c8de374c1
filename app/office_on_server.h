// SPDX-License-Identifier: MIT
#pragma once

#include "app/office/office.h"
#include "app/office/office_store.h"
#include "app/start/exit_code.h"
#include "basic/result.h"

#include <QByteArray>
#include <QString>

#include <functional>

namespace harrowby::app {

class FailureNotice;
class LogFile;

/// Opens the store at this server and has `keep` run its office. What ends the start has been shown. `display` as Qt's
/// option -display has it.
[[nodiscard]] Result<OfficeLeaving, ExitCode>
keepOfficeOnServer(const QString &address, const QByteArray &display, FailureNotice &notice, LogFile &log,
                   const std::function<OfficeLeaving(const OfficeStore &)> &keep);

} // namespace harrowby::app
