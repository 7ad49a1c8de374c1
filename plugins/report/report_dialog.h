// SPDX-License-Identifier: MIT
#pragma once

#include "plugins/report/sales.h"

#include <harrowby/db_connection.h>

#include <QDialog>

#include <functional>
#include <memory>

class QBoxLayout;
class QCheckBox;
class QComboBox;
class QLabel;
class QLayout;
class QProgressBar;
class QPushButton;
class QStackedWidget;

namespace harrowby::tables {
class OutputBar;
class TableView;
} // namespace harrowby::tables

namespace harrowby::report {

class PeriodPicker;
class ReadingRunner;
class SalesChart;

/// For whom a report is made, and what lies outside the database.
struct ReportFrame
{
    QString user;             ///< who is logged in
    bool canSettings = false; ///< may see everybody's sales, and switch the daily e-mail
    std::function<QDate()> today;
    std::function<bool()> emailReport;         ///< whether the daily e-mail is on
    std::function<bool(bool)> saveEmailReport; ///< false when it could not be saved
};

/// The sales report: a period, a table and a plot of it, and what can be done with them.
class ReportDialog : public QDialog
{
    Q_OBJECT

public:
    ReportDialog(std::shared_ptr<DbConnection> connection, ReportFrame frame, QWidget *parent = nullptr);
    ~ReportDialog() override;

    [[nodiscard]] tables::TableView &table() const { return *m_table; }
    [[nodiscard]] SalesChart &chart() const { return *m_chart; }
    [[nodiscard]] tables::OutputBar &output() const { return *m_output; }
    [[nodiscard]] bool isReading() const;

Q_SIGNALS:
    /// Table and plot show what has been read, or the message says why there is nothing to show.
    void shown();

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void createControls();
    void createFigures();
    void createProgress();
    void createEmailSwitch();
    void createOutput();
    [[nodiscard]] QLayout *layOutChoices();
    [[nodiscard]] QLayout *layOutFoot();
    void layOut();
    void connectAll();

    void refresh();
    void read();
    void cancel();
    void showProgress(double share);
    void showSales(const Sales &sales, const SalesQuery &query);
    void showMessage(const QString &text);
    void showTotals(const QString &text);
    void switchEmail(bool on);
    void say(const QString &text);
    [[nodiscard]] SalesQuery query() const;
    [[nodiscard]] bool seesAll() const;

    std::shared_ptr<DbConnection> m_connection;
    ReportFrame m_frame;
    SalesQuery m_shownQuery;
    ReadingRunner *m_runner;
    PeriodPicker *m_period = nullptr;
    QComboBox *m_grouping = nullptr;
    QComboBox *m_sorting = nullptr;
    QPushButton *m_refresh = nullptr;
    QStackedWidget *m_pages = nullptr;
    QBoxLayout *m_choices = nullptr;
    QBoxLayout *m_figures = nullptr;
    QLabel *m_message = nullptr;
    SalesChart *m_chart = nullptr;
    tables::TableView *m_table = nullptr;
    QStackedWidget *m_line = nullptr;
    QLabel *m_totals = nullptr;
    QProgressBar *m_progress = nullptr;
    QPushButton *m_cancel = nullptr;
    QCheckBox *m_email = nullptr;
    tables::OutputBar *m_output = nullptr;
    QLabel *m_status = nullptr;
};

} // namespace harrowby::report
