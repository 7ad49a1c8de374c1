// SPDX-License-Identifier: MIT
#include "app/office/activity_page.h"

#include "app/activity/activity_export.h"
#include "app/boxes/office_box.h"
#include "app/export/list_form.h"
#include "app/office/activity_choices.h"
#include "app/work/work_strip.h"
#include "basic/numbers.h"
#include "tables/output_bar.h"
#include "tables/table_view.h"
#include "theme/dialogs.h"

#include <QHBoxLayout>
#include <QItemSelectionModel>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QShowEvent>
#include <QVBoxLayout>

#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr int entriesOfAPage = 500;
constexpr int whenColumn = 0;
constexpr int kindColumn = 1;
constexpr int placeColumn = 3;
constexpr int lettersOfTime = 26; // 19, most of them digits, which are wider
constexpr int lettersOfUser = 22;
constexpr int roomForAll = 900; ///< a narrower list leaves out what the line below it says

tables::Table emptyActivity()
{
    tables::Table table;
    table.columns = {{u"When"_s, tables::Kind::Text, false, lettersOfTime},
                     {u"Kind"_s, tables::Kind::Text, false},
                     {u"User"_s, tables::Kind::Text, false, lettersOfUser},
                     {u"Where"_s, tables::Kind::Text, false},
                     {u"What"_s, tables::Kind::Text, true}};
    return table;
}

QString userWords(const ActivityEntry &entry)
{
    return entry.who.isEmpty() ? u"not known"_s : entry.who;
}

QString entryWords(qint64 count)
{
    return count == 1 ? u"1 entry"_s : u"%1 entries"_s.arg(formatCount(static_cast<double>(count)));
}

} // namespace

ActivityPage::ActivityPage(SignedDeeds deeds, QString store, QWidget *parent) :
    OfficePage(parent), m_deeds(std::move(deeds)), m_store(std::move(store)),
    m_chooseFile(
        [](QWidget *window, const QString &suggestion) { return tables::askForFile(window, suggestion, u"csv"_s); })
{
    m_choices = new ActivityChoices(this);
    connect(m_choices, &ActivityChoices::changed, this, &ActivityPage::search);
    m_view = new tables::TableView(this);
    m_view->setObjectName(u"activity"_s);
    m_view->setAccessibleName(u"What happened"_s);
    m_detail = makeOfficeText(this, {});
    m_detail->setObjectName(u"activityDetail"_s);
    m_strip = new WorkStrip(m_job, this);
    connect(m_strip, &WorkStrip::busyChanged, this, &ActivityPage::followBusy);
    auto *rows = new QVBoxLayout(this);
    rows->setContentsMargins(16, 12, 16, 8);
    rows->setSpacing(8);
    rows->addWidget(m_choices);
    rows->addWidget(m_view, 1);
    rows->addWidget(m_detail);
    rows->addWidget(m_strip);
    rows->addLayout(makeEnd());
    showTable(emptyActivity());
    connect(m_view->selectionModel(), &QItemSelectionModel::currentRowChanged, this, &ActivityPage::showDetail);
}

QHBoxLayout *ActivityPage::makeEnd()
{
    m_outcome = makeOfficeText(this, {});
    m_outcome->setObjectName(u"activityOutcome"_s);
    m_more = new QPushButton(u"&More"_s, this);
    m_more->setObjectName(u"moreActivity"_s);
    m_more->setAccessibleDescription(u"Shows older entries, too"_s);
    connect(m_more, &QPushButton::clicked, this, &ActivityPage::more);
    m_save = new QPushButton(u"Sa&ve as CSV \u2026"_s, this);
    m_save->setObjectName(u"saveActivity"_s);
    connect(m_save, &QPushButton::clicked, this, &ActivityPage::save);
    auto *row = new QHBoxLayout;
    row->setSpacing(8);
    row->addWidget(m_outcome, 1);
    row->addWidget(m_more);
    row->addWidget(m_save);
    return row;
}

void ActivityPage::readAnew()
{
    if (!m_job.isRunning())
        search();
}

/// Also while it is still looked for something else. A list that is being saved is saved first.
void ActivityPage::search()
{
    if (m_job.isRunning()) {
        m_again = true;
        if (!m_saving)
            m_job.cancel();
        return;
    }
    m_entries.clear();
    m_search = std::make_shared<ActivitySearch>(m_choices->filter());
    look(!std::exchange(m_hasUsers, true));
}

void ActivityPage::more()
{
    if (!m_job.isRunning() && m_search)
        look(false);
}

void ActivityPage::look(bool withUsers)
{
    const auto work = [store = m_store, search = m_search, withUsers](const WorkWatch &watch) {
        Found found;
        const auto opened = withOwnRecords(store, watch, [&](Records &records, const WorkWatch &heard) {
            auto entries = search->next(records, entriesOfAPage, heard);
            if (entries)
                found.entries = *std::move(entries);
            else
                found.problem = entries.error().reason;
            if (withUsers && found.problem.isEmpty()) // else a silent server would be waited for twice
                found.users = usersOfActivity(records).value_or(QStringList());
        });
        if (!opened)
            found.problem = opened.error();
        return found;
    };
    m_job.start<Found>(work, [this](Result<Found, QString> found) { take(std::move(found)); });
}

void ActivityPage::take(Result<Found, QString> found)
{
    if (found && !found->users.isEmpty())
        m_choices->offerUsers(found->users);
    if (std::exchange(m_again, false))
        return search();
    const QString problem = found ? found->problem : found.error();
    if (!problem.isEmpty()) {
        const QString end = problem.endsWith(u'.') ? QString() : u"."_s;
        return showOutcome(*m_outcome, u"\u26a0 What happened could not be read: "_s + problem + end);
    }
    m_entries += found->entries;
    list();
    sayCount();
}

void ActivityPage::list()
{
    tables::Table table = emptyActivity();
    for (const ActivityEntry &entry : std::as_const(m_entries))
        table.rows.push_back({entry.when, titleOf(entry.kind), userWords(entry), entry.place, entry.what});
    const QModelIndex before = m_view->currentIndex();
    showTable(std::move(table));
    if (before.isValid() && before.row() < m_view->model()->rowCount())
        m_view->setCurrentIndex(m_view->model()->index(before.row(), 0));
    showDetail();
}

void ActivityPage::showTable(tables::Table table)
{
    m_view->show(std::move(table), whenColumn, Qt::DescendingOrder);
    hideColumns();
}

void ActivityPage::hideColumns()
{
    for (const int column : {kindColumn, placeColumn})
        m_view->setColumnHidden(column, width() < roomForAll);
}

void ActivityPage::resizeEvent(QResizeEvent *event)
{
    OfficePage::resizeEvent(event);
    hideColumns();
}

void ActivityPage::sayCount()
{
    const bool isAll = m_search->isAtEnd();
    m_more->setEnabled(!isAll);
    const QString count = entryWords(m_entries.size());
    if (m_job.isCancelled() && !isAll)
        return showOutcome(*m_outcome, count + u" so far. \"More\" goes on looking."_s);
    if (m_entries.isEmpty())
        return showOutcome(*m_outcome, u"Nothing was found."_s);
    showOutcome(*m_outcome, isAll ? count + u'.' : count + u", and there are older ones."_s);
}

/// What a narrow column cuts off.
void ActivityPage::showDetail()
{
    const QModelIndex index = m_view->currentIndex();
    const auto &rows = m_view->table().rows;
    QStringList texts;
    if (index.isValid() && static_cast<std::size_t>(index.row()) < rows.size()) {
        for (const tables::Cell &cell : rows.at(static_cast<std::size_t>(index.row())))
            texts << tables::shownText(cell, tables::Kind::Text);
    }
    m_detail->setText(texts.isEmpty() ? QString() : texts.mid(0, 4).join(u", "_s) + u"\n"_s + texts.last());
    m_detail->setVisible(!texts.isEmpty());
}

void ActivityPage::followBusy(bool busy)
{
    m_choices->setDisabled(busy);
    m_save->setDisabled(busy);
    m_more->setEnabled(!busy && m_search && !m_search->isAtEnd());
}

void ActivityPage::save()
{
    if (m_job.isRunning())
        return;
    const QPointer<ActivityPage> self(this);
    const FileChooser chooseFile = m_chooseFile; // outlives this page, should that go while the question is open
    const ActivityFilter wanted = m_choices->filter();
    const QString name = proposedActivityName(wanted.days, QDate::currentDate());
    const QString target = chooseFile(this, tables::documentsFolder() + u'/' + name);
    if (target.isEmpty() || !self || m_job.isRunning())
        return;
    if (const auto place = checkExportPlace(m_store, target); !place)
        return tellInOffice(this, place.error());
    const auto work = [store = m_store, target, wanted, chosen = savedListForm(m_deeds.records())](
                          const WorkWatch &watch) { return exportActivity(store, target, chosen, wanted, watch); };
    m_saving = m_job.start<ExportEnd>(work, [this, target](const Result<ExportEnd, QString> &end) {
        m_saving = false;
        if (std::exchange(m_again, false))
            search();
        saved(end ? *end : ExportEnd{ExportEnd::Outcome::Failed, end.error(), 0, 0}, target); // may show a box
    });
}

void ActivityPage::saved(const ExportEnd &end, const QString &target)
{
    if (end.outcome == ExportEnd::Outcome::Failed)
        tellInOffice(this, end.problem);
    if (end.outcome == ExportEnd::Outcome::Stopped)
        showOutcome(*m_outcome, u"Stopped. No file was written."_s);
    if (end.outcome != ExportEnd::Outcome::Done)
        return;
    (void)m_deeds.add(deed::exported, activityDeedWords(end, target)); // a failure has been logged; the file is good
    showOutcome(*m_outcome, u"Saved: %1 in %2."_s.arg(entryWords(end.rows), target));
}

} // namespace harrowby::app
