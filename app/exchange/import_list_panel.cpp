// SPDX-License-Identifier: MIT
#include "app/exchange/import_list_panel.h"

#include "app/backup/backup_names.h"
#include "app/boxes/office_box.h"
#include "app/exchange/grid_view.h"
#include "app/exchange/import_list_model.h"
#include "app/exchange/import_work.h"
#include "app/exchange/kind_words.h"
#include "app/exchange/save_place.h"
#include "app/export/list_form.h"
#include "app/work/work_strip.h"

#include <QComboBox>
#include <QDir>
#include <QHBoxLayout>
#include <QItemSelectionModel>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr int widestListCell = 22; // letters
constexpr int lettersOfName = 14;

} // namespace

ImportListPanel::ImportListPanel(Records &records, ImportDesk desk, const QString &name, QWidget *parent) :
    QWidget(parent), m_records(records), m_desk(std::move(desk))
{
    createParts(name);
    layOut();
    connect(m_filter, &QComboBox::currentIndexChanged, this, &ImportListPanel::list);
    connect(m_save, &QPushButton::clicked, this, &ImportListPanel::save);
    connect(m_rows->selectionModel(), &QItemSelectionModel::currentRowChanged, this, &ImportListPanel::followRow);
    connect(m_model, &ImportListModel::failed, this, &ImportListPanel::tell);
    connect(m_strip, &WorkStrip::busyChanged, m_filter, &QWidget::setDisabled);
    connect(m_strip, &WorkStrip::busyChanged, m_save, &QWidget::setDisabled);
}

void ImportListPanel::createParts(const QString &name)
{
    m_filter = new QComboBox(this);
    m_filter->setObjectName(name + u"Filter"_s);
    m_filter->setAccessibleName(u"Rows that are shown"_s);
    m_save = new QPushButton(u"Sa&ve List \u2026"_s, this);
    m_save->setObjectName(name + u"Save"_s);
    m_save->setAutoDefault(false);
    m_rows = new GridView(name + u"Rows"_s, u"Rows of the file"_s, this);
    m_model = new ImportListModel(this);
    m_rows->setModel(m_model);
    m_words = makeOfficeText(this, {});
    m_words->setObjectName(name + u"RowWords"_s);
    m_strip = new WorkStrip(m_job, this);
}

void ImportListPanel::layOut()
{
    auto *head = new QHBoxLayout;
    head->setSpacing(12);
    auto *caption = new QLabel(u"Sho&w"_s, this);
    caption->setBuddy(m_filter);
    head->addWidget(caption);
    head->addWidget(m_filter, 1);
    head->addWidget(m_save);
    auto *rows = new QVBoxLayout(this);
    rows->setContentsMargins({});
    rows->setSpacing(8);
    rows->addLayout(head);
    rows->addWidget(m_rows, 1);
    rows->addWidget(m_words);
    rows->addWidget(m_strip);
}

void ImportListPanel::show(std::int64_t id, ImportKind kind, const QList<RowFilter> &filters)
{
    m_id = id;
    m_kind = kind;
    const QSignalBlocker quiet(m_filter);
    m_filter->clear();
    CatalogueImport import(m_records, m_desk);
    for (const RowFilter filter : filters) {
        const auto count = import.count(id, filter);
        m_filter->addItem(u"%1 (%2)"_s.arg(filterWords(filter), count ? groupedCount(*count) : u"?"_s),
                          static_cast<int>(filter));
        m_filter->setItemData(m_filter->count() - 1, count ? *count : 0, Qt::UserRole + 1);
    }
    list();
}

void ImportListPanel::clear()
{
    m_job.cancel();
    m_id = 0;
    m_model->clear();
    m_words->clear();
}

RowFilter ImportListPanel::filter() const
{
    return static_cast<RowFilter>(m_filter->currentData().toInt());
}

void ImportListPanel::list()
{
    m_words->clear();
    m_model->show(m_kind, m_filter->currentData(Qt::UserRole + 1).toLongLong(),
                  [this, id = m_id, shown = filter()](qint64 from, qint64 most) {
                      return CatalogueImport(m_records, m_desk).rows(id, shown, from, most);
                  });
    m_rows->fitColumns(widestListCell, true);
    m_rows->widen(ImportListModel::Line, static_cast<int>(QString::number(m_model->rowCount()).size()) + 1);
    m_rows->widen(ImportListModel::Name, lettersOfName);
    m_rows->setCurrentIndex(m_model->index(0, 0));
    m_rows->scrollToTop();
    followRow();
}

/// The list cuts what is long, so all of the chosen row is told below it.
void ImportListPanel::followRow()
{
    const QString words = m_model->wordsOf(m_rows->currentIndex().row());
    if (!words.isEmpty()) // why a row could not be read stays
        m_words->setText(words);
}

void ImportListPanel::tell(const QString &words)
{
    showOutcome(*m_words, u"\u26a0 "_s + words);
}

void ImportListPanel::save()
{
    if (m_job.isRunning() || m_id == 0)
        return;
    const QString path =
        chooseSavePlace(this, u"Save the List"_s, QDir(usualBackupFolder()).filePath(u"import-list.csv"_s));
    if (!path.isEmpty())
        saveTo(path);
}

void ImportListPanel::saveTo(const QString &path)
{
    m_words->clear();
    m_job.start<Imported<qint64>>(
        [desk = m_desk, id = m_id, shown = filter(), path, form = savedListForm(m_records)](const WorkWatch &watch) {
            return withImport<qint64>(desk, watch, [&](CatalogueImport &import, const WorkWatch &heard) {
                return import.saveList(id, shown, path, form, heard);
            });
        },
        [this, path](const Result<Imported<qint64>, QString> &outcome) {
            const auto saved = flat(outcome);
            if (!saved)
                return showOutcome(*m_words, endWords(saved.error()));
            showOutcome(*m_words, u"\u2713 %1 rows are saved: %2"_s.arg(groupedCount(*saved), path));
        });
}

} // namespace harrowby::app
