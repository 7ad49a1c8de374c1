// SPDX-License-Identifier: MIT
#pragma once

#include "app/boxes/office_page.h"
#include "app/office/office_pages.h"

#include <QList>
#include <QPointer>
#include <QString>

/// Where a page or a single setting of the office is found by words. What stands on a page is found by itself: captions
/// of buttons and switches, and the accessible names of entries and lists.
namespace harrowby::app {

struct OfficePlace
{
    qsizetype page = 0;        ///< its index
    QPointer<QWidget> control; ///< null for the page as a whole
    QString title;
    QString where; ///< the page of a control; what is on a page
};

struct BuiltPage
{
    OfficePageEntry entry;
    OfficePage *page = nullptr;
};

/// The places that have each of the typed words, the beginning of one at least, the best ones first; none for blanks.
[[nodiscard]] QList<OfficePlace> findPlaces(const QString &typed, const QList<BuiltPage> &pages);

} // namespace harrowby::app
