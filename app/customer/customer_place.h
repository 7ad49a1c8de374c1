// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QRect>
#include <QString>

#include <optional>

namespace harrowby::app {

struct ScreenFacts
{
    QString name; ///< as the system calls it, such as HDMI-1
    QRect geometry;

    bool operator==(const ScreenFacts &) const = default;
};

/// Where the till is, which nothing of the customer's may cover.
struct TillPlace
{
    QRect screen; ///< on which its window is
    QRect frame;  ///< of the window
};

/// The screen that the customer looks at: the one with the wished number, counted from 1, or name; without a wish the
/// first one that is not the till's. None while that one is not there, or shows the till.
[[nodiscard]] std::optional<ScreenFacts> customerPlace(const QList<ScreenFacts> &screens, const QString &wish,
                                                       const TillPlace &till);

/// Whether a window there would lie over the till. Edges that a window manager lets stick out do not count.
[[nodiscard]] bool coversTill(const QRect &geometry, const TillPlace &till);

/// The screens that there are, for the log: "1 eDP-1 (1920x1080 at 0,0)".
[[nodiscard]] QString screensText(const QList<ScreenFacts> &screens);

} // namespace harrowby::app
