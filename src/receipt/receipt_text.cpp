// SPDX-License-Identifier: MIT
#include "receipt/receipt_text.h"

#include "basic/dates.h"
#include "basic/numbers.h"
#include "receipt/receipt_width.h"

using namespace Qt::StringLiterals;

namespace harrowby {

std::vector<ReceiptStep> receiptHeader(const QString &title, const QString &address)
{
    return {
        {title.toUpper(), 12, true},
        {address.toUpper(), 7, {}},
        {receiptSeparator(), receiptSeparatorFontSize, {}},
        {u"Payment Receipt"_s, 8, {}},
        {receiptSeparator(), receiptSeparatorFontSize, {}},
        {{}, 8, false},
    };
}

std::vector<ReceiptStep> receiptTotals(float lineCount, const QString &currency, float total)
{
    return {
        {QString(), {}, {}},
        {receiptSeparator(), receiptSeparatorFontSize, {}},
        {u"Total Type of Item(s):"_s + plainText(lineCount), 8, true},
        {u"Total Cost ("_s + currency + u"): "_s + plainText(total), {}, {}},
        {receiptSeparator(), receiptSeparatorFontSize, false},
        {QString(), 8, false},
    };
}

std::vector<ReceiptStep> receiptFooter(const QString &purchaseId, const QDateTime &time)
{
    return {
        {QString(), {}, {}},
        {u"Purchase ID: "_s + purchaseId, {}, {}},
        {QString(), {}, {}},
        {QString(), {}, {}},
        {QString(), {}, {}},
        {receiptSeparator(), {}, {}},
        {u"Print Date: "_s + receiptTime(time), 8, {}},
    };
}

} // namespace harrowby
