// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <memory>

struct xcb_connection_t;

namespace harrowby::app {

struct CloseDisplay
{
    void operator()(xcb_connection_t *connection) const noexcept;
};

/// Finds out whether a window can be shown, before the QApplication, which would abort the program. Holds its X
/// connection: keep it until the QApplication exists, as an X server may reset when its last client disconnects, and
/// refuses connections while it does.
class DisplayProbe
{
public:
    /// `platform` and `display` are Qt's own options, empty when not given.
    DisplayProbe(const QString &platform, const QString &display);
    /// Why no window can be shown; empty when one can.
    [[nodiscard]] const QString &problem() const { return m_problem; }

private:
    [[nodiscard]] bool works(const QString &platform, const QString &display);
    [[nodiscard]] bool x11Answers(const QString &display);

    std::unique_ptr<xcb_connection_t, CloseDisplay> m_x11;
    QString m_problem;
};

/// True when somebody can see and answer a box: an application runs, and not on a platform without a screen.
[[nodiscard]] bool canShowBoxes();

} // namespace harrowby::app
