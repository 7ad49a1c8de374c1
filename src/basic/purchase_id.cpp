// SPDX-License-Identifier: MIT
#include "basic/purchase_id.h"

#include "basic/dates.h"

#include <QLocale>

using namespace Qt::StringLiterals;

namespace harrowby {

namespace {

QString digits(const QDateTime &time)
{
    return purchasedDate(time) + QLocale::c().toString(time, u"mm"_s);
}

} // namespace

QString purchaseId(const QDateTime &time)
{
    return purchaseIdPrefix.toString() + digits(time);
}

QString purchaseIdToSave(const QString &id, bool isTaken, const std::function<QDateTime()> &now)
{
    return isTaken ? secondPurchaseIdPrefix.toString() + digits(now()) : id;
}

} // namespace harrowby
