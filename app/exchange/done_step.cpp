// SPDX-License-Identifier: MIT
#include "app/exchange/done_step.h"

#include "app/boxes/office_box.h"
#include "app/exchange/import_draft.h"
#include "app/exchange/import_list_panel.h"
#include "app/exchange/kind_words.h"
#include "app/shop/failure_text.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

QString doneWords(const ImportOutcome &outcome, const ImportDraft &draft)
{
    const ImportCounts &staged = draft.staged.counts;
    QString words = u"\u2713 Imported from \"%1\": %2 new, %3 changed."_s.arg(
        draft.file.name(), groupedCount(outcome.done.fresh), groupedCount(outcome.done.changed));
    if (staged.unchanged > 0)
        words += u" Already as in the file: %1."_s.arg(groupedCount(staged.unchanged));
    if (staged.refused > 0)
        words += u" Refused and left out: %1."_s.arg(groupedCount(staged.refused));
    return words;
}

} // namespace

DoneStep::DoneStep(ImportDraft &draft, Records &records, const ImportDesk &desk, QWidget *parent) :
    ImportStep(draft, parent)
{
    m_words = makeOfficeText(this, {});
    m_words->setObjectName(u"importDone"_s);
    m_backup = makeOfficeText(this, {});
    m_backup->setObjectName(u"importBackup"_s);
    m_leftOut = makeOfficeText(this, {});
    m_leftOut->setObjectName(u"importLeftOut"_s);
    m_list = new ImportListPanel(records, desk, u"leftOut"_s, this);
    m_takeBack = new QPushButton(u"&Take This Import Back \u2026"_s, this);
    m_takeBack->setObjectName(u"takeBackNow"_s);
    connect(m_takeBack, &QPushButton::clicked, this, &DoneStep::takeBackWanted);
    auto *line = new QHBoxLayout;
    line->addWidget(m_takeBack);
    line->addStretch(1);
    auto *rows = new QVBoxLayout(this);
    rows->setContentsMargins({});
    rows->setSpacing(10);
    rows->addWidget(m_words);
    rows->addWidget(m_backup);
    rows->addWidget(m_leftOut);
    rows->addWidget(m_list, 1);
    rows->addLayout(line);
    rows->addStretch(0);
}

void DoneStep::show(const ImportOutcome &outcome, bool isLate)
{
    m_backup->setText(outcome.backup.isEmpty()
                          ? QString()
                          : u"The backup that was made first: %1\nIf you think better of it, take the import back: "
                            "here, or later from the list of imports."_s.arg(wrappingPath(outcome.backup)));
    m_leftOut->setVisible(outcome.leftOut > 0);
    m_leftOut->setText(u"\u26a0 %1 rows were left out, as the store has changed since the preview:"_s.arg(
        groupedCount(outcome.leftOut)));
    m_list->setVisible(outcome.leftOut > 0);
    if (outcome.leftOut > 0)
        m_list->show(draft().staged.id, draft().choices.kind, {RowFilter::LeftOut});
    QString words = doneWords(outcome, draft());
    if (isLate)
        words += u"\nIt could not be stopped any more."_s;
    showOutcome(*m_words, words);
}

} // namespace harrowby::app
