// SPDX-License-Identifier: MIT
#include "app/exchange/preview_step.h"

#include "app/backup/backup_names.h"
#include "app/boxes/office_box.h"
#include "app/exchange/grid_view.h"
#include "app/exchange/import_draft.h"
#include "app/exchange/import_list_panel.h"
#include "app/exchange/kind_words.h"
#include "app/shop/failure_text.h"

#include <QCheckBox>
#include <QLabel>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr qsizetype mostCategories = 8; // that are named

} // namespace

PreviewStep::PreviewStep(ImportDraft &draft, Records &records, const ImportDesk &desk, QWidget *parent) :
    ImportStep(draft, parent), m_backupFolder(desk.backupFolder.isEmpty() ? usualBackupFolder() : desk.backupFolder)
{
    m_about = makeOfficeText(this, {});
    m_about->setObjectName(u"importAbout"_s);
    m_list = new ImportListPanel(records, desk, u"import"_s, this);
    m_validRows = new QCheckBox(this);
    m_validRows->setObjectName(u"importValidRows"_s);
    auto *rows = new QVBoxLayout(this);
    rows->setContentsMargins({});
    rows->setSpacing(6);
    rows->addWidget(m_list, 1);
    rows->addWidget(m_validRows);
    rows->addWidget(m_about);
}

void PreviewStep::enter()
{
    const StagedImport &staged = draft().staged;
    m_validRows->setVisible(staged.counts.refused > 0);
    m_validRows->setText(staged.counts.refused == 1 ? u"Leave the re&fused row out, and import the others"_s
                                                    : u"Leave the %1 re&fused rows out, and import the others"_s.arg(
                                                          groupedCount(staged.counts.refused)));
    m_validRows->setChecked(draft().refusedMayStay);
    m_about->setText(aboutWords());
    m_list->show(staged.id, draft().choices.kind,
                 {RowFilter::All, RowFilter::New, RowFilter::Changed, RowFilter::Unchanged, RowFilter::Refused});
}

void PreviewStep::clear()
{
    m_list->clear();
}

QString PreviewStep::heading() const
{
    return countsWords(draft().staged.counts);
}

QString PreviewStep::aboutWords() const
{
    const QString words =
        u"Nothing is written yet. A checked backup is made first, in %1."_s.arg(wrappingPath(m_backupFolder));
    QStringList names = draft().staged.newCategories;
    if (names.isEmpty())
        return words;
    const qsizetype more = names.size() - mostCategories;
    if (more > 0)
        names = names.first(mostCategories) + QStringList{u"%1 more"_s.arg(more)};
    for (QString &name : names)
        name = lineOf(name);
    return u"Categories that are made: %1. "_s.arg(names.join(u", "_s)) + words;
}

Result<void, QString> PreviewStep::leave()
{
    const ImportCounts &counts = draft().staged.counts;
    draft().refusedMayStay = m_validRows->isChecked();
    if (counts.fresh + counts.changed == 0 && counts.refused == 0)
        return Unexpected(
            u"The store holds all of this already: there is nothing to import. \"Cancel Import\" leads back."_s);
    if (counts.fresh + counts.changed == 0)
        return Unexpected(u"No row can be imported. The list says what is the matter with each; \"Back\" changes how "
                          "the file is read."_s);
    if (counts.refused > 0 && !m_validRows->isChecked()) {
        m_validRows->setFocus();
        return Unexpected(u"Some rows are refused. Mend them in the file, or choose to leave them out."_s);
    }
    return {};
}

} // namespace harrowby::app
