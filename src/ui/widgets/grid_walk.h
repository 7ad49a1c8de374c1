// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

#include <vector>

class QWidget;

namespace harrowby {

/// Event filter for widgets that stand in a grid: each arrow key leads to the next one in its direction that can take
/// the focus. At the edge the focus stays.
class GridWalk final : public QObject
{
    Q_OBJECT

public:
    /// `cells` row by row; they outlive this object.
    GridWalk(std::vector<QWidget *> cells, int columns, QObject *parent);
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    struct Step
    {
        int rows = 0;
        int columns = 0;
    };

    [[nodiscard]] static Step stepOf(int key, Qt::LayoutDirection direction);
    [[nodiscard]] QWidget *next(int from, Step step) const;

    std::vector<QWidget *> m_cells;
    int m_columns;
};

} // namespace harrowby
