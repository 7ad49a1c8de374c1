// SPDX-License-Identifier: MIT
#include "ui/stock/stock_fields.h"

#include "basic/numbers.h"
#include "basic/stock_id.h"
#include "basic/text.h"
#include "store/statement_texts.h"
#include "ui/controls.h"
#include "ui/focus_order.h"
#include "ui/widgets/pick_list.h"

#include <QPushButton>

using namespace Qt::StringLiterals;

namespace harrowby {

void resetStockFields(const Controls &controls)
{
    controls.Combo5->setEntryText(statements::otherCategory);
    controls.Combo6->setEntryText(automaticIdText);
    for (PickList *field : {controls.Combo7, controls.Combo8, controls.Combo13, controls.Combo14})
        field->setEntryText(QString());
    controls.Combo15->setEntryText(enabledText);
}

void startNewStock(const Controls &controls)
{
    resetStockFields(controls);
    leadTo(*controls.Combo5); // first: disabling the focused button would move the focus
    controls.Command26->setEnabled(false);
}

void formatStockCost(const Controls &controls)
{
    const QString typed = controls.Combo8->entryText();
    if (const std::optional<double> cost = wholeNumber(typed))
        controls.Combo8->setEntryText(formatMoney(*cost));
}

StockEntry enteredStock(const Controls &controls)
{
    const auto entered = [](const PickList *field) { return trimBlanks(field->entryText()); };
    return {entered(controls.Combo6),  entered(controls.Combo5),  entered(controls.Combo7), entered(controls.Combo8),
            entered(controls.Combo13), entered(controls.Combo14), entered(controls.Combo15)};
}

void leadToFault(const Controls &controls, StockFault fault)
{
    switch (fault) {
    case StockFault::Cost:
        controls.Combo8->setEntryText(u"0.00"_s);
        return leadTo(*controls.Combo8);
    case StockFault::ReorderLevel:
        controls.Combo13->setEntryText(u"0"_s);
        return leadTo(*controls.Combo13);
    case StockFault::Available:
        return leadTo(*controls.Combo14);
    default:
        return;
    }
}

} // namespace harrowby
