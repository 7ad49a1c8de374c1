// SPDX-License-Identifier: MIT
#include "app/exchange/catalogue_page.h"

#include "app/boxes/office_box.h"
#include "app/exchange/export_pane.h"
#include "app/exchange/import_list_dialog.h"
#include "app/exchange/import_pane.h"
#include "app/exchange/import_work.h"
#include "app/exchange/kind_words.h"
#include "app/exchange/past_model.h"
#include "app/exchange/save_place.h"
#include "app/exchange/source_file.h"
#include "app/exchange/start_pane.h"
#include "app/work/work_strip.h"

#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMimeData>
#include <QStackedWidget>
#include <QTimer>
#include <QVBoxLayout>

#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

QString takeBackQuestion(const PastImport &past)
{
    return u"Take back the import of \"%1\" of %2? What it added is deleted (%3), and what it changed gets its former "
           "values (%4). A row that was changed since in what was imported stays as it is, and is listed."_s.arg(
               past.file, momentWords(past.at), groupedCount(past.counts.fresh), groupedCount(past.counts.changed));
}

QString takenBackWords(const QString &file, const ImportOutcome &outcome)
{
    const QString words = u"\u2713 Taken back: \"%1\". %2 deleted, %3 as before."_s.arg(
        file, groupedCount(outcome.done.fresh), groupedCount(outcome.done.changed));
    if (outcome.leftOut == 0)
        return words;
    return words + u" %1 left as they are, as they were changed since: see \"Not Taken Back\"."_s.arg(
                       groupedCount(outcome.leftOut));
}

} // namespace

CataloguePage::CataloguePage(Records &records, const ImportDesk &desk, bool isAdministrator,
                             std::function<QString()> loss, QWidget *parent) :
    OfficePage(parent),
    m_records(records), m_desk(desk), m_loss(std::move(loss))
{
    setAcceptDrops(true);
    m_start = new StartPane(records, desk, this);
    m_import = new ImportPane(records, desk, m_job, m_loss, this);
    m_export = new ExportPane(records, desk, m_job, isAdministrator, m_loss, this);
    layOut();
    connect(m_start, &StartPane::importWanted, this, &CataloguePage::chooseFile);
    connect(m_start, &StartPane::exportWanted, this, &CataloguePage::openExport);
    connect(m_start, &StartPane::takeBackWanted, this, &CataloguePage::takeBack);
    connect(m_start, &StartPane::leftListWanted, this, &CataloguePage::showNotTakenBack);
    connect(m_import, &ImportPane::fileWanted, this, &CataloguePage::chooseFile);
    connect(m_import, &ImportPane::refused, m_start, &StartPane::say);
    connect(m_import, &ImportPane::begun, this, [this] { m_stack->setCurrentWidget(m_import); });
    connect(m_import, &ImportPane::left, this, [this] { goHome(); });
    connect(m_import, &ImportPane::takeBackWanted, this, [this](qint64 id) {
        goHome();
        takeBack(id);
    });
    connect(m_export, &ExportPane::left, this, [this] { goHome(); });
    connect(m_strip, &WorkStrip::busyChanged, m_stack, &QWidget::setDisabled);
}

CataloguePage::~CataloguePage() = default;

void CataloguePage::layOut()
{
    m_stack = new QStackedWidget(this);
    for (QWidget *pane :
         {static_cast<QWidget *>(m_start), static_cast<QWidget *>(m_import), static_cast<QWidget *>(m_export)}) {
        pane->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Ignored); // so that none sizes the office
        m_stack->addWidget(pane);
    }
    m_strip = new WorkStrip(m_job, this);
    auto *rows = new QVBoxLayout(this);
    rows->setContentsMargins(16, 12, 16, 8);
    rows->setSpacing(8);
    rows->addWidget(m_stack, 1);
    rows->addWidget(m_strip);
}

std::optional<LeavingQuestion> CataloguePage::leaving() const
{
    if (m_import->isWriting())
        return LeavingQuestion{u"The import is being carried out. Once its rows are being written, they are written to "
                               "the end; before that it is stopped. Close all the same?"_s,
                               u"&Close"_s};
    if (m_job.isRunning())
        return LeavingQuestion{u"The catalogue is still at work. Stop it?"_s, u"&Stop It"_s};
    if (m_import->isUnderWay())
        return LeavingQuestion{u"The import is not finished, and nothing of it has been written. Leave it?"_s,
                               u"&Leave It"_s};
    return {};
}

void CataloguePage::readAnew()
{
    if (!m_job.isRunning())
        m_start->read();
}

void CataloguePage::goHome(const QString &outcome)
{
    m_stack->setCurrentWidget(m_start);
    m_start->say(outcome);
    m_start->read(); // may have something to say itself
}

void CataloguePage::openExport()
{
    if (m_job.isRunning())
        return;
    m_start->say({});
    m_stack->setCurrentWidget(m_export);
    m_export->begin();
}

void CataloguePage::chooseFile()
{
    if (m_job.isRunning())
        return;
    const QString path = chooseList(this);
    if (!path.isEmpty())
        begin(path);
}

void CataloguePage::begin(const QString &path)
{
    m_start->say({});
    m_import->begin(path);
}

void CataloguePage::dragEnterEvent(QDragEnterEvent *event)
{
    if (event->mimeData()->hasUrls() && !m_job.isRunning())
        event->acceptProposedAction();
}

/// What is asked or told comes after the drop: the program that the file was dragged from waits for its end.
void CataloguePage::dropEvent(QDropEvent *event)
{
    event->acceptProposedAction();
    QTimer::singleShot(0, this, [this, urls = event->mimeData()->urls()] {
        if (m_job.isRunning())
            return;
        const auto path = oneFileOf(urls);
        if (!path)
            return tellInOffice(this, path.error());
        if (m_import->isUnderWay() &&
            !askInOffice(this, u"Leave the import that is not finished, and begin with this file?"_s, u"&Begin"_s))
            return;
        begin(*path);
    });
}

void CataloguePage::takeBack(qint64 id)
{
    const PastImport *past = m_start->find(id);
    if (past == nullptr || m_job.isRunning())
        return;
    if (const QString lost = m_loss ? m_loss() : QString(); !lost.isEmpty())
        return m_start->warn(lost);
    if (!askInOffice(this, takeBackQuestion(*past), u"&Take Back"_s))
        return;
    m_start->say({});
    m_job.start<Imported<ImportOutcome>>(
        [desk = m_desk, id](const WorkWatch &watch) {
            return withImport<ImportOutcome>(desk, watch, [&](CatalogueImport &import, const WorkWatch &heard) {
                return import.takeBack(id, heard);
            });
        },
        [this, id](const Result<Imported<ImportOutcome>, QString> &outcome) { finishTakingBack(id, flat(outcome)); });
}

void CataloguePage::finishTakingBack(qint64 id, const Imported<ImportOutcome> &outcome)
{
    const PastImport *past = m_start->find(id);
    const QString file = past != nullptr ? past->file : QString();
    m_start->read();
    if (!outcome)
        return m_start->say(endWords(outcome.error()));
    m_start->say(takenBackWords(file, *outcome));
    if (outcome->leftOut > 0)
        showNotTakenBack(id);
}

void CataloguePage::showNotTakenBack(qint64 id)
{
    const PastImport *past = m_start->find(id);
    if (past == nullptr)
        return;
    ImportListDialog(
        m_records, m_desk, *past, RowFilter::NotTakenBack,
        u"These rows of \"%1\" were changed since the import, so they were left as they are:"_s.arg(past->file), this)
        .exec();
}

} // namespace harrowby::app
