// SPDX-License-Identifier: MIT
#pragma once

#include "app/backup/backup_job.h"

#include <QDialog>
#include <QPointer>
#include <QString>

#include <functional>

class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;

namespace harrowby::app {

class StoreGuard;

/// Stands in front from the moment at which the store file is lost until the till or the office is closed: says what
/// has happened and what to do, and makes a copy of a store whose file has no name any more.
class LostStoreBox final : public QDialog
{
    Q_OBJECT

public:
    /// `place` is what is closed: "till" or "office"; `close` closes it, and says false when the person would rather
    /// not.
    LostStoreBox(StoreGuard &guard, const QString &place, std::function<bool()> close, QWidget *parent);

    /// Shows what the guard knows by now, and raises the box.
    void tell();

    /// Closes the till or the office behind the box; the box stays when the person answers "No".
    void reject() override;

private:
    void createControls();
    void layOut();
    void fitText();
    [[nodiscard]] QWidget *makeRescue();
    void offerPlace();
    void choosePlace();
    void rescue();
    void showProgress(const BackupProgress &progress);
    void finish(const BackupResult &result);
    void setRunning(bool running);
    [[nodiscard]] bool mayClose();
    void comeBack();
    void comeBackLater();

    StoreGuard &m_guard;
    QString m_place;
    std::function<bool()> m_close;
    bool m_closing = false;
    bool m_rescued = false;
    QString m_offered; ///< the place that was proposed for the copy
    QString m_target;  ///< of the copy that is being made
    QLabel *m_what = nullptr;
    QLabel *m_advice = nullptr;
    QWidget *m_rescue = nullptr;
    QLineEdit *m_file = nullptr;
    QPushButton *m_choose = nullptr;
    QPushButton *m_make = nullptr;
    QPushButton *m_leave = nullptr;
    QProgressBar *m_progress = nullptr;
    QLabel *m_outcome = nullptr;
    BackupJob m_job;
};

/// Shows the box when the guard finds the store lost, over the window that is there then.
class LostStoreAlarm final : public QObject
{
    Q_OBJECT

public:
    LostStoreAlarm(StoreGuard &guard, QString place, std::function<bool()> close);
    ~LostStoreAlarm() override;

    /// Called after the till or the office has been closed: checks the file once more, and shows the box when it was
    /// lost in the last moment, as a file without a name is gone with the program that has it open.
    void checkOnceMore();

private:
    void raise();

    StoreGuard &m_guard;
    QString m_place;
    std::function<bool()> m_close;
    QPointer<LostStoreBox> m_box;
    bool m_told = false;
    bool m_left = false; ///< the person has closed the till or the office from the box
};

/// Closes the sales window, which asks. True when it is closed.
[[nodiscard]] bool closeTill();
/// Closes the boxes of the office from the front to the back, and the office. True when all are closed.
[[nodiscard]] bool closeOffice();

} // namespace harrowby::app
