// SPDX-License-Identifier: MIT
#include "app/labels/label_picker.h"

#include "app/boxes/office_box.h"
#include "app/codes/code_text.h"
#include "app/labels/step_entry.h"
#include "app/shop/failure_text.h"
#include "app/work/watched_store.h"
#include "app/work/work_strip.h"
#include "basic/numbers.h"
#include "input/touch_target.h"
#include "theme/dialogs.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace harrowby::app {

namespace {

using ItemsRead = Result<QList<LabelItem>, QString>; // or why not, in words

const auto notRead = u"The items could not be read."_s;
constexpr int mostListed = 200; // nobody reads more

/// On a thread of its own, with a connection of its own.
ItemsRead readAll(const QString &store, const LabelQuery &query, const WorkWatch &watch)
{
    (void)watch({u"The items are being read \u2026"_s, WorkStep::unknown});
    const auto own = WatchedStore::open(store, Access::Read, watch);
    if (!own)
        return Unexpected(own.error().words);
    const auto items = LabelItems((*own)->records()).find(query);
    if (!items)
        return Unexpected(failureWords(notRead, items.error()));
    return *items;
}

QString addedWords(const LabelList::Added &added)
{
    if (added.isFull)
        return u"\u26a0 Not added: at most %1 labels can be printed at once."_s.arg(formatCount(LabelList::mostLabels));
    QString words = added.items == 1 ? u"Added: %1 of 1 item."_s : u"Added: %1 of %2 items."_s;
    words = words.arg(added.labels == 1 ? u"1 label"_s
                                        : u"%1 labels"_s.arg(formatCount(static_cast<double>(added.labels))));
    if (added.items != 1)
        words = words.arg(formatCount(static_cast<double>(added.items)));
    if (added.items == 0)
        words = u"Nothing was added."_s;
    if (added.withoutStock > 0)
        words += added.withoutStock == 1
                     ? u" 1 item has none in stock."_s
                     : u" %1 items have none in stock."_s.arg(formatCount(static_cast<double>(added.withoutStock)));
    return words;
}

} // namespace

StepEntry *makeLabelCount(const QString &objectName, const QString &name, QWidget *parent)
{
    auto *entry = new StepEntry(objectName, name, 0, parent);
    entry->setRange(1, LabelList::mostOfOne);
    return entry;
}

LabelPicker::LabelPicker(Records &records, QString store, LabelList &list, QWidget *parent) :
    QDialog(parent), m_items(records), m_store(std::move(store)), m_list(list)
{
    setWindowTitle(u"Add Items"_s);
    enlargeFont(*this);
    createFinders();
    createCounts();
    createButtons();
    layOut();
    fillGroups();
    search();
    dressDialog(*this);
    resize(QSize(680, 560).boundedTo(roomFor(*this)));
}

void LabelPicker::createFinders()
{
    m_entry = new QLineEdit(this);
    m_entry->setObjectName(u"labelItem"_s);
    m_entry->setAccessibleName(u"Part of the item's name, ID or code"_s);
    m_entry->setPlaceholderText(u"Part of the name, ID or code"_s);
    m_group = new QComboBox(this);
    m_group->setObjectName(u"labelGroup"_s);
    m_group->setAccessibleName(u"Which items"_s);
    m_group->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_view = new QListWidget(this);
    m_view->setObjectName(u"labelItems"_s);
    m_view->setAccessibleName(u"Items found"_s);
    m_view->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_count = makeOfficeText(this, {});
    m_count->setObjectName(u"labelItemsFound"_s);
    m_pause.setSingleShot(true);
    m_pause.setInterval(150ms);
    connect(m_entry, &QLineEdit::textChanged, &m_pause, qOverload<>(&QTimer::start));
    connect(m_entry, &QLineEdit::returnPressed, this, &LabelPicker::search);
    connect(&m_pause, &QTimer::timeout, this, &LabelPicker::search);
    connect(m_group, &QComboBox::activated, this, &LabelPicker::search);
    connect(m_view, &QListWidget::itemActivated, this, &LabelPicker::addCurrent);
}

void LabelPicker::createCounts()
{
    m_each = makeLabelCount(u"labelsOfEach"_s, u"Labels of each item"_s, this);
    m_asInStock = new QCheckBox(u"As many as in &stock"_s, this);
    m_asInStock->setObjectName(u"labelsAsInStock"_s);
    connect(m_asInStock, &QCheckBox::toggled, m_each, &QWidget::setDisabled);
}

void LabelPicker::createButtons()
{
    const auto make = [this](const QString &caption, const QString &name) {
        auto *button = new QPushButton(caption, this);
        button->setObjectName(name);
        button->setAutoDefault(false);
        return button;
    };
    m_add = make(u"&Add"_s, u"addLabel"_s);
    makePrimary(*m_add);
    m_addAll = make(u"Add A&ll"_s, u"addAllLabels"_s);
    m_close = make(u"&Done"_s, u"closeLabelPicker"_s);
    m_outcome = makeOfficeText(this, {});
    m_outcome->setObjectName(u"labelPickerOutcome"_s);
    m_outcome->setMinimumHeight(m_outcome->fontMetrics().height());
    m_strip = new WorkStrip(m_job, this);
    connect(m_add, &QPushButton::clicked, this, &LabelPicker::addCurrent);
    connect(m_addAll, &QPushButton::clicked, this, &LabelPicker::addAll);
    connect(m_close, &QPushButton::clicked, this, &QDialog::reject);
    connect(m_strip, &WorkStrip::busyChanged, this, [this](bool busy) {
        for (QPushButton *button : {m_add, m_addAll})
            button->setDisabled(busy);
    });
}

void LabelPicker::layOut()
{
    auto *finders = new QHBoxLayout;
    finders->setSpacing(12);
    auto *find = new QLabel(u"&Find:"_s, this);
    find->setBuddy(m_entry);
    auto *among = new QLabel(u"a&mong"_s, this);
    among->setBuddy(m_group);
    finders->addWidget(find);
    finders->addWidget(m_entry, 3);
    finders->addWidget(among);
    finders->addWidget(m_group, 3);
    auto *counts = new QHBoxLayout;
    counts->setSpacing(12);
    auto *each = new QLabel(u"Labels of &each:"_s, this);
    each->setBuddy(m_each->entry());
    counts->addWidget(each);
    counts->addWidget(m_each);
    counts->addWidget(m_asInStock);
    counts->addStretch(1);
    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(12);
    buttons->addWidget(m_add);
    buttons->addWidget(m_addAll);
    buttons->addStretch(1);
    buttons->addWidget(m_close);

    auto *rows = new QVBoxLayout(this);
    rows->setContentsMargins(16, 12, 16, 12);
    rows->setSpacing(8);
    rows->addLayout(finders);
    rows->addWidget(m_view, 1);
    rows->addWidget(m_count);
    rows->addLayout(counts);
    rows->addWidget(m_outcome);
    rows->addWidget(m_strip);
    rows->addLayout(buttons);
}

/// Enter in the entries is theirs; a reader ends each code with it.
void LabelPicker::keyPressEvent(QKeyEvent *event)
{
    if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter)
        QDialog::keyPressEvent(event);
}

void LabelPicker::fillGroups()
{
    const auto add = [this](const QString &words, const LabelQuery &group) {
        m_group->addItem(words);
        m_groups << group;
    };
    using Which = LabelQuery::Which;
    add(u"All items"_s, {});
    add(u"Items without a code"_s, {Which::WithoutCode, {}, {}});
    if (m_items.hasImport().value_or(false))
        add(u"Items of the last import"_s, {Which::LastImport, {}, {}});
    const auto categories = m_items.categories().value_or(QStringList());
    for (const QString &category : categories)
        add(category.isEmpty() ? u"(no category)"_s : shownCode(category), {Which::All, category, {}});
}

LabelQuery LabelPicker::query() const
{
    LabelQuery query = m_groups.at(m_group->currentIndex());
    query.text = m_entry->text();
    return query;
}

void LabelPicker::search()
{
    m_pause.stop();
    const auto found = m_items.first(query(), mostListed);
    const auto count = m_items.count(query());
    m_found = found.value_or(QList<LabelItem>());
    {
        const QSignalBlocker quietly(m_view);
        m_view->clear();
        for (const LabelItem &item : std::as_const(m_found)) {
            auto *row = new QListWidgetItem(labelItemWords(item), m_view);
            row->setSizeHint({0, touchHeight});
        }
        m_view->setCurrentRow(m_found.isEmpty() ? -1 : 0);
    }
    m_add->setEnabled(!m_found.isEmpty());
    m_addAll->setEnabled(!m_found.isEmpty());
    if (!found || !count)
        return tellFailure(found ? count.error() : found.error());
    const QString all = formatCount(static_cast<double>(*count));
    m_addAll->setText(*count > 1 ? u"Add A&ll %1"_s.arg(all) : u"Add A&ll"_s);
    const QString words = *count == 0           ? u"There is no such item that can be sold."_s
                          : *count > mostListed ? u"%1 items; the first %2 are listed."_s.arg(all).arg(mostListed)
                          : *count == 1         ? u"1 item."_s
                                                : u"%1 items."_s.arg(all);
    showOutcome(*m_count, words);
    if (std::exchange(m_hasFailed, false))
        m_outcome->clear();
}

void LabelPicker::addCurrent()
{
    const int row = m_view->currentRow();
    if (m_job.isRunning() || row < 0 || row >= m_found.size())
        return;
    const auto item = m_items.withCodes(m_found.at(row));
    if (!item)
        return tellFailure(item.error());
    add({*item});
}

void LabelPicker::addAll()
{
    if (m_job.isRunning())
        return;
    m_outcome->clear();
    m_job.start<ItemsRead>(
        [store = m_store, wanted = query()](const WorkWatch &watch) { return readAll(store, wanted, watch); },
        [this](const Result<ItemsRead, QString> &read) {
            if (m_job.isCancelled())
                showOutcome(*m_outcome, u"Cancelled: nothing was added."_s);
            else if (!read || !*read)
                showOutcome(*m_outcome, u"\u26a0 "_s + (read ? read->error() : read.error()));
            else
                add(**read);
        });
}

void LabelPicker::add(const QList<LabelItem> &items)
{
    showOutcome(*m_outcome, addedWords(m_list.add(items, m_asInStock->isChecked() ? 0 : m_each->value())));
}

void LabelPicker::tellFailure(const DbFailure &failure)
{
    m_hasFailed = true;
    showOutcome(*m_outcome, u"\u26a0 "_s + failureWords(notRead, failure));
}

} // namespace harrowby::app
