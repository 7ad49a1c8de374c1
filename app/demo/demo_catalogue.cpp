// SPDX-License-Identifier: MIT
#include "app/demo/demo_catalogue.h"

#include "basic/stock_id.h"

#include <QStringList>

#include <array>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

struct Entry
{
    const char *name;
    int cents;
    int reorderLevel;
    int available;
    bool enabled = true;
};

struct Shelf
{
    const char *category;
    std::array<Entry, 8> entries;
};

// On every shelf something is low or finished, and here and there something is no longer sold.
constexpr std::array<Shelf, 8> shelves = {{
    {"BEVERAGES",
     {{{"SPRING WATER 50 CL", 60, 24, 180},
       {"COLA CAN 33 CL", 95, 24, 140},
       {"ORANGE JUICE 1 L", 245, 12, 36},
       {"APPLE JUICE 1 L", 225, 12, 9},
       {"GINGER ALE 75 CL", 180, 10, 31},
       {"GROUND COFFEE 500 G", 649, 8, 22},
       {"BREAKFAST TEA 80 BAGS", 389, 8, 0},
       {"MALT DRINK 33 CL", 110, 12, 48, false}}}},
    {"BAKERY",
     {{{"WHITE LOAF", 165, 10, 28},
       {"WHOLEMEAL LOAF", 195, 10, 19},
       {"BUTTER CROISSANT", 120, 12, 40},
       {"CINNAMON BUN", 145, 10, 4},
       {"BREAD ROLLS 6 PACK", 210, 8, 17},
       {"FRUIT CAKE SLICE", 185, 6, 12},
       {"CHEESE SCONE", 135, 8, 0},
       {"BAGEL", 90, 10, 25}}}},
    {"DAIRY",
     {{{"WHOLE MILK 1 L", 125, 20, 64},
       {"SKIMMED MILK 1 L", 119, 20, 52},
       {"SALTED BUTTER 250 G", 279, 10, 23},
       {"NATURAL YOGHURT 500 G", 215, 8, 16},
       {"CHEDDAR 400 G", 445, 8, 14},
       {"CREAM CHEESE 200 G", 239, 6, 5},
       {"EGGS 12", 329, 10, 33},
       {"CONDENSED MILK 397 G", 175, 6, 18, false}}}},
    {"SNACKS",
     {{{"SALTED CRISPS 150 G", 185, 15, 58},
       {"ROASTED PEANUTS 200 G", 230, 10, 37},
       {"MILK CHOCOLATE 100 G", 175, 15, 72},
       {"DARK CHOCOLATE 100 G", 195, 15, 11},
       {"OAT BISCUITS 250 G", 160, 10, 29},
       {"FISH & CHIPS CRACKERS 90 G", 140, 8, 21},
       {"SALTED POPCORN 80 G", 125, 8, 0},
       {"FRUIT GUMS 200 G", 150, 10, 44}}}},
    {"HOUSEHOLD",
     {{{"WASHING-UP LIQUID 500 ML", 199, 8, 26},
       {"LAUNDRY POWDER 2 KG", 899, 5, 12},
       {"KITCHEN ROLL 4 PACK", 349, 6, 15},
       {"BIN BAGS 30 L 20 PACK", 275, 6, 20},
       {"LED LAMP 9 W WARM WHITE E27", 425, 6, 3},
       {"AA BATTERIES 8 PACK RECHARGEABLE LONG LIFE", 1499, 5, 9},
       {"MATCHES 3 BOXES", 99, 10, 50},
       {"CANDLES 10 PACK", 320, 5, 8, false}}}},
    {"TOILETRIES",
     {{{"TOOTHPASTE 75 ML", 249, 10, 34},
       {"TOOTHBRUSH MEDIUM", 199, 10, 27},
       {"BATH SOAP 3 PACK", 219, 8, 19},
       {"SHAMPOO 300 ML", 389, 6, 13},
       {"SHOWER GEL 250 ML", 299, 6, 6},
       {"TISSUES 100", 145, 12, 41},
       {"HAND CREAM 75 ML", 329, 5, 0},
       {"TOILET ROLL 9 PACK", 549, 8, 24}}}},
    {"STATIONERY",
     {{{"EXERCISE BOOK A5", 120, 15, 66},
       {"BALLPOINT PEN BLUE", 55, 20, 120},
       {"BALLPOINT PEN BLACK", 55, 20, 104},
       {"PENCIL HB", 40, 20, 88},
       {"ENVELOPES 25 PACK", 210, 8, 14},
       {"STICKY TAPE 33 M", 165, 8, 7},
       {"COPY PAPER A4 500 SHEETS", 595, 6, 18},
       {"GIFT WRAP", 250, 5, 11}}}},
    {"PRODUCE",
     {{{"BANANAS 1 KG", 149, 10, 35},
       {"RED APPLES 1 KG", 219, 10, 28},
       {"LEMONS 4 PACK", 139, 8, 16},
       {"TOMATOES 500 G", 189, 8, 8},
       {"POTATOES 2.5 KG", 265, 8, 22},
       {"ONIONS 1 KG", 115, 8, 30},
       {"CARROTS 1 KG", 99, 8, 26},
       {"GARLIC 3 BULBS", 110, 6, 0}}}},
}};

DemoItem itemOf(const Shelf &shelf, const Entry &entry, int number)
{
    const QString category = QString::fromLatin1(shelf.category);
    const QString id = automaticId(automaticIdPrefix(category), static_cast<std::int16_t>(number));
    return {id,           QString::fromLatin1(entry.name), category, entry.cents, entry.reorderLevel, entry.available,
            entry.enabled};
}

} // namespace

const QStringList &demoCategories()
{
    static const QStringList categories = [] {
        QStringList names;
        for (const Shelf &shelf : shelves)
            names << QString::fromLatin1(shelf.category);
        return names;
    }();
    return categories;
}

QList<DemoItem> demoItems()
{
    QList<DemoItem> items;
    for (const Shelf &shelf : shelves) {
        int number = 0;
        for (const Entry &entry : shelf.entries)
            items << itemOf(shelf, entry, ++number);
    }
    return items;
}

} // namespace harrowby::app
