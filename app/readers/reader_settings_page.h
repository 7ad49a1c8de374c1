// SPDX-License-Identifier: MIT
#pragma once

#include "app/boxes/office_page.h"
#include "app/readers/reader_settings.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QLayout;
class QLineEdit;
class QListWidget;
class QPushButton;

namespace harrowby::app {

/// The office's page for this machine's code readers.
class ReaderSettingsPage final : public OfficePage
{
    Q_OBJECT

public:
    /// `found`: the devices to choose from.
    explicit ReaderSettingsPage(OfficeSettings settings, const QStringList &found = foundDevices(),
                                QWidget *parent = nullptr);

    [[nodiscard]] std::optional<LeavingQuestion> leaving() const override;

Q_SIGNALS:
    /// In words: what counts from now on.
    void saved(const QString &what);

private:
    void createEntries();
    void createDeviceEntries(const QStringList &found);
    QLayout *makeTypingForm();
    QLayout *makeDeviceForm();
    QPushButton *makeButton(const QString &objectName, const QString &caption, void (ReaderSettingsPage::*pressed)());
    [[nodiscard]] ReaderSettings entered() const;
    void addDevice();
    void removeDevice();
    void showDevices();
    void showWhatCounts();
    void save();
    void showSaved(const ReaderSettings &settings);

    OfficeSettings m_settings;
    ReaderSettings m_saved;
    QList<ReaderDevice> m_devices;
    QCheckBox *m_typing = nullptr;
    QComboBox *m_gap = nullptr;
    QLineEdit *m_prefix = nullptr;
    QListWidget *m_list = nullptr;
    QComboBox *m_path = nullptr;
    QComboBox *m_speed = nullptr;
    QPushButton *m_add = nullptr;
    QPushButton *m_remove = nullptr;
    QLabel *m_outcome = nullptr;
};

} // namespace harrowby::app
