// SPDX-License-Identifier: MIT
#pragma once

#include <QAccessibleWidget>
#include <QHash>

class QAbstractItemView;

namespace harrowby {

/// Accessible interface of a flat item view, with its headings if it has any. Children are numbered as in the events
/// that QAbstractItemView sends: headings first, then row by row. A child is created when asked for and stands for a
/// position, not for an item.
class ListReader final : public QAccessibleWidget, public QAccessibleTableInterface
{
public:
    explicit ListReader(QAbstractItemView *view);
    /// Whether this interface applies to the widget.
    [[nodiscard]] static bool knows(const QWidget *widget);

    [[nodiscard]] bool isValid() const override;
    [[nodiscard]] QAccessibleInterface *parent() const override;
    [[nodiscard]] QString text(QAccessible::Text kind) const override;
    [[nodiscard]] int childCount() const override;
    [[nodiscard]] QAccessibleInterface *child(int index) const override;
    [[nodiscard]] QAccessibleInterface *childAt(int x, int y) const override;
    [[nodiscard]] int indexOfChild(const QAccessibleInterface *child) const override;
    [[nodiscard]] QAccessibleInterface *focusChild() const override;

    [[nodiscard]] QAccessibleInterface *caption() const override { return nullptr; }
    [[nodiscard]] QAccessibleInterface *summary() const override { return nullptr; }
    [[nodiscard]] QAccessibleInterface *cellAt(int row, int column) const override;
    [[nodiscard]] int selectedCellCount() const override;
    [[nodiscard]] QList<QAccessibleInterface *> selectedCells() const override;
    [[nodiscard]] QString columnDescription(int column) const override;
    [[nodiscard]] QString rowDescription(int) const override { return {}; }
    [[nodiscard]] int selectedColumnCount() const override { return 0; }
    [[nodiscard]] int selectedRowCount() const override { return static_cast<int>(selectedRows().size()); }
    [[nodiscard]] int columnCount() const override;
    [[nodiscard]] int rowCount() const override;
    [[nodiscard]] QList<int> selectedColumns() const override { return {}; }
    [[nodiscard]] QList<int> selectedRows() const override;
    [[nodiscard]] bool isColumnSelected(int) const override { return false; }
    [[nodiscard]] bool isRowSelected(int row) const override;
    bool selectRow(int row) override;
    bool selectColumn(int) override { return false; }
    bool unselectRow(int row) override;
    bool unselectColumn(int) override { return false; }
    /// Called only while a screen reader listens.
    void modelChange(QAccessibleTableModelChangeEvent *event) override;

protected:
    ~ListReader() override;
    void *interface_cast(QAccessible::InterfaceType type) override;

private:
    [[nodiscard]] QAbstractItemView *view() const;
    [[nodiscard]] int headings() const;
    [[nodiscard]] int place(int row, int column) const;
    void dropChildren();
    void tellChanges(const QAccessibleTableModelChangeEvent &event) const;

    mutable QHash<int, QAccessible::Id> m_children;
};

} // namespace harrowby
