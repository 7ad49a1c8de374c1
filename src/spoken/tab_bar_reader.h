// SPDX-License-Identifier: MIT
#pragma once

#include <QAccessibleWidget>
#include <QHash>
#include <QMetaObject>

class QTabBar;

namespace harrowby {

/// Accessible interface of a QTabBar: its purpose, its tabs, and which one is selected.
class TabBarReader final : public QAccessibleWidget
{
public:
    explicit TabBarReader(QTabBar *bar);

    [[nodiscard]] int childCount() const override;
    [[nodiscard]] QAccessibleInterface *child(int index) const override;
    [[nodiscard]] QAccessibleInterface *childAt(int x, int y) const override;
    [[nodiscard]] int indexOfChild(const QAccessibleInterface *child) const override;
    [[nodiscard]] QAccessibleInterface *focusChild() const override;

protected:
    ~TabBarReader() override;

private:
    [[nodiscard]] QTabBar *bar() const;
    void tellSelection(int current);

    mutable QHash<int, QAccessible::Id> m_tabs; ///< those that were asked for
    int m_selected;
    QMetaObject::Connection m_changes;
};

} // namespace harrowby
