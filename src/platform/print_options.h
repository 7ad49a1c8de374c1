// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <chrono>

namespace harrowby {

/// The helper programs that talk to the print service, and every deadline of printing: of the list of printers, of
/// handing over a receipt (HandOver), and at the end of the program.
struct PrintOptions
{
    QString printProgram = QStringLiteral("lp");
    QString listProgram = QStringLiteral("lpstat");
    /// The longest that a caller waits for the list of printers, in all, until the service has answered again.
    std::chrono::milliseconds listWait{700};
    /// After which a list query is killed.
    std::chrono::milliseconds listDeadline{10'000};
    /// How long an answer counts as fresh.
    std::chrono::milliseconds listFreshness{5'000};
    /// After which handing over a receipt has failed. The service may take it later all the same: it is then both
    /// printed and kept in the folder.
    std::chrono::milliseconds handOverDeadline{20'000};
    /// How long the end of the program waits for helpers that still run.
    std::chrono::milliseconds exitWait{800};
};

} // namespace harrowby
