// SPDX-License-Identifier: MIT
#include "app/reorder/reorder_list.h"

#include "spoken/spoken.h"
#include "tables/output_bar.h"
#include "tables/table_view.h"
#include "theme/dialogs.h"

#include <QComboBox>
#include <QDate>
#include <QHBoxLayout>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace harrowby::app {

namespace {

constexpr auto stepTime = 25ms;
constexpr int missingColumn = 5;

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

ReorderListDialog::ReorderListDialog(std::shared_ptr<DbConnection> connection, QWidget *parent) :
    QDialog(parent), m_connection(std::move(connection))
{
    setWindowTitle(u"Reorder List"_s);
    setWindowFlag(Qt::WindowMaximizeButtonHint);
    createParts();
    layOut();
    dressDialog(*this);
    resize(QSize(1000, 640).boundedTo(screen()->availableSize()));
    m_timer.setInterval(0);
    connect(&m_timer, &QTimer::timeout, this, &ReorderListDialog::goOn);
    connect(m_refresh, &QPushButton::clicked, this, &ReorderListDialog::read);
    connect(m_output, &tables::OutputBar::done, m_status,
            [this](const QString &text) { reportOutcome(m_status, text); });
    read();
}

ReorderListDialog::~ReorderListDialog() = default;

void ReorderListDialog::createParts()
{
    m_pages = new QStackedWidget(this);
    m_table = new tables::TableView(m_pages);
    m_table->setObjectName(u"items"_s);
    m_table->setAccessibleName(u"Items to reorder"_s);
    m_message = createLabel(u"message"_s, u"message"_s, m_pages);
    m_message->setAlignment(Qt::AlignCenter);
    m_pages->addWidget(m_table);
    m_pages->addWidget(m_message);
    m_count = createLabel(u"count"_s, u"totals"_s, this);
    m_status = createLabel(u"status"_s, u"caption"_s, this);
    m_refresh = createButton(u"Re&fresh"_s, u"refresh"_s, this);
    m_refresh->setShortcut(QKeySequence(Qt::Key_F5));
    m_output = new tables::OutputBar({[this]() -> const tables::Table & { return m_table->table(); },
                                      {},
                                      [] { return u"Reorder list "_s + QDate::currentDate().toString(Qt::ISODate); }},
                                     this);
}

void ReorderListDialog::layOut()
{
    auto *sorting = m_table->createSortBox(this);
    sorting->setObjectName(u"sorting"_s);
    auto *head = new QHBoxLayout;
    head->addWidget(m_count, 1);
    auto *caption = createLabel(u"sortingCaption"_s, u"caption"_s, this);
    caption->setText(u"&Sort"_s);
    caption->setTextFormat(Qt::AutoText);
    caption->setBuddy(sorting);
    head->addWidget(caption);
    head->addWidget(sorting);
    head->addWidget(m_refresh);
    auto *foot = new QHBoxLayout;
    auto *close = createButton(u"C&lose"_s, u"close"_s, this);
    connect(close, &QPushButton::clicked, this, &ReorderListDialog::accept);
    foot->addWidget(m_status, 1);
    foot->addWidget(m_output);
    foot->addWidget(close);
    auto *rows = new QVBoxLayout(this);
    rows->setContentsMargins(12, 10, 12, 10);
    rows->addLayout(head);
    rows->addWidget(m_pages, 1);
    rows->addLayout(foot);
}

void ReorderListDialog::read()
{
    m_output->setReady(false);
    m_status->clear();
    m_reading = std::make_unique<LowStockReading>(m_connection);
    m_timer.start();
}

void ReorderListDialog::goOn()
{
    const LowStockReading::State state = m_reading->step(stepTime);
    if (state == LowStockReading::State::Reading)
        return;
    m_timer.stop();
    if (state == LowStockReading::State::Failed)
        showMessage(u"The stock could not be read. The log file may say why."_s);
    else if (m_reading->table().rows.empty())
        showMessage(u"Nothing needs to be reordered."_s);
    else
        showList();
    m_reading.reset();
    Q_EMIT shown();
}

void ReorderListDialog::showList()
{
    tables::Table table = m_reading->table();
    const auto count = table.rows.size();
    table.notes = {tables::dayText(QDate::currentDate())};
    m_table->show(std::move(table), missingColumn, Qt::DescendingOrder);
    reportOutcome(m_count, count == 1 ? u"1 item to reorder"_s : u"%1 items to reorder"_s.arg(count));
    m_pages->setCurrentIndex(0);
    m_output->setReady(true);
}

void ReorderListDialog::showMessage(const QString &text)
{
    m_count->clear();
    reportOutcome(m_message, text);
    m_pages->setCurrentIndex(1);
}

ReorderList::ReorderList(std::shared_ptr<DbConnection> connection) : m_connection(std::move(connection)) {}

void ReorderList::Show(int modal, QWidget *owner)
{
    // The owner may be gone before the list is closed, and takes it along.
    const QPointer<ReorderListDialog> dialog(new ReorderListDialog(m_connection, owner));
    if (owner != nullptr && owner->window()->isMaximized()) // a till uses the whole screen
        dialog->setWindowState(Qt::WindowMaximized);
    if (modal == 0) {
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        dialog->show();
        return;
    }
    dialog->exec();
    delete dialog;
}

} // namespace harrowby::app
