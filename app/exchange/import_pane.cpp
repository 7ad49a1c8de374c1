// SPDX-License-Identifier: MIT
#include "app/exchange/import_pane.h"

#include "app/boxes/office_box.h"
#include "app/catalogue/import_columns.h"
#include "app/exchange/choices_step.h"
#include "app/exchange/columns_step.h"
#include "app/exchange/done_step.h"
#include "app/exchange/file_step.h"
#include "app/exchange/import_work.h"
#include "app/exchange/preview_step.h"
#include "theme/dialogs.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

using EndKind = ImportEnd::Kind;

} // namespace

ImportPane::ImportPane(Records &records, const ImportDesk &desk, WorkJob &job, std::function<QString()> loss,
                       QWidget *parent) :
    QWidget(parent),
    m_records(records), m_desk(desk), m_job(job), m_loss(std::move(loss))
{
    createSteps();
    layOut();
    connect(m_back, &QPushButton::clicked, this, &ImportPane::goBack);
    connect(m_next, &QPushButton::clicked, this, &ImportPane::goOn);
    connect(m_cancel, &QPushButton::clicked, this, &ImportPane::cancel);
    connect(m_file, &FileStep::fileWanted, this, &ImportPane::fileWanted);
    connect(m_preview, &PreviewStep::othersWanted, this, &ImportPane::importOthers);
    connect(m_done, &DoneStep::takeBackWanted, this, [this] { Q_EMIT takeBackWanted(m_draft.staged.id); });
}

void ImportPane::createSteps()
{
    m_stack = new QStackedWidget(this);
    m_file = new FileStep(m_draft, this);
    m_preview = new PreviewStep(m_draft, m_records, m_desk, this);
    m_done = new DoneStep(m_draft, m_records, m_desk, this);
    m_steps = {m_file, new ColumnsStep(m_draft, m_records, this), new ChoicesStep(m_draft, this), m_preview, m_done};
    for (ImportStep *step : std::as_const(m_steps)) {
        step->setSizePolicy(QSizePolicy::Preferred,
                            QSizePolicy::Ignored); // so that the largest does not size the office
        m_stack->addWidget(step);
    }
}

void ImportPane::layOut()
{
    m_heading = makeOfficeText(this, {});
    m_heading->setObjectName(u"importHeading"_s);
    m_heading->setProperty("styleWord", u"totals"_s);
    m_outcome = makeOfficeText(this, {});
    m_outcome->setObjectName(u"importOutcome"_s);
    const auto button = [this](const QString &caption, const QString &name) {
        auto *made = new QPushButton(caption, this);
        made->setObjectName(name);
        made->setAutoDefault(false);
        return made;
    };
    m_cancel = button(u"Cancel Import"_s, u"importCancel"_s);
    m_back = button(u"&Back"_s, u"importBack"_s);
    m_next = button(u"&Next"_s, u"importNext"_s);
    m_next->setMinimumWidth(180);
    makePrimary(*m_next);
    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(12);
    buttons->addWidget(m_cancel);
    buttons->addStretch(1);
    buttons->addWidget(m_back);
    buttons->addWidget(m_next);
    auto *rows = new QVBoxLayout(this);
    rows->setContentsMargins({});
    rows->setSpacing(8);
    rows->addWidget(m_heading);
    rows->addWidget(m_stack, 1);
    rows->addWidget(m_outcome);
    rows->addLayout(buttons);
}

bool ImportPane::isLost()
{
    const QString lost = m_loss ? m_loss() : QString();
    if (!lost.isEmpty())
        tell(lost);
    return !lost.isEmpty();
}

void ImportPane::tell(const QString &problem)
{
    say(u"\u26a0 "_s + problem);
}

void ImportPane::say(const QString &words)
{
    if (m_step < 0)
        return Q_EMIT refused(words);
    m_outcome->show();
    showOutcome(*m_outcome, words);
}

void ImportPane::begin(const QString &path)
{
    if (!m_job.isRunning() && !isLost())
        open(path, [this](const OpenedList &opened) {
            discardPreview();
            m_draft = {};
            m_draft.choices.form = opened.guess.form;
            m_draft.choices.putIntoCapitals = true; // a person sees that it is ticked; a command line says so itself
            m_draft.decimal = opened.guess.decimal;
            take(opened.file);
        });
}

void ImportPane::open(const QString &path, const std::function<void(const OpenedList &)> &then)
{
    m_job.start<Imported<OpenedList>>([path](const WorkWatch &watch) { return openList(path, watch); },
                                      [this, then](const Result<Imported<OpenedList>, QString> &outcome) {
                                          const Imported<OpenedList> opened = flat(outcome);
                                          if (opened)
                                              then(*opened);
                                          else
                                              say(endWords(opened.error()));
                                      });
}

void ImportPane::take(ImportFile file)
{
    m_draft.file = std::move(file);
    m_draft.choices.kind = guessKind(headingsOf(beginningOf(m_draft.file.bytes), m_draft.choices.form));
    Q_EMIT begun();
    goTo(fileStep);
}

void ImportPane::goTo(int step)
{
    m_step = step;
    const bool isDone = step == doneStep;
    m_outcome->hide();
    m_steps.at(step)->enter();
    const QString heading = m_steps.at(step)->heading();
    m_stack->setCurrentIndex(step);
    m_cancel->setVisible(!isDone);
    m_back->setVisible(!isDone);
    m_back->setEnabled(step > fileStep);
    m_next->setText(m_steps.at(step)->nextWords());
    showOutcome(*m_heading, isDone ? heading : u"Step %1 of %2: %3"_s.arg(step + 1).arg(doneStep).arg(heading));
    m_next->setFocus();
}

void ImportPane::goBack()
{
    if (m_job.isRunning() || m_step <= fileStep)
        return;
    if (m_step == previewStep)
        discardPreview();
    goTo(m_step - 1);
}

void ImportPane::goOn()
{
    if (m_job.isRunning())
        return;
    if (m_step == doneStep)
        return leaveStep();
    if (const auto left = m_steps.at(m_step)->leave(); !left)
        return tell(left.error());
    if (isLost())
        return;
    m_outcome->hide();
    switch (m_step) {
    case columnsStep:
        return settleFigures();
    case choicesStep:
        return preview();
    case previewStep:
        return m_preview->hasStoreChanged() ? compareAgain() : carryOut(m_draft.refusedMayStay);
    default:
        return goTo(m_step + 1);
    }
}

void ImportPane::cancel()
{
    if (m_job.isRunning())
        return;
    leaveStep();
}

void ImportPane::leaveStep()
{
    if (m_step != doneStep)
        discardPreview();
    m_step = -1;
    m_draft = {};
    Q_EMIT left();
}

void ImportPane::settleFigures()
{
    m_job.start<Imported<SettledList>>(
        [desk = m_desk, file = m_draft.file, choices = m_draft.choices](const WorkWatch &watch) {
            return settleList(desk, file, choices, watch);
        },
        [this](const Result<Imported<SettledList>, QString> &outcome) {
            const Imported<SettledList> settled = flat(outcome);
            if (!settled)
                return say(endWords(settled.error()));
            m_draft.decimal = settled->decimal;
            if (!m_draft.signIsChosen && settled->decimal.sign)
                m_draft.choices.form.decimalSign = *settled->decimal.sign;
            m_draft.choices.asStored = m_draft.choices.asStored || (settled->mayBeAsStored && !m_draft.mayBeAsStored);
            m_draft.mayBeAsStored = settled->mayBeAsStored;
            goTo(choicesStep);
        });
}

void ImportPane::preview()
{
    m_job.start<Imported<StagedImport>>(
        [desk = m_desk, file = m_draft.file, choices = m_draft.choices](const WorkWatch &watch) {
            return withImport<StagedImport>(desk, watch, [&](CatalogueImport &import, const WorkWatch &heard) {
                return import.stage(file, choices, heard);
            });
        },
        [this](const Result<Imported<StagedImport>, QString> &outcome) {
            const Imported<StagedImport> staged = flat(outcome);
            if (!staged)
                return say(endWords(staged.error()));
            m_draft.staged = *staged;
            goTo(previewStep);
        });
}

void ImportPane::importOthers()
{
    if (!m_job.isRunning() && !isLost())
        carryOut(true);
}

void ImportPane::compareAgain()
{
    discardPreview();
    goTo(choicesStep);
    preview();
}

void ImportPane::carryOut(bool validRows)
{
    m_isWriting = true;
    m_job.start<Imported<ImportOutcome>>(
        [desk = m_desk, id = m_draft.staged.id, validRows, path = m_draft.file.path](const WorkWatch &watch) {
            return applyList(desk, id, validRows, path, watch);
        },
        [this](const Result<Imported<ImportOutcome>, QString> &outcome) {
            m_isWriting = false;
            finish(flat(outcome));
        });
}

void ImportPane::finish(const Imported<ImportOutcome> &outcome)
{
    if (outcome) {
        m_preview->clear();
        goTo(doneStep);
        return m_done->show(*outcome, m_job.isCancelled());
    }
    const QString words = endWords(outcome.error());
    switch (outcome.error().kind) {
    case EndKind::FileChanged:
        return readAgain(words);
    case EndKind::StoreChanged: {
        const QString told = m_preview->showStoreChanged(words);
        m_next->setText(m_preview->nextWords());
        m_next->setFocus();
        return say(told);
    }
    case EndKind::Outdated:
        discardPreview();
        goTo(choicesStep);
        return say(words + u" Press \"Next\" for a new preview."_s);
    case EndKind::Cancelled:
    case EndKind::RowsRefused:
    case EndKind::Failed:
        break;
    }
    say(words);
}

/// From the first step on, with the file as it is now.
void ImportPane::readAgain(const QString &why)
{
    discardPreview();
    open(m_draft.file.path, [this, why](const OpenedList &opened) {
        m_draft.file = opened.file;
        if (!m_draft.signIsChosen)
            m_draft.decimal = opened.guess.decimal;
        goTo(fileStep);
        say(why);
    });
}

void ImportPane::discardPreview()
{
    m_preview->clear();
    if (const auto id = std::exchange(m_draft.staged, {}).id; id != 0)
        m_cleaning << id;
    clean();
}

/// Beside what the person does next; what is not taken away when the office is closed, a later preview takes away.
void ImportPane::clean()
{
    if (m_cleaning.isEmpty() || m_cleaner.isRunning())
        return;
    m_cleaner.start<Imported<bool>>(
        [desk = m_desk, ids = std::exchange(m_cleaning, {})](const WorkWatch &watch) {
            return withImport<bool>(desk, watch,
                                    [&](CatalogueImport &import, const WorkWatch &heard) -> Imported<bool> {
                                        for (const std::int64_t id : ids)
                                            import.discard(id, heard);
                                        return true;
                                    });
        },
        [this](const Result<Imported<bool>, QString> &) { clean(); });
}

} // namespace harrowby::app
