// SPDX-License-Identifier: MIT
#include "basic/purchase_text.h"

#include "basic/dates.h"
#include "basic/numbers.h"
#include "basic/text.h"

#include <QStringList>

using namespace Qt::StringLiterals;

namespace harrowby {

QString purchaseElement(const PurchaseLine &line)
{
    return line.quantity + purchase::quantityJoint + line.key + purchase::amountJoint + line.amount;
}

QString purchasedItems(const std::vector<PurchaseLine> &lines)
{
    QStringList elements;
    elements.reserve(static_cast<qsizetype>(lines.size()));
    for (const PurchaseLine &line : lines)
        elements << purchaseElement(line);
    return elements.join(purchase::elementJoint);
}

QString checkoutQuestion(const std::vector<PurchaseLine> &lines)
{
    QString list;
    int number = 0;
    for (const PurchaseLine &line : lines)
        list += crLf + QString::number(++number) + u". "_s + purchaseElement(line);
    return u"Item List:"_s + crLf + list + crLf + crLf + crLf + crLf + u"Purchased Cart?"_s;
}

QString checkoutLogLine(int lineCount, float total)
{
    return QString::number(lineCount) + u" item(s) of Total Cost "_s + formatMoney(total) + u" Purchased."_s;
}

QString purchaseSummary(const QString &purchaseId, const QString &purchasedItems, float lineCount, float total,
                        const QDateTime &time)
{
    QString elements = purchasedItems;
    elements.replace(purchase::elementJoint, crLf);
    // Intended: "Purchased Items: " stands over the list and once more before the count.
    return u"Items have been purchased!"_s + crLf + crLf + u"Purchase ID: "_s + purchaseId + crLf +
           u"Purchased Items: "_s + crLf + elements + crLf + u"Purchased Items: "_s + plainText(lineCount) + crLf +
           u"Purchased Items Cost: "_s + formatMoney(total) + crLf + crLf + u"Purchased Item Date: "_s +
           summaryTime(time) + crLf + crLf;
}

} // namespace harrowby
