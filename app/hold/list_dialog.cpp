// SPDX-License-Identifier: MIT
#include "app/hold/list_dialog.h"

#include "app/boxes/office_box.h"
#include "tables/table_view.h"
#include "theme/dialogs.h"

#include <QHBoxLayout>
#include <QItemSelectionModel>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr QSize usualSize(880, 520);

} // namespace

ListDialog::ListDialog(const Words &words, tables::Table table, QWidget *parent) :
    QDialog(parent), m_view(new tables::TableView(this))
{
    setWindowTitle(words.title);
    enlargeFont(*this);
    m_view->setObjectName(u"list"_s);
    m_view->setAccessibleName(words.tableName);
    layOut(words);
    dressDialog(*this);
    resize(usualSize.boundedTo(roomFor(*this)));
    m_view->ensurePolished(); // widths are measured in its letters
    m_view->show(std::move(table), words.sortedBy, Qt::AscendingOrder);
    if (!m_view->table().rows.empty())
        m_view->setCurrentIndex(m_view->model()->index(0, 0));
    m_view->setFocus();
}

void ListDialog::layOut(const Words &words)
{
    auto *heading = makeOfficeText(this, words.heading);
    heading->setObjectName(u"heading"_s);
    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(12);
    buttons->addStretch(1);
    addButtons(*buttons, words.action);
    auto *rows = new QVBoxLayout(this);
    rows->setContentsMargins(16, 16, 16, 12);
    rows->setSpacing(12);
    rows->addWidget(heading);
    rows->addWidget(m_view, 1);
    rows->addLayout(buttons);
}

void ListDialog::addButtons(QHBoxLayout &row, const QString &action)
{
    m_action = new QPushButton(action.isEmpty() ? u"OK"_s : action, this);
    m_action->setObjectName(u"listAction"_s);
    makePrimary(*m_action);
    m_action->setDefault(true);
    connect(m_action, &QPushButton::clicked, this, &QDialog::accept);
    row.addWidget(m_action);
    if (action.isEmpty())
        return;
    auto *cancel = new QPushButton(u"Cancel"_s, this);
    cancel->setObjectName(u"cancelList"_s);
    cancel->setAutoDefault(false);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    row.addWidget(cancel);
    connect(m_view, &QAbstractItemView::activated, this, &QDialog::accept);
    connect(m_view->selectionModel(), &QItemSelectionModel::currentRowChanged, this, &ListDialog::followChoice);
    followChoice();
}

void ListDialog::followChoice()
{
    m_action->setEnabled(!chosen().isEmpty());
}

QString ListDialog::chosen() const
{
    const QModelIndex index = m_view->currentIndex();
    const auto &rows = m_view->table().rows;
    if (!index.isValid() || static_cast<std::size_t>(index.row()) >= rows.size())
        return {};
    return std::get<QString>(rows.at(static_cast<std::size_t>(index.row())).front());
}

} // namespace harrowby::app
