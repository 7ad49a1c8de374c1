// SPDX-License-Identifier: MIT
#include "app/exchange/choices_step.h"

#include "app/boxes/office_box.h"
#include "app/csv/figures.h"
#include "app/exchange/grid_view.h"
#include "app/exchange/import_draft.h"
#include "app/exchange/scrolling.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QScrollArea>
#include <QSignalBlocker>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

/// What a figure is with this decimal sign; "1.234" alone would be read in two ways, too.
QString readingOf(const QString &figure, QChar sign)
{
    const auto value = readFigure(figure, sign);
    if (!value)
        return u"no number"_s;
    const auto whole = static_cast<qint64>(*value);
    if (static_cast<double>(whole) == *value)
        return u"%1, a whole number"_s.arg(whole);
    return u"%1, about %2"_s.arg(writeFigure(*value, sign)).arg(whole);
}

} // namespace

ChoicesStep::ChoicesStep(ImportDraft &draft, QWidget *parent) : ImportStep(draft, parent)
{
    auto *inner = new QWidget;
    auto *rows = new QVBoxLayout(inner);
    rows->setContentsMargins({});
    rows->setSpacing(4);
    makeQuestion(*rows);
    m_asStored = addTick(*rows, u"&Fill the empty store exactly as the file has it"_s, u"importAsStored"_s,
                         u"The file was exported from a store, and this one has none of it yet. Nothing is checked or "
                         "put right then."_s);
    m_capitals =
        addTick(*rows, u"&Put names into capitals"_s, u"importCapitals"_s,
                u"The till sells only what has its name in capitals. Without this, other names are refused."_s);
    m_categories = addTick(*rows, u"&Make the categories that are missing"_s, u"importCategories"_s,
                           u"Without this, items of a category that the store does not have are refused."_s);
    m_stockInHand = addTick(*rows, u"Se&t the stock in hand of items that are there already"_s, u"importStockInHand"_s,
                            u"Only after a count of the stock: tills have sold since the file was made. New items get "
                            "theirs in any case."_s);
    m_nothing = makeOfficeText(this, u"Here is nothing to choose for this file. Press \"Next\"."_s);
    m_nothing->setObjectName(u"nothingToChoose"_s);
    rows->addWidget(m_nothing);
    rows->addStretch(1);
    auto *all = new QVBoxLayout(this);
    all->setContentsMargins({});
    all->addWidget(makeScrolling(inner, this));
    connect(m_asStored, &QCheckBox::toggled, this, &ChoicesStep::followAsStored);
}

void ChoicesStep::makeQuestion(QVBoxLayout &rows)
{
    m_signPart = new QWidget(this);
    m_question = makeOfficeText(m_signPart, {});
    m_question->setObjectName(u"signQuestion"_s);
    m_sign = new QComboBox(m_signPart);
    m_sign->setObjectName(u"signAnswer"_s);
    auto *line = new QHBoxLayout(m_signPart);
    line->setContentsMargins(0, 0, 0, 8);
    line->setSpacing(12);
    line->addWidget(m_question, 1);
    line->addWidget(m_sign);
    rows.addWidget(m_signPart);
}

QCheckBox *ChoicesStep::addTick(QVBoxLayout &rows, const QString &caption, const QString &name, const QString &about)
{
    auto *tick = new QCheckBox(caption, this);
    tick->setObjectName(name);
    tick->setAccessibleDescription(about);
    auto *text = makeOfficeText(this, about);
    text->setObjectName(name + u"About"_s);
    text->setProperty("styleWord", u"caption"_s);
    text->setIndent(40);
    rows.addWidget(tick);
    rows.addWidget(text);
    return tick;
}

void ChoicesStep::enter()
{
    const ImportChoices &choices = draft().choices;
    const bool isOfItems = choices.kind == ImportKind::Items;
    showQuestion();
    const auto set = [this](QCheckBox &tick, bool isShown, bool isOn) {
        const QSignalBlocker quiet(&tick);
        tick.setVisible(isShown);
        findChild<QLabel *>(tick.objectName() + u"About"_s)->setVisible(isShown);
        tick.setChecked(isOn);
    };
    set(*m_asStored, draft().mayBeAsStored, choices.asStored && draft().mayBeAsStored);
    set(*m_capitals, choices.kind != ImportKind::Codes, choices.putIntoCapitals);
    set(*m_categories, isOfItems, choices.makeCategories);
    set(*m_stockInHand, isOfItems, choices.stockInHand);
    m_nothing->setVisible(choices.kind == ImportKind::Codes && !draft().mayBeAsStored && m_signPart->isHidden());
    followAsStored();
}

void ChoicesStep::showQuestion()
{
    const DecimalGuess &open = draft().decimal;
    m_signPart->setVisible(draft().signIsOpen());
    if (!draft().signIsOpen())
        return;
    const QString figure = lineOf(open.example);
    m_question->setText(u"In line %1, column \"%2\", stands %3. How much is that?"_s.arg(open.line).arg(
        lineOf(draft().headings.value(open.column)), figure));
    m_sign->setAccessibleName(m_question->text());
    m_sign->clear();
    m_sign->addItem(u"Please choose"_s);
    for (const QChar sign : {QChar(u'.'), QChar(u',')})
        m_sign->addItem(readingOf(open.example, sign), sign);
}

void ChoicesStep::followAsStored()
{
    for (QCheckBox *tick : {m_capitals, m_categories, m_stockInHand})
        tick->setEnabled(!m_asStored->isChecked());
}

Result<void, QString> ChoicesStep::leave()
{
    ImportChoices &choices = draft().choices;
    if (draft().signIsOpen()) {
        const QVariant sign = m_sign->currentData();
        if (!sign.isValid()) {
            m_sign->setFocus();
            return Unexpected(u"Please choose first how much %1 is: all figures of the file are read so."_s.arg(
                lineOf(draft().decimal.example)));
        }
        choices.form.decimalSign = sign.toChar();
        draft().signIsChosen = true;
    }
    choices.asStored = draft().mayBeAsStored && m_asStored->isChecked();
    choices.putIntoCapitals = m_capitals->isChecked();
    choices.makeCategories = m_categories->isChecked();
    choices.stockInHand = m_stockInHand->isChecked();
    return {};
}

} // namespace harrowby::app
