// SPDX-License-Identifier: MIT
#include "basic/logging.h"
#include "basic/text.h"
#include "store/inv_basic.h"
#include "store/recordset.h"
#include "ui/dashboard/report_call.h"
#include "ui/inventory.h"
#include "ui/settings/settings.h"

#include <harrowby/report_component.h>

#include <QCheckBox>

#include <stdexcept>

using namespace Qt::StringLiterals;

namespace harrowby {

void Inventory::openSalesReport()
{
    bool done = false;
    try {
        done = callSalesReport();
    } catch (const std::exception &error) {
        qCWarning(lcWindow, "The sales report ended early: %s", error.what());
    } catch (...) {
        qCWarning(lcWindow, "The sales report ended early");
    }
    if (!done) // "persist" and "replace to replace" are the text's own
        ask(u"Error loading report, Please restart Harrowby Server or the System!"_s + crLf +
                u"If this problem persist, please run a Scandisk and replace to replace missing files or reinstall "
                "Harrowby. See https://harrowby.example/faq"_s,
            box::Critical);
}

bool Inventory::callSalesReport()
{
    const std::unique_ptr<QObject> report = m_platform.objects->create(ReportClassId);
    if (!report)
        return false;
    ReportArguments arguments;
    arguments.connection = connection();
    if (!arguments.connection)
        return false; // no connection, no folder
    arguments.folder = arguments.connection->location().remove(u"Harrowby.dll"_s);
    // Copies: until the last step has worked, the login stays as it was.
    QString msgTitle = m_state.MsgTitle;
    bool canSettings = m_state.login.rights.CanSettings;
    QString loggedUser = m_state.login.LoggedUser;
    arguments.msgTitle = &msgTitle;
    arguments.mayEditStock = m_state.login.rights.CanEditStock || m_state.login.rights.CanReorder;
    arguments.canSettings = &canSettings;
    arguments.loggedUser = &loggedUser;
    const FormState before = m_state;
    finishWalks(connection()); // the report may stay open for long
    if (!callAccountPreview(*report, arguments))
        return false;
    InvBasic::setConnection(arguments.connection); // this one at once: it is kept also when the next step fails
    const std::optional<std::int16_t> emailReport = savedEmailReportFlag(*m_platform.settings);
    if (!emailReport)
        return false;
    m_state.settings.EmailReportFlag = *emailReport;
    m_controls.Check4->setChecked(*emailReport != 0);
    // What the report changed, and nothing else: another user may have logged in meanwhile.
    const auto takeOver = [](auto &ours, const auto &passed, const auto &returned) {
        if (returned != passed)
            ours = returned;
    };
    takeOver(m_state.MsgTitle, before.MsgTitle, msgTitle);
    takeOver(m_state.login.rights.CanSettings, before.login.rights.CanSettings, canSettings);
    takeOver(m_state.login.LoggedUser, before.login.LoggedUser, loggedUser);
    return true;
}

} // namespace harrowby
