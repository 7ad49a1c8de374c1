// SPDX-License-Identifier: MIT
#include "ui/sales/cart_list.h"

#include "basic/cart_arithmetic.h"
#include "basic/numbers.h"
#include "ui/cart_columns.h"
#include "ui/controls.h"
#include "ui/widgets/tab_strip.h"
#include "ui/widgets/text_table_model.h"
#include "ui/work_areas.h"

#include <QLabel>

using namespace Qt::StringLiterals;

namespace harrowby {

QString addedLine(const QString &quantity, const QString &itemKey)
{
    return quantity + u" of "_s + itemKey + u" Added to Cart!"_s;
}

QString changedLine(const QString &quantity, const QString &itemKey)
{
    return quantity + u" of "_s + itemKey + u" Added!"_s;
}

void appendCartLine(TextTableModel &cart, const QString &itemKey, std::int16_t qty, float unitCost)
{
    cart.appendRow({itemKey, QString::number(qty), formatMoney(newLineCost(unitCost, qty))});
}

void mergeIntoCartLine(TextTableModel &cart, int row, double qty, float unitCost)
{
    // A double, as two 16-bit quantities may add up to more than 16 bits hold.
    const double quantity = qty + leadingNumber(cart.text(row, CartColumn::Qty));
    cart.setText(row, CartColumn::Qty, plainText(quantity));
    cart.setText(row, CartColumn::Cost, formatMoney(mergedLineCost(unitCost, quantity)));
    cart.setByHand(row, false);
}

void replaceCartLine(TextTableModel &cart, int row, std::int16_t qty, float unitCost)
{
    cart.setText(row, CartColumn::Qty, QString::number(qty));
    cart.setText(row, CartColumn::Cost, formatMoney(newLineCost(unitCost, qty)));
    cart.setByHand(row, false);
}

void putCartLine(TextTableModel &cart, const QString &itemKey, const CounterLine &line)
{
    cart.appendRow(
        {itemKey, plainText(line.quantity), line.costByHand ? formatFixed(line.cost) : formatMoney(line.cost)});
    cart.setByHand(cart.lastRow(), line.costByHand);
}

void joinCartLine(TextTableModel &cart, int row, const CounterLine &line, float unitCost)
{
    if (line.costByHand || cart.isByHand(row))
        addToCartLine(cart, row, line);
    else
        mergeIntoCartLine(cart, row, line.quantity, unitCost);
}

void addToCartLine(TextTableModel &cart, int row, const CounterLine &line)
{
    const double cost = cartNumber(cart, row, CartColumn::Cost) + line.cost;
    const bool byHand = line.costByHand || cart.isByHand(row);
    cart.setByHand(row, byHand);
    cart.setText(row, CartColumn::Qty, plainText(cartNumber(cart, row, CartColumn::Qty) + line.quantity));
    cart.setText(row, CartColumn::Cost, byHand ? formatFixed(cost) : formatMoney(cost));
}

double cartNumber(const TextTableModel &cart, int row, int column)
{
    return leadingNumberWithoutCommas(cart.text(row, column));
}

std::vector<PurchaseLine> cartLines(const TextTableModel &cart)
{
    std::vector<PurchaseLine> lines;
    lines.reserve(static_cast<std::size_t>(cart.rowCount()));
    for (int row = 0; row < cart.rowCount(); ++row)
        lines.push_back(
            {cart.text(row, CartColumn::Qty), cart.text(row, CartColumn::Item), cart.text(row, CartColumn::Cost)});
    return lines;
}

void showCartTotal(const Controls &controls, const QString &total, int lines)
{
    controls.Label5->setText(u"Total: "_s + total);
    controls.TabStrip2->setTabText(SidePanel::Cart - 1, u"Cart("_s + QString::number(lines) + u")"_s);
}

} // namespace harrowby
