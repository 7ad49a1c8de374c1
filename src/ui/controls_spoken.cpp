// SPDX-License-Identifier: MIT
// What a screen reader is told of the window's parts, beside the names of the controls themselves.
#include "ui/controls.h"
#include "ui/dashboard_elements.h"

#include <QFrame>
#include <QLabel>

using namespace Qt::StringLiterals;

namespace harrowby {

void Controls::nameParts()
{
    const std::pair<QFrame *, QString> panels[] = {{Frame1, u"Quick sales"_s},     {Frame2, u"Cart and dashboard"_s},
                                                   {Frame3, u"Custom sale"_s},     {Frame4, u"Cart"_s},
                                                   {Frame5, u"Sales activity"_s},  {Frame7, u"Stock item"_s},
                                                   {Frame8, u"Reorder"_s},         {Frame9, u"Settings"_s},
                                                   {Frame10, u"Existing stock"_s}, {Frame11, u"Search result"_s},
                                                   {Frame12, u"Login"_s},          {Frame13, u"Keypad"_s}};
    for (const auto &[panel, name] : panels)
        panel->setAccessibleName(name);
    // Each figure of the dashboard is labelled by its caption.
    const std::pair<int, int> figures[] = {{Dashboard::SalesCountCaption, Dashboard::SalesCount},
                                           {Dashboard::SalesAmountCaption, Dashboard::SalesAmount},
                                           {Dashboard::StockTotalCaption, Dashboard::StockTotal},
                                           {Dashboard::ReorderCountCaption, Dashboard::ReorderCount}};
    for (const auto &[caption, figure] : figures)
        Label6.at(static_cast<size_t>(caption))->setBuddy(Label6.at(static_cast<size_t>(figure)));
}

} // namespace harrowby
