// SPDX-License-Identifier: MIT
#include "ui/stage_layout.h"

#include "ui/controls.h"

#include <QFrame>
#include <QGridLayout>

#include <algorithm>

namespace harrowby {

namespace {

// The stock panels divide the stage further to the left than the selling ones, because the stock list needs the room.
enum Column { FieldsColumn, MiddleColumn, SideColumn };
enum Row { UpperRow, LowerRow, FootRow };

constexpr int middleWidth = 320;
constexpr int sideBesideList = 350; ///< where the window is not narrow
constexpr int upperHeight = 226;    ///< what of the custom sale the keypad leaves to see in a low window
constexpr const char *besideFieldsProperty = "harrowbyBesideFields";

struct Place
{
    int row, column, rows, columns;
};

struct Places
{
    Place selling;   ///< quick sales, custom sale, settings
    Place fields;    ///< of an item and of a reorder
    Place stockList; ///< beside or below them
    Place side;
    Place keypad;
    Place searchOfFields;
};

constexpr Places wide{{UpperRow, FieldsColumn, 2, 2}, {UpperRow, FieldsColumn, 2, 1}, {UpperRow, MiddleColumn, 2, 2},
                      {UpperRow, SideColumn, 2, 1},   {LowerRow, FieldsColumn, 1, 2}, {LowerRow, MiddleColumn, 1, 2}};
constexpr Places narrow{{UpperRow, FieldsColumn, 2, 2}, {UpperRow, FieldsColumn, 1, 3}, {LowerRow, FieldsColumn, 1, 3},
                        {UpperRow, SideColumn, 2, 1},   {LowerRow, FieldsColumn, 1, 2}, {LowerRow, FieldsColumn, 1, 3}};
constexpr Places tall{{UpperRow, FieldsColumn, 2, 3}, {UpperRow, FieldsColumn, 1, 3}, {LowerRow, FieldsColumn, 2, 3},
                      {FootRow, FieldsColumn, 1, 3},  {LowerRow, FieldsColumn, 1, 3}, {LowerRow, FieldsColumn, 2, 3}};

const Places &placesOf(Shape shape)
{
    switch (shape) {
    case Shape::Narrow:
        return narrow;
    case Shape::Tall:
        return tall;
    default:
        return wide;
    }
}

Places placesIn(const QGridLayout &stage, const Controls &controls)
{
    Place list{};
    stage.getItemPosition(stage.indexOf(controls.Frame10), &list.row, &list.column, &list.rows, &list.columns);
    if (list.column != FieldsColumn)
        return wide;
    return list.rows == 1 ? narrow : tall;
}

void put(QGridLayout &stage, QWidget *panel, const Place &place)
{
    stage.removeWidget(panel);
    stage.addWidget(panel, place.row, place.column, place.rows, place.columns);
}

void shareOut(QGridLayout &stage, Shape shape, Density density)
{
    const Measures &measures = measuresOf(density);
    const bool isWide = shape == Shape::Wide;
    const bool isTall = shape == Shape::Tall;
    stage.setRowStretch(UpperRow, isWide ? 1 : 0);
    stage.setRowStretch(LowerRow, isTall ? 4 : 1);
    stage.setRowStretch(FootRow, isTall ? 6 : 0);
    stage.setRowMinimumHeight(UpperRow, density == Density::Compact ? upperHeight : 0);
    stage.setColumnStretch(FieldsColumn, 26);
    stage.setColumnStretch(MiddleColumn, 44);
    stage.setColumnStretch(SideColumn, 30);
    stage.setColumnMinimumWidth(FieldsColumn, isWide ? measures.fieldsWidth : 0);
    stage.setColumnMinimumWidth(MiddleColumn, isWide ? middleWidth : 0);
    const int side = isWide ? std::max(sideBesideList, measures.sideWidth) : measures.sideWidth;
    stage.setColumnMinimumWidth(SideColumn, isTall ? 0 : side);
}

} // namespace

void arrangePanels(const Controls &c, QGridLayout &stage, Shape shape, Density density)
{
    const Places &places = placesOf(shape);
    for (QFrame *panel : {c.Frame1, c.Frame3, c.Frame9})
        put(stage, panel, places.selling);
    for (QFrame *panel : {c.Frame7, c.Frame8})
        put(stage, panel, places.fields);
    put(stage, c.Frame10, places.stockList);
    put(stage, c.Frame2, places.side);
    put(stage, c.Frame13, places.keypad);
    placeSearchPanel(c, stage, c.Frame11->property(besideFieldsProperty).toBool());
    shareOut(stage, shape, density);
}

void placeSearchPanel(const Controls &c, QGridLayout &stage, bool besideFields)
{
    const Places places = placesIn(stage, c);
    c.Frame11->setProperty(besideFieldsProperty, besideFields);
    put(stage, c.Frame11, besideFields ? places.searchOfFields : places.keypad);
}

} // namespace harrowby
