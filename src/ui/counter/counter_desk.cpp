// SPDX-License-Identifier: MIT
#include "ui/counter/counter_desk.h"

#include "basic/cart_arithmetic.h"
#include "ui/cart_columns.h"
#include "ui/counter/counter_lines.h"
#include "ui/counter/counter_user.h"
#include "ui/counter/host_places.h"
#include "ui/inventory.h"
#include "ui/widgets/row_list.h"
#include "ui/widgets/text_table_model.h"

#include <QApplication>

namespace harrowby {

std::optional<CounterUser> CounterDesk::user() const
{
    const Login &login = m_window.m_state.login;
    return login.IsLoggedIn ? std::optional(counterUser(login)) : std::nullopt;
}

std::vector<CounterLine> CounterDesk::cart() const
{
    return counterLines(m_window.m_controls.LV3->rows());
}

float CounterDesk::total() const
{
    const TextTableModel &cart = m_window.m_controls.LV3->rows();
    CostTotal total;
    for (int row = 0; row < cart.rowCount(); ++row)
        total.add(cart.text(row, CartColumn::Cost));
    return total.value();
}

bool CounterDesk::isBusy() const
{
    return m_window.m_underWay.boxes.isOpen() || QApplication::activeModalWidget() != nullptr;
}

void CounterDesk::addButton(QWidget *button) const
{
    addHostButton(m_window, m_window.m_controls, button);
}

void CounterDesk::setBanner(QWidget *banner) const
{
    setHostBanner(m_window, m_window.m_controls, banner);
}

} // namespace harrowby
