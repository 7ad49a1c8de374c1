// SPDX-License-Identifier: MIT
#pragma once

#include "app/catalogue/catalogue_import.h"
#include "app/export/export.h"
#include "app/work/work_job.h"

#include <QWidget>

#include <functional>

class QCheckBox;
class QComboBox;
class QDateEdit;
class QGridLayout;
class QLabel;
class QLineEdit;
class QPushButton;

namespace harrowby::app {

/// Saves what the store holds as a list that a spreadsheet opens and an import takes.
class ExportPane final : public QWidget
{
    Q_OBJECT

public:
    /// Records and job must outlive it. What was sold is the administrator's alone.
    ExportPane(Records &records, const ImportDesk &desk, WorkJob &job, bool isAdministrator,
               std::function<QString()> loss, QWidget *parent = nullptr);

    /// Offers a file name of today.
    void begin();

Q_SIGNALS:
    void left();

private:
    void createParts(bool isAdministrator);
    void readForm();
    QDateEdit *makeDay(const QString &name, const QString &spoken);
    void layOut();
    [[nodiscard]] QWidget *makeDays();
    [[nodiscard]] QGridLayout *makeForm();
    void choosePlace();
    void followChoices();
    void carryOut();
    [[nodiscard]] ExportRequest request() const;
    void finish(const QString &path, const ExportRequest &request, const ExportEnd &end);
    void tell(const QString &words);

    Records &m_records;
    ImportDesk m_desk;
    WorkJob &m_job;
    std::function<QString()> m_loss;
    QString m_offered; ///< the place that was proposed
    CsvForm m_form;    ///< of the last list, as it was read when the pane was opened
    QComboBox *m_kind = nullptr;
    QComboBox *m_separator = nullptr;
    QComboBox *m_decimalSign = nullptr;
    QCheckBox *m_allDays = nullptr;
    QDateEdit *m_from = nullptr;
    QDateEdit *m_to = nullptr;
    QWidget *m_days = nullptr;
    QLabel *m_daysCaption = nullptr;
    QLineEdit *m_place = nullptr;
    QPushButton *m_choose = nullptr;
    QPushButton *m_back = nullptr;
    QPushButton *m_export = nullptr;
    QLabel *m_outcome = nullptr;
};

} // namespace harrowby::app
