// SPDX-License-Identifier: MIT
#pragma once

#include "app/backup/backup_job.h"
#include "app/backup/nightly_timer.h"
#include "app/boxes/office_page.h"
#include "app/records/deeds.h"
#include "app/shop/office_settings.h"

#include <functional>
#include <utility>

class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;

namespace harrowby::app {

/// When the last good backup was made; makes one at a chosen place while tills sell; and brings one back.
class BackupPage final : public OfficePage
{
    Q_OBJECT

public:
    /// What the deeds are kept in is that store, a file's or a server's, and must outlive it.
    BackupPage(const SignedDeeds &deeds, const QString &store, OfficeSettings settings, QWidget *parent = nullptr);

    [[nodiscard]] std::optional<LeavingQuestion> leaving() const override;
    void readAnew() override;
    /// `loss` says what has happened to the store file once it is lost: no copy counts then.
    void watchStore(std::function<QString()> loss) { m_loss = std::move(loss); }

private:
    void createControls();
    void layOut();
    void choosePlace();
    void start();
    void showProgress(const BackupProgress &progress);
    void finish(const BackupResult &result);
    void setRunning(bool running);
    void showLast();
    void noteGood(const BackupResult &result);
    void chooseRestore();
    [[nodiscard]] NightlyTimer nightly() const;
    void keepNightly();
    [[nodiscard]] QString loss() const;
    [[nodiscard]] QString serverObstacle() const;

    SignedDeeds m_deeds;
    QString m_store;
    OfficeSettings m_settings;
    std::function<QString()> m_loss;
    QLineEdit *m_place = nullptr;
    QPushButton *m_choose = nullptr;
    QPushButton *m_start = nullptr;
    QPushButton *m_stop = nullptr;
    QPushButton *m_nightly = nullptr;
    QPushButton *m_restore = nullptr;
    QProgressBar *m_progress = nullptr;
    QLabel *m_outcome = nullptr;
    QLabel *m_last = nullptr;
    bool m_isLastRead = true;
    QLabel *m_nightlyState = nullptr;
    BackupJob m_job; ///< last, so that it ends before the members that its signals reach are destroyed
};

} // namespace harrowby::app
