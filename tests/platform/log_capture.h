// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>

namespace harrowby::testing {

/// Switches the categories of the product on and keeps what they say while it lives. Others are passed on.
class LogCapture
{
public:
    LogCapture();
    ~LogCapture();
    Q_DISABLE_COPY_MOVE(LogCapture)

    /// "category: message", oldest first.
    [[nodiscard]] QStringList lines() const;
    /// Whether one line holds all of the texts.
    [[nodiscard]] bool hasLine(const QStringList &texts) const;
};

} // namespace harrowby::testing
