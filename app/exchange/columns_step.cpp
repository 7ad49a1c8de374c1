// SPDX-License-Identifier: MIT
#include "app/exchange/columns_step.h"

#include "app/boxes/office_box.h"
#include "app/exchange/grid_view.h"
#include "app/exchange/import_draft.h"
#include "app/exchange/scrolling.h"

#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QScrollArea>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr int lettersOfHeading = 14;
constexpr qsizetype mostLeftOut = 6; // that are named

/// The file's column that is this one of the store, or -1.
int fileColumnOf(const ColumnMatch &match, int column)
{
    return static_cast<int>(match.indexOf(column));
}

} // namespace

ColumnsStep::ColumnsStep(ImportDraft &draft, Records &records, QWidget *parent) :
    ImportStep(draft, parent), m_records(records)
{
    m_leftOut = makeOfficeText(this, {});
    m_leftOut->setObjectName(u"leftOutColumns"_s);
    m_area = makeScrolling(new QWidget, this);
    m_area->setObjectName(u"columnRows"_s);
    auto *rows = new QVBoxLayout(this);
    rows->setContentsMargins({});
    rows->setSpacing(8);
    rows->addWidget(
        makeOfficeText(this, u"For each thing that the store knows, choose the column of your file that holds it. "
                             "What was found by its heading is chosen already."_s));
    rows->addWidget(m_area, 1);
    rows->addWidget(m_leftOut);
}

void ColumnsStep::enter()
{
    match();
    const auto kind = static_cast<int>(draft().choices.kind);
    if (m_kind != kind || m_headings != draft().headings) {
        m_kind = kind;
        m_headings = draft().headings;
        makeRows();
    }
    showRows();
}

/// By hand as it was the last time; else by the headings. What was chosen for these very headings stays.
void ColumnsStep::match()
{
    ImportDraft &now = draft();
    QStringList headings = headingsOf(beginningOf(now.file.bytes), now.choices.form);
    if (!now.choices.hasHeadings)
        headings = numberedHeadings(headings.size());
    const bool isSame = now.headings == headings && now.choices.columns.size() == headings.size() &&
                        m_kind == static_cast<int>(now.choices.kind);
    if (isSame)
        return;
    now.headings = std::move(headings);
    const auto remembered = RememberedColumns(m_records).match(now.choices.kind, now.headings);
    now.choices.columns = remembered ? *remembered : matchColumns(now.choices.kind, now.headings);
    m_doubts = remembered ? QList<ColumnDoubt>() : columnDoubts(now.choices.kind, now.headings);
    openDoubts();
}

/// Of two headings that fit, such as a cost and a price, none is taken unasked.
void ColumnsStep::openDoubts()
{
    for (const ColumnDoubt &doubt : std::as_const(m_doubts)) {
        if (const int chosen = fileColumnOf(draft().choices.columns, doubt.column); chosen >= 0)
            draft().choices.columns[chosen] = -1;
    }
}

QString ColumnsStep::doubtWords(int column) const
{
    const auto found = std::ranges::find(m_doubts, column, &ColumnDoubt::column);
    if (found == m_doubts.cend())
        return {};
    QStringList names;
    for (const int heading : found->headings)
        names << u'"' + headingOf(heading) + u'"';
    return u"Please choose: %1"_s.arg(names.join(u" or "_s));
}

void ColumnsStep::makeRows()
{
    m_boxes.clear();
    m_examples.clear();
    auto *inner = new QWidget;
    auto *grid = new QGridLayout(inner);
    grid->setContentsMargins(0, 0, 8, 0);
    grid->setHorizontalSpacing(12);
    grid->setVerticalSpacing(6);
    grid->setColumnStretch(1, 2);
    grid->setColumnStretch(2, 3);
    const auto count = static_cast<int>(importColumns(draft().choices.kind).size());
    for (int column = 0; column < count; ++column)
        addRow(*grid, column);
    grid->setRowStretch(count, 1);
    delete m_area->takeWidget();
    m_area->setWidget(inner);
    inner->setAutoFillBackground(false);
}

void ColumnsStep::addRow(QGridLayout &grid, int column)
{
    const ImportColumn &known = importColumns(draft().choices.kind).at(column);
    auto *caption = new QLabel(known.words, m_area);
    auto *box = new QComboBox(m_area);
    box->setObjectName(u"column"_s + known.name);
    box->setAccessibleName(u"%1: column of the file"_s.arg(known.words));
    box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    box->setMinimumContentsLength(lettersOfHeading);
    box->setPlaceholderText(u"Please choose"_s);
    box->addItem(u"(not in this file)"_s, -1);
    for (int i = 0; i < m_headings.size(); ++i)
        box->addItem(headingOf(i), i);
    auto *examples = makeOfficeText(m_area, {});
    connect(box, &QComboBox::currentIndexChanged, this, [this, column] { choose(column); });
    grid.addWidget(caption, column, 0);
    grid.addWidget(box, column, 1);
    grid.addWidget(examples, column, 2);
    m_boxes << box;
    m_examples << examples;
}

QString ColumnsStep::headingOf(int fileColumn) const
{
    const QString heading = lineOf(m_headings.value(fileColumn));
    return heading.isEmpty() ? u"(column %1)"_s.arg(fileColumn + 1) : heading;
}

/// A column of the file is one thing: what had it before lets it go.
void ColumnsStep::choose(int column)
{
    m_doubts.removeIf([column](const ColumnDoubt &doubt) { return doubt.column == column; });
    ColumnMatch &match = draft().choices.columns;
    for (int &known : match) {
        if (known == column)
            known = -1;
    }
    const int chosen = m_boxes.at(column)->currentData().toInt();
    if (chosen >= 0 && chosen < match.size())
        match[chosen] = column;
    showRows();
}

void ColumnsStep::showRows()
{
    for (int column = 0; column < m_boxes.size(); ++column) {
        const int chosen = fileColumnOf(draft().choices.columns, column);
        QComboBox &box = *m_boxes.at(column);
        const QSignalBlocker quiet(&box);
        const QString doubt = doubtWords(column);
        box.setCurrentIndex(doubt.isEmpty() ? box.findData(chosen) : -1);
        const QString examples = chosen >= 0 ? draft().sample.examplesOf(chosen) : doubt;
        m_examples.at(column)->setText(examples);
        box.setAccessibleDescription(examples);
    }
    showLeftOut();
}

void ColumnsStep::showLeftOut()
{
    QStringList names;
    qsizetype count = 0;
    const ColumnMatch &match = draft().choices.columns;
    for (int i = 0; i < match.size(); ++i) {
        if (match.at(i) < 0 && ++count <= mostLeftOut)
            names << headingOf(i);
    }
    if (count > mostLeftOut)
        names << u"%1 more"_s.arg(count - mostLeftOut);
    m_leftOut->setText(names.isEmpty() ? u"Every column of your file is used."_s
                                       : u"Not used of your file: %1"_s.arg(names.join(u", "_s)));
}

Result<void, QString> ColumnsStep::leave()
{
    const ImportChoices &choices = draft().choices;
    if (!m_doubts.isEmpty()) {
        const int column = m_doubts.constFirst().column;
        m_boxes.at(column)->setFocus();
        return Unexpected(u"Several columns of your file could be \"%1\". %2."_s.arg(
            importColumns(choices.kind).at(column).words, doubtWords(column)));
    }
    if (auto checked = checkMatch(choices.kind, choices.columns); !checked) {
        if (!m_boxes.isEmpty())
            m_boxes.constFirst()->setFocus();
        return checked;
    }
    (void)RememberedColumns(m_records).remember(choices.kind, draft().headings,
                                                choices.columns); // logged when it fails
    return {};
}

} // namespace harrowby::app
