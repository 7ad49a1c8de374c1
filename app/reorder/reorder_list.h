// SPDX-License-Identifier: MIT
#pragma once

#include "app/reorder/low_stock.h"

#include <QDialog>
#include <QTimer>

#include <memory>

class QLabel;
class QPushButton;
class QStackedWidget;

namespace harrowby::tables {
class OutputBar;
class TableView;
} // namespace harrowby::tables

namespace harrowby::app {

/// Lists the items that need to be reordered, to print and to save.
class ReorderListDialog : public QDialog
{
    Q_OBJECT

public:
    explicit ReorderListDialog(std::shared_ptr<DbConnection> connection, QWidget *parent = nullptr);
    ~ReorderListDialog() override;

    [[nodiscard]] tables::TableView &table() const { return *m_table; }
    [[nodiscard]] tables::OutputBar &output() const { return *m_output; }

Q_SIGNALS:
    /// The list is there, or the message says why there is none.
    void shown();

private:
    void createParts();
    void layOut();
    void read();
    void goOn();
    void showList();
    void showMessage(const QString &text);

    std::shared_ptr<DbConnection> m_connection;
    std::unique_ptr<LowStockReading> m_reading;
    QTimer m_timer;
    QStackedWidget *m_pages = nullptr;
    tables::TableView *m_table = nullptr;
    QLabel *m_message = nullptr;
    QLabel *m_count = nullptr;
    QLabel *m_status = nullptr;
    QPushButton *m_refresh = nullptr;
    tables::OutputBar *m_output = nullptr;
};

/// The window as the component asks for it, by the class identifier "Harrowby.ReorderList".
class ReorderList : public QObject
{
    Q_OBJECT

public:
    explicit ReorderList(std::shared_ptr<DbConnection> connection);

public Q_SLOTS:
    /// Over `owner`; with `modal` other than 0 it returns when the window has been closed.
    void Show(int modal, QWidget *owner);

private:
    std::shared_ptr<DbConnection> m_connection;
};

} // namespace harrowby::app
