// SPDX-License-Identifier: MIT
#include "plugins/report/report_component.h"

#include "plugins/report/report_dialog.h"

#include <harrowby/saved_settings.h>

#include <QApplication>
#include <QPointer>

#include <stdexcept>

using namespace Qt::StringLiterals;

namespace harrowby::report {

namespace {

constexpr const SettingPlace &email = saved::EmailReport;

ReportFrame frameFor(const QString &user, bool canSettings)
{
    ReportFrame frame;
    frame.user = user;
    frame.canSettings = canSettings;
    frame.today = [] { return QDate::currentDate(); };
    frame.emailReport = [] { return savedSetting(email.section, email.key, email.defaultValue).toInt() != 0; };
    frame.saveEmailReport = [](bool on) { return saveSetting(email.section, email.key, on ? u"1"_s : u"0"_s); };
    return frame;
}

} // namespace

void ReportComponent::AccountPreview(std::shared_ptr<harrowby::DbConnection> &connection, const QString &, bool,
                                     QString &msgTitle, bool, bool, bool &canSettings, QString &loggedUser)
{
    if (!connection)
        throw std::invalid_argument("there is no connection");
    // The window below may be gone before the report is closed, and takes it along.
    QWidget *below = QApplication::activeWindow();
    const QPointer<ReportDialog> dialog(new ReportDialog(connection, frameFor(loggedUser, canSettings), below));
    if (below != nullptr && below->isMaximized()) // a till uses the whole screen
        dialog->setWindowState(Qt::WindowMaximized);
    if (!msgTitle.isEmpty())
        dialog->setWindowTitle(msgTitle);
    dialog->exec();
    delete dialog;
}

} // namespace harrowby::report
