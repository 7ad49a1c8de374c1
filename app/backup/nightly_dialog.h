// SPDX-License-Identifier: MIT
#pragma once

#include "app/backup/nightly_timer.h"
#include "app/work/work_job.h"

#include <QDialog>
#include <QStringList>

#include <functional>

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace harrowby::app {

/// Sets up the backup that is made every day, changes it, and switches it off.
class NightlyDialog final : public QDialog
{
    Q_OBJECT

public:
    NightlyDialog(NightlyTimer timer, QWidget *parent);

    /// What was changed, one after the other, for the record of who did what.
    [[nodiscard]] const QStringList &changes() const { return m_changes; }

    /// While something is being changed, which is for the record, it closes when that has ended well.
    void reject() override;

private:
    void createControls();
    void layOut();
    [[nodiscard]] QWidget *makeOutcomeArea();
    void fill(const NightlyPlan &plan);
    void chooseFolder();
    [[nodiscard]] NightlyPlan typed() const;
    void save();
    void switchOff();
    void run(const std::function<NightlyEnd(const WorkWatch &)> &work, const QString &done, const QString &change);
    void showWhatCounts();
    void lookWhetherItRuns();

    NightlyTimer m_timer;
    QStringList m_changes;
    bool m_isLeaving = false;
    QComboBox *m_time = nullptr;
    QLineEdit *m_folder = nullptr;
    QPushButton *m_choose = nullptr;
    QComboBox *m_keep = nullptr;
    QPushButton *m_save = nullptr;
    QPushButton *m_off = nullptr;
    QLabel *m_outcome = nullptr;
    WorkJob m_job; ///< last, so that it ends before what its end touches is destroyed
};

/// What the page says of the timer.
[[nodiscard]] QString nightlyText(const NightlyTimer &timer, const QString &program);

} // namespace harrowby::app
