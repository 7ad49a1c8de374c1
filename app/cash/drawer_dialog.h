// SPDX-License-Identifier: MIT
#pragma once

#include <QDialog>
#include <QString>

class QComboBox;
class QPushButton;

namespace harrowby::app {

/// Asks why the drawer is opened without a sale.
class DrawerDialog final : public QDialog
{
    Q_OBJECT

public:
    explicit DrawerDialog(QWidget *parent);

    /// As it is recorded; never empty once the dialog was accepted.
    [[nodiscard]] QString reason() const;

private:
    void layOut();
    void followEntry();

    QComboBox *m_reason = nullptr; ///< some to choose from, or typed
    QPushButton *m_open = nullptr;
};

} // namespace harrowby::app
