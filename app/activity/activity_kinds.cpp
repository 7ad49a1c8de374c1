// SPDX-License-Identifier: MIT
#include "app/activity/activity_kinds.h"

#include "app/records/deeds.h"

#include <QHash>
#include <QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

using Kind = ActivityKind;

/// A text of the log: how it begins, what stands in it and how it ends. Names of items and users stand in between, so
/// more than one shape may fit; the first one counts.
struct LogShape
{
    Kind kind;
    QLatin1StringView begin;
    QLatin1StringView within;
    QLatin1StringView end;
};

constexpr QLatin1StringView loggedIn(" successfully logged in!");
constexpr QLatin1StringView loggedOut(" logged out successfully!");

constexpr LogShape logShapes[] = {
    {Kind::Cart, "Item ["_L1, ""_L1, "] deleted!"_L1}, // out of the cart
    {Kind::PriceByHand, "Cost of Item "_L1, " changed to "_L1, "!"_L1},
    {Kind::Deletion, "Stock ["_L1, "] with "_L1, " has been deleted!"_L1},
    {Kind::Deletion, "Category ["_L1, ""_L1, "] Deleted!"_L1},
    {Kind::Deletion, "Last Purchased Undone!"_L1, ""_L1, ""_L1},
    {Kind::Stock, "Stock ["_L1, "] with ID ["_L1, " successfully."_L1},
    {Kind::Stock, "Stock List Refreshed."_L1, ""_L1, ""_L1},
    {Kind::Stock, "Category ["_L1, ""_L1, "] Added!"_L1},
    {Kind::Stock, "Category Name Changed!"_L1, ""_L1, ""_L1},
    {Kind::Stock, "Item(s) Removed from Stock ["_L1, "]. New Available Stock is "_L1, "."_L1},
    {Kind::Stock, ""_L1, " New item(s) to Stock ["_L1, "."_L1},
    {Kind::Settings, "Setting Saved!"_L1, ""_L1, ""_L1},
    {Kind::Settings, "Activity Cleared!"_L1, ""_L1, ""_L1}, // on the screen; the store keeps it
    {Kind::Sale, ""_L1, " item(s) of Total Cost "_L1, " Purchased."_L1},
    {Kind::Login, ""_L1, ""_L1, loggedIn},
    {Kind::Login, ""_L1, ""_L1, loggedOut},
    {Kind::Cart, ""_L1, ""_L1, " Added to Cart!"_L1},
    {Kind::Cart, ""_L1, " of "_L1, " Added!"_L1},
};

bool fits(const LogShape &shape, const QString &text)
{
    return text.endsWith(shape.end) && text.startsWith(shape.begin) && text.contains(shape.within);
}

QString userIn(const QString &text)
{
    for (const QLatin1StringView end : {loggedIn, loggedOut}) {
        if (text.endsWith(end))
            return text.chopped(end.size());
    }
    return {};
}

const QHash<QString, Kind> &deedKinds()
{
    static const QHash<QString, Kind> kinds = {
        {deed::priceByHand, Kind::PriceByHand},   {deed::drawerOpened, Kind::Drawer},
        {deed::itemDeleted, Kind::Deletion},      {deed::purchaseDeleted, Kind::Deletion},
        {deed::purchaseUndone, Kind::Deletion},   {deed::rightsChanged, Kind::Users},
        {deed::userAdded, Kind::Users},           {deed::passwordSet, Kind::Users},
        {deed::loginRefused, Kind::LoginRefused}, {deed::loggedIn, Kind::Login},
        {deed::settingChanged, Kind::Settings},   {deed::codeChanged, Kind::Catalogue},
        {deed::paymentSettled, Kind::Sale},       {deed::imported, Kind::Catalogue},
        {deed::importTakenBack, Kind::Catalogue}, {deed::exported, Kind::Catalogue},
        {deed::labelsPrinted, Kind::Catalogue},   {deed::backedUp, Kind::Safety},
        {deed::restored, Kind::Safety},           {deed::stockNotChanged, Kind::StockNotChanged},
        {deed::stockOfRenamed, Kind::Stock},
    };
    return kinds;
}

} // namespace

const QList<ActivityKindWords> &activityKinds()
{
    static const QList<ActivityKindWords> kinds = {
        {Kind::PriceByHand, u"price-by-hand"_s, u"Price changed by hand"_s},
        {Kind::Deletion, u"deletion"_s, u"Deleted or undone"_s},
        {Kind::Drawer, u"drawer"_s, u"Drawer opened"_s},
        {Kind::Users, u"users"_s, u"Users and rights"_s},
        {Kind::LoginRefused, u"login-refused"_s, u"Login refused"_s},
        {Kind::Login, u"login"_s, u"Login and logout"_s},
        {Kind::Sale, u"sale"_s, u"Sale"_s},
        {Kind::Cart, u"cart"_s, u"Cart"_s},
        {Kind::Stock, u"stock"_s, u"Stock and categories"_s},
        {Kind::StockNotChanged, u"stock-not-changed"_s, u"Stock not changed"_s},
        {Kind::Catalogue, u"catalogue"_s, u"Catalogue and codes"_s},
        {Kind::Settings, u"settings"_s, u"Settings"_s},
        {Kind::Safety, u"backup"_s, u"Backup and restore"_s},
        {Kind::Other, u"other"_s, u"Other"_s},
    };
    return kinds;
}

QString titleOf(ActivityKind kind)
{
    const auto &kinds = activityKinds();
    const auto found =
        std::find_if(kinds.cbegin(), kinds.cend(), [kind](const ActivityKindWords &one) { return one.kind == kind; });
    return found->title;
}

ActivityKind kindOfDeed(const QString &stored)
{
    return deedKinds().value(stored, Kind::Other);
}

LogMeaning meaningOfLog(const QString &text)
{
    for (const LogShape &shape : logShapes) {
        if (fits(shape, text))
            return {shape.kind, shape.kind == Kind::Login ? userIn(text) : QString()};
    }
    return {};
}

bool isInLog(ActivityKind kind)
{
    return kind == Kind::Other || std::any_of(std::cbegin(logShapes), std::cend(logShapes),
                                              [kind](const LogShape &shape) { return shape.kind == kind; });
}

QStringList logTextsOf(const QString &user)
{
    return {user + loggedIn, user + loggedOut};
}

} // namespace harrowby::app
