// SPDX-License-Identifier: MIT
#pragma once

#include "app/cash/drawer_settings.h"

#include <QDialog>
#include <QStringList>

class QCheckBox;
class QComboBox;
class QLabel;
class QLayout;
class QPushButton;

namespace harrowby {
class HelperProcess;
} // namespace harrowby

namespace harrowby::app {

class Drawer;

/// The office's choices for the cash drawer of this machine; they can be tried before they are saved.
class DrawerSettingsDialog final : public QDialog
{
    Q_OBJECT

public:
    explicit DrawerSettingsDialog(OfficeSettings settings, QWidget *parent = nullptr);
    ~DrawerSettingsDialog() override;

    /// Saves, unless something is missing; what cannot be saved is told, and the dialog stays.
    void accept() override;

protected:
    /// Asks the print service for its queues, in the background.
    void showEvent(QShowEvent *event) override;

private:
    void createEntries();
    [[nodiscard]] QLayout *makeTimes();
    [[nodiscard]] QLayout *makeButtons();
    [[nodiscard]] DrawerSettings entered() const;
    void addQueues(const QStringList &queues);
    void showWhatCounts();
    void tryIt();
    void tell(const QString &reason);

    OfficeSettings m_settings;
    DrawerSettings m_saved;
    Drawer *m_drawer = nullptr;       ///< that is tried
    HelperProcess *m_query = nullptr; ///< of the queues
    QCheckBox *m_on = nullptr;
    QComboBox *m_queue = nullptr;
    QComboBox *m_pin = nullptr;
    QComboBox *m_pulse = nullptr;
    QComboBox *m_pause = nullptr;
    QPushButton *m_try = nullptr;
    QLabel *m_outcome = nullptr;
};

} // namespace harrowby::app
