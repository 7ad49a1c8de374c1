// SPDX-License-Identifier: MIT
#pragma once

#include "app/codes/code_table.h"

#include <QList>
#include <QTimer>
#include <QWidget>

#include <optional>

class QLabel;
class QLineEdit;
class QListWidget;

namespace harrowby::app {

/// Picks an item of the stock: an entry for a part of its ID or name, and a list of those that have it.
class ItemPicker final : public QWidget
{
    Q_OBJECT

public:
    /// The records must outlive it.
    explicit ItemPicker(Records &records, QWidget *parent = nullptr);

    [[nodiscard]] std::optional<StockItem> current() const;
    [[nodiscard]] QLineEdit *entry() const { return m_entry; }

Q_SIGNALS:
    void currentChanged();

private:
    void search();

    CodeTable m_table;
    QList<StockItem> m_items;
    QLineEdit *m_entry = nullptr;
    QListWidget *m_list = nullptr;
    QLabel *m_found = nullptr;
    QTimer m_pause; ///< while somebody types
};

} // namespace harrowby::app
