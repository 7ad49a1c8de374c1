// SPDX-License-Identifier: MIT
#include "app/exchange/file_step.h"

#include "app/boxes/office_box.h"
#include "app/catalogue/import_columns.h"
#include "app/exchange/grid_view.h"
#include "app/exchange/import_draft.h"
#include "app/exchange/kind_words.h"
#include "app/shop/failure_text.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr int widestSampleCell = 28; // letters
constexpr std::array encodings = {CsvEncoding::Utf8, CsvEncoding::Utf16LittleEndian, CsvEncoding::Utf16BigEndian,
                                  CsvEncoding::Windows1252};

void chooseValue(QComboBox &box, const QVariant &value)
{
    const QSignalBlocker quiet(&box);
    box.setCurrentIndex(box.findData(value));
}

/// `looksOdd`: the first line is taken for the headings, and looks like a row.
QString hintWords(const Sample &sample, bool hasHeadings, bool looksOdd)
{
    if (sample.headings.size() <= 1)
        return u"Only one column was found. If the rows below are not parted as in your list, choose another separator."_s;
    if (looksOdd)
        return u"The first line is taken for the headings, but looks like a row of the list:"_s;
    if (!hasHeadings)
        return u"The first line is taken for a row. These are the first rows, as they are read:"_s;
    return u"The first line is taken for the headings. These are the first rows, as they are read:"_s;
}

} // namespace

FileStep::FileStep(ImportDraft &draft, QWidget *parent) : ImportStep(draft, parent)
{
    m_hint = makeOfficeText(this, {});
    m_hint->setObjectName(u"sampleHint"_s);
    m_firstIsRow = new QCheckBox(u"The first line is a ro&w, not the headings"_s, this);
    m_firstIsRow->setObjectName(u"firstLineIsRow"_s);
    connect(m_firstIsRow, &QCheckBox::toggled, this, &FileStep::chooseHeadings);
    m_rows = new GridView(u"sampleRows"_s, u"First rows of the file"_s, this);
    m_model = new SampleModel(this);
    m_rows->setModel(m_model);
    auto *rows = new QVBoxLayout(this);
    rows->setContentsMargins({});
    rows->setSpacing(8);
    rows->addLayout(makeFileLine());
    rows->addLayout(makeChoices());
    rows->addWidget(m_hint);
    rows->addWidget(m_firstIsRow);
    rows->addWidget(m_rows, 1);
}

QHBoxLayout *FileStep::makeFileLine()
{
    m_file = makeOfficeText(this, {});
    m_file->setObjectName(u"importFile"_s);
    m_another = new QPushButton(u"Another &File \u2026"_s, this);
    m_another->setObjectName(u"anotherFile"_s);
    connect(m_another, &QPushButton::clicked, this, &FileStep::fileWanted);
    auto *line = new QHBoxLayout;
    line->setSpacing(12);
    line->addWidget(m_file, 1);
    line->addWidget(m_another);
    return line;
}

QComboBox *FileStep::makeChoice(QHBoxLayout &row, const QString &caption, const QString &name)
{
    auto *box = new QComboBox(this);
    box->setObjectName(name);
    box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    box->setMinimumContentsLength(8);
    auto *label = new QLabel(caption, this);
    label->setBuddy(box);
    auto *column = new QVBoxLayout;
    column->setSpacing(2);
    column->addWidget(label);
    column->addWidget(box);
    row.addLayout(column, 1);
    return box;
}

QHBoxLayout *FileStep::makeChoices()
{
    auto *row = new QHBoxLayout;
    row->setSpacing(12);
    m_kind = makeChoice(*row, u"It hol&ds"_s, u"importKind"_s);
    m_separator = makeChoice(*row, u"Se&parator"_s, u"importSeparator"_s);
    m_decimalSign = makeChoice(*row, u"Deci&mal sign"_s, u"importDecimalSign"_s);
    m_encoding = makeChoice(*row, u"Le&tters"_s, u"importEncoding"_s);
    for (const ImportKind kind : importKinds())
        m_kind->addItem(kindWords(kind), static_cast<int>(kind));
    for (const QChar separator : csvSeparators())
        m_separator->addItem(separatorWords(separator), separator);
    for (const CsvEncoding encoding : encodings)
        m_encoding->addItem(encodingWords(encoding), static_cast<int>(encoding));
    for (const QComboBox *box : {m_kind, m_separator, m_encoding})
        connect(box, &QComboBox::currentIndexChanged, this, &FileStep::takeChoices);
    connect(m_decimalSign, &QComboBox::currentIndexChanged, this, &FileStep::chooseSign);
    return row;
}

void FileStep::enter()
{
    const ImportChoices &choices = draft().choices;
    m_file->setText(u"File: %1"_s.arg(wrappingPath(draft().file.path)));
    chooseValue(*m_kind, static_cast<int>(choices.kind));
    chooseValue(*m_separator, choices.form.separator);
    chooseValue(*m_encoding, static_cast<int>(choices.form.encoding));
    const QSignalBlocker quietRow(m_firstIsRow);
    m_firstIsRow->setChecked(!choices.hasHeadings);
    const QSignalBlocker quiet(m_decimalSign);
    m_decimalSign->clear();
    if (draft().signIsOpen())
        m_decimalSign->addItem(u"Not clear yet"_s);
    for (const QChar sign : {u'.', u','})
        m_decimalSign->addItem(decimalSignWords(sign), sign);
    m_decimalSign->setCurrentIndex(draft().signIsOpen() ? 0 : m_decimalSign->findData(choices.form.decimalSign));
    showSample();
}

void FileStep::takeChoices()
{
    ImportChoices &choices = draft().choices;
    choices.kind = static_cast<ImportKind>(m_kind->currentData().toInt());
    choices.form.encoding = static_cast<CsvEncoding>(m_encoding->currentData().toInt());
    choices.form.separator = m_separator->currentData().toChar();
    showSample();
}

void FileStep::chooseSign()
{
    const QVariant sign = m_decimalSign->currentData();
    draft().signIsChosen = sign.isValid();
    if (sign.isValid())
        draft().choices.form.decimalSign = sign.toChar();
}

void FileStep::chooseHeadings()
{
    draft().choices.hasHeadings = !m_firstIsRow->isChecked();
    showSample();
}

void FileStep::showSample()
{
    const ImportChoices &choices = draft().choices;
    Sample sample = readSample(draft().file.bytes, choices.form, choices.hasHeadings);
    const bool looksOdd = choices.hasHeadings && looksLikeARow(sample.headings);
    m_firstIsRow->setVisible(looksOdd || !choices.hasHeadings);
    m_hint->setText(hintWords(sample, choices.hasHeadings, looksOdd));
    m_model->show(std::move(sample));
    m_rows->fitColumns(widestSampleCell, false);
}

Result<void, QString> FileStep::leave()
{
    draft().sample = readSample(draft().file.bytes, draft().choices.form, draft().choices.hasHeadings);
    if (!draft().sample.rows.isEmpty())
        return {};
    m_another->setFocus();
    return Unexpected(
        u"Below its headings the file holds no row: there is nothing to import. Please choose another file."_s);
}

} // namespace harrowby::app
