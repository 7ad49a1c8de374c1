// SPDX-License-Identifier: MIT
#include "basic/administrator.h"
#include "basic/text.h"
#include "basic/values.h"
#include "store/recordset.h"
#include "store/statement_texts.h"
#include "ui/counter/counter_user.h"
#include "ui/counter/host_link.h"
#include "ui/focus_order.h"
#include "ui/inventory.h"
#include "ui/widgets/quick_sale_button.h"
#include "ui/widgets/row_list.h"
#include "ui/widgets/tab_strip.h"
#include "ui/widgets/text_table_model.h"
#include "ui/work_areas.h"

#include <QFrame>
#include <QLabel>
#include <QLineEdit>

#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby {

namespace {

bool mayUseTheTool(DbRecordset &user, const QString &name)
{
    const std::optional<DbValue> value = user.Field(u"InventoryUse"_s).value();
    return (value && valueEqualsTrue(*value)) || name == administratorName;
}

/// Intended: runs the query and shows nothing.
void runReorderNotice(const std::shared_ptr<DbConnection> &connection)
{
    DbRecordset low;
    low.Open(statements::lowStock(), connection, DbRecordset::Access::Count);
    static_cast<void>(low.RecordCount());
}

} // namespace

bool Inventory::RequireLogin()
{
    if (m_state.login.IsLoggedIn)
        return true;
    warn(u"You must Login in First!"_s);
    leadTo(*m_controls.Text3);
    return false;
}

void Inventory::logIn()
{
    if (std::exchange(m_state.login.IsLoggedIn, false))
        HostLink::instance().note(event::LoggedOut{m_state.login.LoggedUser});
    const QString name = trimmedUpper(m_controls.Text3->text());
    const QString password = trimmedUpper(m_controls.Text4->text());
    if (name.isEmpty() || password.isEmpty()) {
        refuseLogin(name, u"You have entered a blank entry!"_s);
        leadTo(*m_controls.Text3);
        return;
    }
    DbRecordset user;
    user.Open(statements::login(name, password), connection());
    if (user.RecordCount() < 1) {
        refuseLogin(name, u"Username or Password Incorrect!"_s);
        return;
    }
    if (!mayUseTheTool(user, name)) {
        refuseLogin(name, u"User not Enabled to use this tool!"_s);
        return;
    }
    m_state.login.rights = name == administratorName ? Privileges::everyRight() : Privileges::ofRow(user);
    enter(name);
    if (m_state.login.rights.CanReorder && m_state.settings.PromptReorderFlag != 0)
        runReorderNotice(connection());
}

void Inventory::refuseLogin(const QString &name, const QString &reason)
{
    HostLink::instance().note(event::LoginRefused{name});
    warn(reason);
}

void Inventory::enter(const QString &name)
{
    m_state.login.LoggedUser = name;
    m_controls.StatusBar1_1->setText(u"User: "_s + name);
    m_state.login.IsLoggedIn = true;
    HostLink::instance().note(event::LoggedIn{counterUser(m_state.login)});
    m_controls.Frame12->hide();
    m_controls.Frame12->lower();
    m_controls.Text3->clear();
    m_controls.Text4->clear();
    m_controls.TabStrip1->selectTab(WorkArea::QuickSales);
    m_controls.Command1.front()->setFocus();
    LogActivity(name + u" successfully logged in!"_s, box::Information, false, true);
}

void Inventory::logOut()
{
    if (!m_state.login.IsLoggedIn)
        return;
    if (ask(u"Log out User["_s + m_state.login.LoggedUser + u"]?"_s, box::AskDefaultNo) != Answer::Yes)
        return;
    if (m_controls.LV3->rows().rowCount() > 0 && !settleCartBeforeLogout())
        return;
    m_controls.Frame12->show();
    m_controls.Frame12->raise();
    m_controls.Frame11->hide();
    m_controls.Frame13->hide();
    // The next user can undo neither the last reorder nor the last purchase. Intended: the quantity becomes 1, not 0;
    // an empty item key means that there is nothing to undo.
    m_state.last.LastReorderQty = 1;
    m_state.last.LastReorderItem.clear();
    m_state.last.LastPurchaseID.clear();
    LogActivity(m_state.login.LoggedUser + u" logged out successfully!"_s, box::Information, false, true);
    HostLink::instance().note(event::LoggedOut{std::exchange(m_state.login.LoggedUser, {})});
    m_controls.TabStrip1->selectTab(WorkArea::QuickSales);
    m_state.login.IsLoggedIn = false;
    m_controls.StatusBar1_1->setText(u"User: None"_s);
    leadTo(*m_controls.Text3);
}

bool Inventory::settleCartBeforeLogout()
{
    switch (ask(u"Cart is not empty, Purchase Cart?"_s, box::AskOrCancel)) {
    case Answer::Yes:
        CheckoutCart(true);
        return true;
    case Answer::No:
        m_controls.LV3->rows().clear();
        UpdateCart();
        return true;
    default:
        return false;
    }
}

} // namespace harrowby
