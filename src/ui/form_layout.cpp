// SPDX-License-Identifier: MIT
#include "ui/form_layout.h"

#include "ui/controls.h"
#include "ui/dashboard_elements.h"
#include "ui/widgets/elided_label.h"
#include "ui/widgets/pick_list.h"

#include <QCheckBox>
#include <QFrame>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

namespace harrowby {

namespace {

/// Puts a control, with its caption if it has one, into another cell of its grid.
void move(QGridLayout &grid, QWidget *control, int row, int column, int columns = 1, int rows = 1)
{
    for (int i = 0; i < grid.count(); ++i) {
        QLayoutItem *const item = grid.itemAt(i);
        const Qt::Alignment alignment = item->alignment();
        if (QLayout *group = item->layout(); group && group->indexOf(control) >= 0) {
            grid.takeAt(i);
            grid.addLayout(group, row, column, rows, columns, alignment);
            return;
        }
        if (item->widget() == control) {
            delete grid.takeAt(i);
            grid.addWidget(control, row, column, rows, columns, alignment);
            return;
        }
    }
}

QGridLayout &gridOf(const QWidget *control)
{
    return *static_cast<QGridLayout *>(control->parentWidget()->layout());
}

void setStretches(QGridLayout &grid, int columns, int lastRow)
{
    for (int column = 0; column < grid.columnCount(); ++column)
        grid.setColumnStretch(column, column < columns ? 1 : 0);
    for (int row = 0; row < grid.rowCount(); ++row)
        grid.setRowStretch(row, 0);
    grid.setRowStretch(lastRow, 1);
}

/// Four columns above the list.
void arrangeStockFieldsFlat(const Controls &c)
{
    QGridLayout &grid = gridOf(c.Combo5);
    move(grid, c.Combo5, 0, 0);
    move(grid, c.Combo6, 0, 1);
    move(grid, c.Combo7, 0, 2, 2);
    move(grid, c.Combo8, 1, 0);
    move(grid, c.Combo13, 1, 1);
    move(grid, c.Combo14, 1, 2);
    move(grid, c.Combo15, 1, 3);
    move(grid, c.Command16, 2, 0, 2);
    move(grid, c.Command26, 2, 2, 2);
    setStretches(grid, 4, 3);
}

/// Two columns beside the list.
void arrangeStockFieldsUpright(const Controls &c)
{
    QGridLayout &grid = gridOf(c.Combo5);
    move(grid, c.Combo5, 0, 0, 2);
    move(grid, c.Combo6, 1, 0, 2);
    move(grid, c.Combo7, 2, 0, 2);
    move(grid, c.Combo8, 3, 0);
    move(grid, c.Combo13, 3, 1);
    move(grid, c.Combo14, 4, 0);
    move(grid, c.Combo15, 4, 1);
    move(grid, c.Command16, 5, 0, 2);
    move(grid, c.Command26, 6, 0, 2);
    setStretches(grid, 2, 7);
    grid.setColumnStretch(0, priceShare);
    grid.setColumnStretch(1, besidePriceShare);
}

void arrangeReorderFlat(const Controls &c)
{
    QGridLayout &grid = gridOf(c.Combo12);
    move(grid, c.Combo12, 0, 0);
    move(grid, c.Combo11, 0, 1, 3);
    move(grid, c.Label12, 1, 0);
    move(grid, c.Label13, 1, 1);
    move(grid, c.Combo10, 1, 2, 2);
    move(grid, c.Command17, 2, 0, 2);
    move(grid, c.Command23, 2, 2);
    move(grid, c.Command24, 2, 3);
    setStretches(grid, 3, 3);
}

void arrangeReorderUpright(const Controls &c)
{
    QGridLayout &grid = gridOf(c.Combo12);
    move(grid, c.Combo12, 0, 0, 2);
    move(grid, c.Combo11, 1, 0, 2);
    move(grid, c.Combo10, 2, 0, 2);
    move(grid, c.Label12, 3, 0, 2);
    move(grid, c.Label13, 4, 0, 2);
    move(grid, c.Command17, 5, 0, 2);
    move(grid, c.Command23, 6, 0);
    move(grid, c.Command24, 6, 1);
    setStretches(grid, 1, 7);
}

/// The heading over a control.
QLabel *headingOf(QWidget *control)
{
    for (QLabel *label : control->parentWidget()->findChildren<QLabel *>(QString(), Qt::FindDirectChildrenOnly)) {
        if (label->buddy() == control)
            return label;
    }
    return nullptr;
}

/// Two columns: check boxes beside their entries, the categories beside their buttons.
void arrangeSettingsBeside(const Controls &c)
{
    QGridLayout &grid = gridOf(c.Check1);
    move(grid, c.Check1, 0, 0, 4);
    move(grid, c.Check2, 1, 0, 2);
    move(grid, c.Check3, 1, 2, 2);
    move(grid, c.Check4, 2, 0, 2);
    move(grid, c.Text2, 2, 2, 2);
    move(grid, c.Check5, 3, 0, 2);
    move(grid, c.Combo9, 3, 2, 2);
    move(grid, c.Command18, 4, 2, 2);
    move(grid, headingOf(c.List2), 5, 0, 2);
    move(grid, c.List2, 6, 0, 2, 6);
    move(grid, c.Combo16, 6, 2, 2);
    move(grid, c.Command2, 7, 2, 2);
    move(grid, headingOf(c.Combo17), 8, 2, 2);
    move(grid, c.Combo17, 9, 2, 2);
    move(grid, c.Command4, 10, 2, 2);
    setStretches(grid, 4, 11);
}

/// One below the other.
void arrangeSettingsBelow(const Controls &c)
{
    QGridLayout &grid = gridOf(c.Check1);
    int row = 0;
    for (QWidget *control : std::initializer_list<QWidget *>{
             c.Check1, c.Check2, c.Check3, c.Check4, c.Text2, c.Check5, c.Combo9, c.Command18, headingOf(c.List2),
             c.List2, c.Combo16, c.Command2, headingOf(c.Combo17), c.Combo17, c.Command4})
        move(grid, control, row++, 0, 4);
    setStretches(grid, 4, row);
}

/// Four tiles in a row, or two.
void arrangeDashboard(const Controls &c, bool inARow)
{
    auto &column = *c.Label6[Dashboard::Heading]->parentWidget()->layout();
    auto &grid = *static_cast<QGridLayout *>(column.itemAt(column.count() - 1)->layout());
    int place = 0;
    for (const int figure : Dashboard::figures) {
        const int columns = inARow ? 4 : 2;
        move(grid, c.Label6[static_cast<size_t>(figure)]->parentWidget(), 1 + place / columns, place % columns);
        ++place;
    }
    move(grid, c.Label6[Dashboard::Heading], 0, 0, inARow ? 4 : 2);
    for (int tile = 0; tile < 4; ++tile)
        grid.setColumnStretch(tile, tile < 2 || inARow ? 1 : 0);
}

} // namespace

void arrangeForms(const Controls &c, Shape shape)
{
    if (shape == Shape::Wide) {
        arrangeStockFieldsUpright(c);
        arrangeReorderUpright(c);
    } else {
        arrangeStockFieldsFlat(c);
        arrangeReorderFlat(c);
    }
    if (shape == Shape::Narrow)
        arrangeSettingsBelow(c);
    else
        arrangeSettingsBeside(c);
    arrangeDashboard(c, shape == Shape::Tall);
}

} // namespace harrowby
