// SPDX-License-Identifier: MIT
#include "plugins/report/report_dialog.h"

#include "basic/administrator.h"
#include "plugins/report/period_picker.h"
#include "plugins/report/reading_runner.h"
#include "plugins/report/sales_chart.h"
#include "plugins/report/sales_table.h"
#include "spoken/spoken.h"
#include "tables/output_bar.h"
#include "tables/table_view.h"
#include "theme/dialogs.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QResizeEvent>
#include <QScreen>
#include <QSignalBlocker>
#include <QStackedWidget>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace harrowby::report {

namespace {

constexpr int wideWindow = 1400;
constexpr int choicesWindow = 960; ///< holds all choices in one row
constexpr QSize usualSize(1000, 700);
constexpr QSize smallestSize(760, 540);
constexpr int widestSorting = 320;
constexpr int progressSteps = 1000;

QLabel *createLabel(const QString &name, const QString &styleWord, QWidget *parent)
{
    auto *label = new QLabel(parent);
    label->setObjectName(name);
    label->setTextFormat(Qt::PlainText);
    label->setProperty("styleWord", styleWord);
    return label;
}

QPushButton *createButton(const QString &caption, const QString &name, QWidget *parent)
{
    auto *button = new QPushButton(caption, parent);
    button->setObjectName(name);
    button->setAutoDefault(false);
    return button;
}

} // namespace

ReportDialog::ReportDialog(std::shared_ptr<DbConnection> connection, ReportFrame frame, QWidget *parent) :
    QDialog(parent), m_connection(std::move(connection)), m_frame(std::move(frame)), m_runner(new ReadingRunner(this))
{
    setWindowTitle(u"Sales Report"_s);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    setWindowFlag(Qt::WindowMaximizeButtonHint);
    createControls();
    createFigures();
    createProgress();
    createEmailSwitch();
    createOutput();
    layOut();
    dressDialog(*this);
    setMinimumSize(smallestSize); // the choices go into two rows before they lack room
    resize(usualSize.boundedTo(screen()->availableSize()));
    connectAll();
    read();
}

ReportDialog::~ReportDialog() = default;

bool ReportDialog::isReading() const
{
    return m_runner->isRunning();
}

bool ReportDialog::seesAll() const
{
    return m_frame.canSettings || m_frame.user == administratorName;
}

void ReportDialog::createControls()
{
    m_period = new PeriodPicker(m_frame.today(), this);
    m_grouping = new QComboBox(this);
    m_grouping->setObjectName(u"grouping"_s);
    m_grouping->setAccessibleName(u"Group"_s);
    m_grouping->addItems({u"By day"_s, u"By seller"_s, u"By item"_s});
    m_refresh = createButton(u"Re&fresh"_s, u"refresh"_s, this);
    m_refresh->setShortcut(QKeySequence(Qt::Key_F5));
    m_refresh->setToolTip(u"Reads the sales again (F5)"_s);
}

void ReportDialog::createFigures()
{
    m_pages = new QStackedWidget(this);
    auto *figures = new QWidget(m_pages);
    m_figures = new QBoxLayout(QBoxLayout::TopToBottom, figures);
    m_figures->setContentsMargins(0, 0, 0, 0);
    m_figures->setSpacing(8);
    m_chart = new SalesChart(figures);
    m_table = new tables::TableView(figures);
    m_table->setObjectName(u"sales"_s);
    m_table->setAccessibleName(u"Sales"_s);
    m_figures->addWidget(m_chart, 4);
    m_figures->addWidget(m_table, 5);
    m_message = createLabel(u"message"_s, u"message"_s, m_pages);
    m_message->setAlignment(Qt::AlignCenter);
    m_message->setWordWrap(true);
    m_pages->addWidget(figures);
    m_pages->addWidget(m_message);
    m_sorting = m_table->createSortBox(this);
    m_sorting->setObjectName(u"sorting"_s);
}

void ReportDialog::createProgress()
{
    m_line = new QStackedWidget(this);
    m_totals = createLabel(u"totals"_s, u"totals"_s, m_line);
    auto *busy = new QWidget(m_line);
    auto *row = new QHBoxLayout(busy);
    row->setContentsMargins(0, 0, 0, 0);
    m_progress = new QProgressBar(busy);
    m_progress->setAccessibleName(u"Reading the sales"_s);
    m_progress->setRange(0, progressSteps);
    m_progress->setFormat(u"Reading the sales: %p%"_s);
    m_cancel = createButton(u"&Cancel"_s, u"cancel"_s, busy);
    row->addWidget(m_progress, 1);
    row->addWidget(m_cancel);
    m_line->addWidget(m_totals);
    m_line->addWidget(busy);
    m_line->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void ReportDialog::createEmailSwitch()
{
    m_email = new QCheckBox(u"&Email Daily Report"_s, this);
    m_email->setObjectName(u"emailReport"_s);
    m_email->setChecked(m_frame.emailReport());
    m_email->setEnabled(seesAll());
    if (!seesAll())
        m_email->setToolTip(u"Only a user who may change settings can change this."_s);
}

void ReportDialog::createOutput()
{
    m_output = new tables::OutputBar({[this]() -> const tables::Table & { return m_table->table(); },
                                      [this] { return paperFigure(m_chart->bars()); },
                                      [this] { return fileWords(m_shownQuery); }},
                                     this);
    m_status = createLabel(u"status"_s, u"caption"_s, this);
    m_status->setTextInteractionFlags(Qt::TextSelectableByMouse);
}

QLayout *ReportDialog::layOutChoices()
{
    m_choices = new QBoxLayout(QBoxLayout::LeftToRight);
    m_choices->setSpacing(8);
    m_choices->addWidget(m_period);
    auto *row = new QHBoxLayout;
    row->setSpacing(8);
    m_choices->addLayout(row, 1);
    row->addWidget(captioned(u"&Group"_s, m_grouping, this));
    row->addWidget(captioned(u"&Sort"_s, m_sorting, this), 1);
    row->addWidget(m_refresh, 0, Qt::AlignBottom);
    m_sorting->setMaximumWidth(widestSorting);
    row->addStretch(0);
    return m_choices;
}

QLayout *ReportDialog::layOutFoot()
{
    auto *row = new QHBoxLayout;
    row->setSpacing(8);
    auto *close = createButton(u"C&lose"_s, u"close"_s, this);
    connect(close, &QPushButton::clicked, this, &ReportDialog::accept);
    row->addWidget(m_email);
    row->addStretch(1);
    row->addWidget(m_output);
    row->addWidget(close);
    return row;
}

void ReportDialog::layOut()
{
    auto *rows = new QVBoxLayout(this);
    rows->setContentsMargins(12, 10, 12, 8);
    rows->setSpacing(8);
    rows->addLayout(layOutChoices());
    rows->addWidget(m_pages, 1);
    rows->addWidget(m_line);
    rows->addLayout(layOutFoot());
    rows->addWidget(m_status);
}

void ReportDialog::connectAll()
{
    connect(m_period, &PeriodPicker::changed, this, &ReportDialog::read);
    connect(m_grouping, &QComboBox::currentIndexChanged, this, &ReportDialog::read);
    connect(m_refresh, &QPushButton::clicked, this, &ReportDialog::refresh);
    connect(m_cancel, &QPushButton::clicked, this, &ReportDialog::cancel);
    connect(m_email, &QCheckBox::toggled, this, &ReportDialog::switchEmail);
    connect(m_output, &tables::OutputBar::done, this, &ReportDialog::say);
    connect(m_runner, &ReadingRunner::progressed, this, &ReportDialog::showProgress);
    connect(m_runner, &ReadingRunner::done, this, &ReportDialog::showSales);
    connect(m_runner, &ReadingRunner::failed, this, [this] {
        showMessage(u"The sales could not be read. Please try \"Refresh\"; if that does not help, see the log file."_s);
    });
}

SalesQuery ReportDialog::query() const
{
    return {m_period->period(), static_cast<Grouping>(m_grouping->currentIndex()),
            seesAll() ? std::nullopt : std::optional(m_frame.user)};
}

void ReportDialog::refresh()
{
    {
        const QSignalBlocker once(m_period);
        m_period->setNow(m_frame.today());
    }
    read();
}

void ReportDialog::read()
{
    m_output->setReady(false);
    m_runner->start(std::make_unique<SalesReading>(m_connection, query()));
}

void ReportDialog::cancel()
{
    m_runner->stop();
    showMessage(u"Cancelled. Choose another period, or press \"Refresh\" to read the sales again."_s);
    m_refresh->setFocus();
}

void ReportDialog::showProgress(double share)
{
    // The shown table belongs to the choice before.
    m_table->clear();
    m_chart->show({});
    m_pages->setCurrentIndex(0);
    m_progress->setValue(static_cast<int>(share * progressSteps));
    m_line->setCurrentIndex(1);
}

void ReportDialog::showSales(const Sales &sales, const SalesQuery &query)
{
    if (sales.total.purchases == 0) {
        showMessage(u"No sales: "_s + periodText(query.period) + u'.');
        return;
    }
    m_shownQuery = query;
    const FirstOrder order = firstOrder(query.grouping);
    m_table->show(salesTable(sales, query), order.column, order.order);
    m_chart->show(salesBars(sales, query));
    m_pages->setCurrentIndex(0);
    showTotals(tables::totalsText(m_table->table()));
    m_output->setReady(true);
    Q_EMIT shown();
}

void ReportDialog::showMessage(const QString &text)
{
    m_table->clear();
    m_chart->show({});
    reportOutcome(m_message, text);
    m_pages->setCurrentIndex(1);
    showTotals({});
    Q_EMIT shown();
}

void ReportDialog::showTotals(const QString &text)
{
    reportOutcome(m_totals, text);
    m_line->setCurrentIndex(0);
    say(seesAll() ? QString() : u"Only your own sales are shown (%1)."_s.arg(m_frame.user));
}

void ReportDialog::switchEmail(bool on)
{
    if (m_frame.saveEmailReport(on)) {
        say(on ? u"The daily report is sent by e-mail."_s : u"The daily report is not sent by e-mail."_s);
        return;
    }
    const QSignalBlocker quiet(m_email);
    m_email->setChecked(!on);
    say(u"The setting could not be saved."_s);
}

void ReportDialog::say(const QString &text)
{
    reportOutcome(m_status, text);
}

/// A wide screen has the plot beside the table; a narrow one has the choices in two rows.
void ReportDialog::resizeEvent(QResizeEvent *event)
{
    QDialog::resizeEvent(event);
    const bool wide = event->size().width() >= wideWindow;
    const bool inOneRow = event->size().width() >= choicesWindow;
    m_choices->setDirection(inOneRow ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
    m_figures->setDirection(wide ? QBoxLayout::RightToLeft : QBoxLayout::TopToBottom);
}

} // namespace harrowby::report
