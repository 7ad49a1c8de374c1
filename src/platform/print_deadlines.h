// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>

namespace harrowby {

/// Every deadline of printing: of the list of printers, of handing over a receipt (HandOver), and at the end of the
/// program.
struct PrintDeadlines
{
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
    /// The longest that a caller waits, once a query, for what can be reached in the network.
    std::chrono::milliseconds reachableWait{150};
};

} // namespace harrowby
