// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <chrono>

namespace harrowby {

/// The helper programs that talk to the print service, and how long each of them may take.
struct PrintOptions
{
    QString printProgram = QStringLiteral("lp");
    QString listProgram = QStringLiteral("lpstat");
    /// The longest that a caller waits for the list of printers, in all, until the service has answered again.
    std::chrono::milliseconds listWait{700};
    /// When a list query that nobody waits for any more is given up.
    std::chrono::milliseconds listDeadline{10'000};
    /// How long an answer counts as fresh.
    std::chrono::milliseconds listFreshness{5'000};
    /// When a receipt that was not taken is given up. The service can still take it later: it may then be on
    /// paper and in the folder.
    std::chrono::milliseconds handOverDeadline{20'000};
    /// What is left to helpers still running when the program ends.
    std::chrono::milliseconds exitWait{800};
};

} // namespace harrowby
