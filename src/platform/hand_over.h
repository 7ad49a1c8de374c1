// SPDX-License-Identifier: MIT
#pragma once

#include "platform/print_options.h"

#include <QObject>

#include <vector>

namespace harrowby {

class HelperProcess;

/// Gives stored receipts to the print service, in the background. How long that may take is
/// PrintDeadlines::handOverDeadline (print_deadlines.h). The file is removed only when the service has said that it has
/// taken it; else it stays and a line with printer, file and reason goes to "harrowby.print".
class HandOver final : public QObject
{
public:
    explicit HandOver(PrintOptions options);
    ~HandOver() override;

    /// Never waits.
    void start(const QString &queue, const QString &file);
    /// Waits a short while for the running helpers, then kills them. Called at the end of the program.
    void finish();

private:
    PrintOptions m_options;
    std::vector<HelperProcess *> m_running; ///< children of this object
};

} // namespace harrowby
