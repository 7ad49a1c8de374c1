// SPDX-License-Identifier: MIT
#pragma once

#include "app/cash/drawer_settings.h"

#include <QObject>
#include <QString>

#include <chrono>
#include <functional>
#include <vector>

namespace harrowby::app {

class DrawerKick;

/// How the print service is spoken to, and how long it may take.
struct DrawerOptions
{
    QString printProgram = QStringLiteral("lp");
    QString listProgram = QStringLiteral("lpstat");
    QString cancelProgram = QStringLiteral("cancel");
    /// After which a job that the service or the printer has not taken is withdrawn: a drawer must not open by itself
    /// when a printer is switched on an hour later.
    std::chrono::milliseconds deadline{20'000};
    std::chrono::milliseconds pause{700};    ///< between two looks at what became of the job
    std::chrono::milliseconds exitWait{800}; ///< how long the end of the program waits for a job to be handed over
};

/// The cash drawer. Opened by a job of five bytes to the printer that it hangs on, in the background: nothing waits.
class Drawer final : public QObject
{
public:
    /// Told once for each opening, after open() has returned: an empty reason when the printer has taken the job.
    /// Whether there is a drawer behind it nobody can tell.
    using Told = std::function<void(const QString &reason)>;

    Drawer(DrawerSettings settings, Told told, const DrawerOptions &options = {}, QObject *parent = nullptr);
    /// Tells nothing. A sale right before the end still opens the drawer.
    ~Drawer() override;

    [[nodiscard]] const DrawerSettings &settings() const { return m_settings; }
    /// Does nothing while it is switched off.
    void open();

private:
    void end(DrawerKick *kick, const QString &reason);
    void tell(const QString &reason) const;

    DrawerSettings m_settings;
    Told m_told;
    DrawerOptions m_options;
    std::vector<DrawerKick *> m_kicks; ///< under way; children of this object
};

} // namespace harrowby::app
