// SPDX-License-Identifier: MIT
#pragma once

#include <harrowby/db_connection.h>

#include <QDeadlineTimer>

#include <functional>
#include <utility>

namespace harrowby::app {

/// What the window could not read because the server was gone is read again when it is back: a page that stayed empty
/// would sell nothing, although everything else works again.
class MissedReading
{
public:
    /// False when it cannot be done now.
    using ReadAgain = std::function<bool()>;

    explicit MissedReading(ReadAgain readAgain) : m_readAgain(std::move(readAgain)) {}

    /// A statement of the window's has failed. May be called in the middle of its work, and of what is read again.
    void note(const DbFailure &failure);
    /// To be called each time that the server answers; `isBack`: after it had not. Reads where something was missed;
    /// what fails again is tried later, and not at each answer.
    void serverAnswers(bool isBack);

private:
    ReadAgain m_readAgain;
    bool m_isMissing = false;
    QDeadlineTimer m_rest; ///< after a try that failed
};

} // namespace harrowby::app
