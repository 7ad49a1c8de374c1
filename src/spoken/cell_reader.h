// SPDX-License-Identifier: MIT
#pragma once

#include <QAccessible>
#include <QModelIndex>
#include <QPointer>

class QAbstractItemView;

namespace harrowby {

/// Accessible interface of one cell of a list, or of a column heading (row -1).
class CellReader final : public QAccessibleInterface,
                         public QAccessibleTableCellInterface,
                         public QAccessibleActionInterface
{
public:
    static constexpr int headingRow = -1;

    CellReader(QAbstractItemView *view, int row, int column);

    [[nodiscard]] bool isValid() const override;
    [[nodiscard]] QObject *object() const override { return nullptr; }
    [[nodiscard]] QAccessible::Role role() const override;
    [[nodiscard]] QAccessible::State state() const override;
    [[nodiscard]] QString text(QAccessible::Text kind) const override;
    void setText(QAccessible::Text, const QString &) override {}
    [[nodiscard]] QRect rect() const override;
    [[nodiscard]] QAccessibleInterface *parent() const override;
    [[nodiscard]] QAccessibleInterface *child(int) const override { return nullptr; }
    [[nodiscard]] QAccessibleInterface *childAt(int, int) const override { return nullptr; }
    [[nodiscard]] int childCount() const override { return 0; }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface *) const override { return -1; }

    [[nodiscard]] bool isSelected() const override;
    [[nodiscard]] QList<QAccessibleInterface *> columnHeaderCells() const override;
    [[nodiscard]] QList<QAccessibleInterface *> rowHeaderCells() const override { return {}; }
    [[nodiscard]] int columnIndex() const override { return m_column; }
    [[nodiscard]] int rowIndex() const override { return m_row; }
    [[nodiscard]] int columnExtent() const override { return 1; }
    [[nodiscard]] int rowExtent() const override { return 1; }
    [[nodiscard]] QAccessibleInterface *table() const override { return parent(); }

    /// Press is a click; Toggle selects the row and does nothing else, as the arrow keys do.
    [[nodiscard]] QStringList actionNames() const override;
    [[nodiscard]] QStringList keyBindingsForAction(const QString &) const override { return {}; }
    void doAction(const QString &action) override;

protected:
    void *interface_cast(QAccessible::InterfaceType type) override;

private:
    [[nodiscard]] bool isHeading() const { return m_row == headingRow; }
    [[nodiscard]] QModelIndex index() const;
    void press();

    QPointer<QAbstractItemView> m_view;
    int m_row;
    int m_column;
};

} // namespace harrowby
