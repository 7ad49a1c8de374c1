// SPDX-License-Identifier: MIT
#include "app/exchange/start_pane.h"

#include "app/boxes/office_box.h"
#include "app/exchange/grid_view.h"
#include "app/exchange/past_model.h"
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

constexpr int widestPastCell = 30; // letters

} // namespace

StartPane::StartPane(Records &records, ImportDesk desk, QWidget *parent) :
    QWidget(parent), m_records(records), m_desk(std::move(desk))
{
    createParts();
    layOut();
    connect(m_import, &QPushButton::clicked, this, &StartPane::importWanted);
    connect(m_export, &QPushButton::clicked, this, &StartPane::exportWanted);
    connect(m_takeBack, &QPushButton::clicked, this, [this] {
        if (const PastImport *past = current(); past != nullptr)
            Q_EMIT takeBackWanted(past->id);
    });
    connect(m_showLeft, &QPushButton::clicked, this, [this] {
        if (const PastImport *past = current(); past != nullptr)
            Q_EMIT leftListWanted(past->id);
    });
    connect(m_list->selectionModel(), &QItemSelectionModel::currentRowChanged, this, &StartPane::followChoice);
    followChoice();
}

void StartPane::createParts()
{
    m_import = new QPushButton(u"I&mport a List \u2026"_s, this);
    m_import->setObjectName(u"beginImport"_s);
    makePrimary(*m_import);
    m_export = new QPushButton(u"E&xport \u2026"_s, this);
    m_export->setObjectName(u"beginExport"_s);
    m_none = makeOfficeText(this, u"Nothing has been imported yet."_s);
    m_none->setObjectName(u"noImports"_s);
    m_list = new GridView(u"imports"_s, u"Imports so far"_s, this);
    m_model = new PastModel(this);
    m_list->setModel(m_model);
    m_takeBack = new QPushButton(u"&Take Back \u2026"_s, this);
    m_takeBack->setObjectName(u"takeBack"_s);
    m_showLeft = new QPushButton(u"Not Taken &Back \u2026"_s, this);
    m_showLeft->setObjectName(u"showNotTakenBack"_s);
    m_showLeft->setAccessibleDescription(u"The rows that had changed since, and were left as they are"_s);
    m_outcome = makeOfficeText(this, {});
    m_outcome->setObjectName(u"catalogueOutcome"_s);
}

void StartPane::layOut()
{
    auto *doors = new QHBoxLayout;
    doors->setSpacing(12);
    doors->addWidget(m_import, 2);
    doors->addWidget(m_export, 1);
    auto *foot = new QHBoxLayout;
    foot->setSpacing(12);
    foot->addWidget(m_takeBack);
    foot->addWidget(m_showLeft);
    foot->addStretch(1);
    auto *caption = makeOfficeText(this, u"Imports so far"_s);
    caption->setProperty("styleWord", u"totals"_s);
    auto *rows = new QVBoxLayout(this);
    rows->setContentsMargins({});
    rows->setSpacing(10);
    rows->addWidget(makeOfficeText(
        this,
        u"Bring a list of items, categories or codes into the store: save it as CSV in your spreadsheet, then press "
        "\"Import\" or drag the file onto this page. You see what would become of each row before anything is "
        "written. \"Export\" saves what the store holds as such a list."_s));
    rows->addLayout(doors);
    rows->addWidget(m_outcome);
    rows->addWidget(caption);
    rows->addWidget(m_none);
    rows->addWidget(m_list, 1);
    rows->addLayout(foot);
    rows->addStretch(0);
}

void StartPane::read()
{
    const qint64 chosen = current() != nullptr ? current()->id : 0;
    auto past = CatalogueImport(m_records, m_desk).past();
    QList<PastImport> imports = past.value_or(QList<PastImport>());
    imports.removeIf([](const PastImport &one) { return one.state == PastImport::State::Staged; });
    m_none->setVisible(imports.isEmpty() && past.has_value());
    m_list->setVisible(!imports.isEmpty());
    m_takeBack->setVisible(!imports.isEmpty());
    m_model->show(std::move(imports));
    m_list->fitColumns(widestPastCell, true);
    m_list->setCurrentIndex(m_model->indexOf(chosen));
    followChoice();
    if (!past)
        warn(u"The imports so far could not be read: %1"_s.arg(past.error().words));
    else if (m_isUnread)
        say({});
    m_isUnread = !past;
}

void StartPane::say(const QString &outcome)
{
    showOutcome(*m_outcome, outcome);
}

const PastImport *StartPane::find(qint64 id) const
{
    return m_model->find(id);
}

const PastImport *StartPane::current() const
{
    return m_model->at(m_list->currentIndex().row());
}

void StartPane::followChoice()
{
    const PastImport *past = current();
    m_takeBack->setEnabled(past != nullptr && past->canBeTakenBack);
    const auto left = past != nullptr && past->state == PastImport::State::TakenBack
                          ? CatalogueImport(m_records, m_desk).count(past->id, RowFilter::NotTakenBack)
                          : Imported<qint64>(0);
    m_showLeft->setVisible(left.value_or(0) > 0);
}

} // namespace harrowby::app
