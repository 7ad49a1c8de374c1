// SPDX-License-Identifier: MIT
// What a screen reader is told of the window's parts, beside the names of the controls themselves.
#include "ui/controls.h"
#include "ui/dashboard_elements.h"

#include <QFrame>
#include <QLabel>

namespace harrowby {

void Controls::nameParts()
{
    const std::pair<QFrame *, QString> panels[] = {
        {Frame1, QObject::tr("Quick sales")},     {Frame2, QObject::tr("Cart and dashboard")},
        {Frame3, QObject::tr("Custom sale")},     {Frame4, QObject::tr("Cart")},
        {Frame5, QObject::tr("Sales activity")},  {Frame7, QObject::tr("Stock item")},
        {Frame8, QObject::tr("Reorder")},         {Frame9, QObject::tr("Settings")},
        {Frame10, QObject::tr("Existing stock")}, {Frame11, QObject::tr("Search result")},
        {Frame12, QObject::tr("Login")},          {Frame13, QObject::tr("Keypad")}};
    for (const auto &[panel, name] : panels)
        panel->setAccessibleName(name);
    // A figure of the dashboard is told with what it counts.
    const std::pair<int, int> figures[] = {{Dashboard::SalesCountCaption, Dashboard::SalesCount},
                                           {Dashboard::SalesAmountCaption, Dashboard::SalesAmount},
                                           {Dashboard::StockTotalCaption, Dashboard::StockTotal},
                                           {Dashboard::ReorderCountCaption, Dashboard::ReorderCount}};
    for (const auto &[caption, figure] : figures)
        Label6.at(size_t(caption))->setBuddy(Label6.at(size_t(figure)));
}

} // namespace harrowby
