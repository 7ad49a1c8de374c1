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
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr qsizetype mostCategories = 8; // that are named

const QList<RowFilter> previewFilters = {RowFilter::All, RowFilter::New, RowFilter::Changed, RowFilter::Unchanged,
                                         RowFilter::Refused};

QString renamedWords(qint64 renamed)
{
    if (renamed == 1)
        return u"1 item gets another name: tills that are open show the old one until their pages are loaded again. "_s;
    return u"%1 items get another name: tills that are open show the old ones until their pages are loaded again. "_s
        .arg(groupedCount(renamed));
}

} // namespace

PreviewStep::PreviewStep(ImportDraft &draft, Records &records, const ImportDesk &desk, QWidget *parent) :
    ImportStep(draft, parent), m_records(records), m_desk(desk),
    m_backupFolder(desk.backupFolder.isEmpty() ? usualBackupFolder() : desk.backupFolder)
{
    m_about = makeOfficeText(this, {});
    m_about->setObjectName(u"importAbout"_s);
    m_list = new ImportListPanel(records, desk, u"import"_s, this);
    m_validRows = new QCheckBox(this);
    m_validRows->setObjectName(u"importValidRows"_s);
    m_others = new QPushButton(this);
    m_others->setObjectName(u"importOthers"_s);
    m_others->setAutoDefault(false);
    connect(m_others, &QPushButton::clicked, this, &PreviewStep::othersWanted);
    auto *rows = new QVBoxLayout(this);
    rows->setContentsMargins({});
    rows->setSpacing(6);
    rows->addWidget(m_list, 1);
    rows->addWidget(m_validRows);
    rows->addWidget(m_others, 0, Qt::AlignRight);
    rows->addWidget(m_about);
}

void PreviewStep::enter()
{
    const StagedImport &staged = draft().staged;
    m_hasStoreChanged = false;
    m_others->hide();
    m_validRows->setVisible(staged.counts.refused > 0);
    m_validRows->setText(staged.counts.refused == 1 ? u"Leave the re&fused row out, and import the others"_s
                                                    : u"Leave the %1 re&fused rows out, and import the others"_s.arg(
                                                          groupedCount(staged.counts.refused)));
    m_validRows->setChecked(draft().refusedMayStay);
    m_about->setText(aboutWords());
    m_list->show(staged.id, draft().choices.kind, previewFilters);
}

QString PreviewStep::nextWords() const
{
    return m_hasStoreChanged ? u"&Compare Again"_s : u"Import &Now"_s;
}

QString PreviewStep::showStoreChanged(const QString &why)
{
    m_hasStoreChanged = true;
    const ImportCounts &counts = draft().staged.counts;
    const qint64 all = counts.fresh + counts.changed;
    const qint64 differing =
        CatalogueImport(m_records, m_desk).count(draft().staged.id, RowFilter::LeftOut).value_or(0);
    const auto again = u" \"Compare Again\" makes a new preview."_s;
    m_others->setVisible(differing > 0 && differing < all);
    if (differing <= 0) // an empty list that was to be filled has rows by now
        return why + again;
    m_list->show(draft().staged.id, draft().choices.kind, QList{RowFilter::LeftOut} + previewFilters);
    offerOthers(all - differing);
    const QString words =
        u"\u26a0 Nothing was imported: %1 of %2 rows changed in the store since the preview, perhaps by "
        "a sale."_s.arg(groupedCount(differing), groupedCount(all));
    if (m_others->isHidden())
        return words + again;
    return words + u" Import the others, and leave what changed as it is; or compare again for a new preview."_s;
}

void PreviewStep::offerOthers(qint64 others)
{
    m_others->setText(others == 1 ? u"I&mport the Other Row"_s
                                  : u"I&mport the Other %1 Rows"_s.arg(groupedCount(others)));
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
    QString words =
        u"Nothing is written yet. A checked backup is made first, in %1."_s.arg(wrappingPath(m_backupFolder));
    if (const qint64 renamed = draft().staged.renamed; renamed > 0)
        words = renamedWords(renamed) + words;
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
