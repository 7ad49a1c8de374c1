// SPDX-License-Identifier: MIT
#include "tests/ui/tabs_desk.h"

using namespace Qt::StringLiterals;

namespace harrowby::test::tabs_desk {

const QStringList frames{u"Frame1"_s, u"Frame2"_s,  u"Frame3"_s,  u"Frame7"_s, u"Frame8"_s,
                         u"Frame9"_s, u"Frame10"_s, u"Frame11"_s, u"Frame13"_s};

QStringList visibleFrames(const Counter &counter)
{
    QStringList visible;
    for (const QString &frame : frames) {
        if (counter.find(frame.toLatin1().constData())->isVisible())
            visible << frame;
    }
    return visible;
}

QStringList framesOf(int tab)
{
    switch (tab) {
    case WorkArea::CustomSales:
        return {u"Frame2"_s, u"Frame3"_s};
    case WorkArea::EditStock: // the cart's area stays as it is under the stock list
        return {u"Frame2"_s, u"Frame7"_s, u"Frame10"_s};
    case WorkArea::ReorderStock:
        return {u"Frame8"_s, u"Frame10"_s};
    case WorkArea::Settings:
        return {u"Frame2"_s, u"Frame9"_s};
    default:
        return {u"Frame1"_s, u"Frame2"_s};
    }
}

const QString allStock = u"Select * from StockList"_s;

const QString allPurchases = u"Select PurchaseID from PurchaseCart Order by PurchaseID DESC"_s;

const QString dashboard = u"Select Total(StockAvailable) as Totals from Stocklist where StockUse = 'Enabled'"_s;

} // namespace harrowby::test::tabs_desk
