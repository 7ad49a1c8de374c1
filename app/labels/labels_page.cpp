// SPDX-License-Identifier: MIT
#include "app/labels/labels_page.h"

#include "app/boxes/office_box.h"
#include "app/codes/code_text.h"
#include "app/labels/label_adjust_dialog.h"
#include "app/labels/label_picker.h"
#include "app/labels/label_preview.h"
#include "app/labels/step_entry.h"
#include "basic/numbers.h"
#include "tables/output_bar.h"

#include <harrowby/saved_settings.h>

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTreeView>

#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

QString counted(qint64 count, const QString &one, const QString &several)
{
    return count == 1 ? u"1 "_s + one : formatCount(static_cast<double>(count)) + u' ' + several;
}

} // namespace

LabelsPage::LabelsPage(SignedDeeds deeds, QString store, OfficeSettings settings, QWidget *parent) :
    OfficePage(parent), m_records(deeds.records()), m_store(std::move(store)), m_settings(std::move(settings)),
    m_paper(savedLabelPaper(m_settings)), m_setting(readLabelSetting(m_settings, m_paper)),
    m_chooseFile(
        [](QWidget *window, const QString &suggestion) { return tables::askForFile(window, suggestion, u"pdf"_s); }),
    m_output(std::move(deeds), *this)
{
    createList();
    createPaper();
    layOut();
    fillPapers();
    followList();
    showPlace();
}

void LabelsPage::showEvent(QShowEvent *event)
{
    OfficePage::showEvent(event);
    m_currency = m_settings.get(saved::Currency.section, saved::Currency.key, saved::Currency.defaultValue).trimmed();
    showLabel();
    m_output.findPrinters([this](const QStringList &printers) {
        const QString chosen = m_printer->currentText();
        m_printer->addItems(printers);
        m_printer->setEditText(chosen.isEmpty() && printers.size() == 1 ? printers.constFirst() : chosen);
    });
}

std::optional<LeavingQuestion> LabelsPage::leaving() const
{
    if (m_output.isBusy())
        return LeavingQuestion{u"Labels are being printed. Stop it?"_s, u"&Stop It"_s};
    return {};
}

int LabelsPage::currentRow() const
{
    const QModelIndex index = m_view->currentIndex();
    return index.isValid() ? index.row() : -1;
}

LabelPlan LabelsPage::plan() const
{
    return {m_paper, m_setting.dotsPerInch, m_paper.isRoll ? 0 : m_place->value() - 1, m_setting.nudge};
}

void LabelsPage::addItems()
{
    if (m_output.isBusy())
        return;
    m_outcome->clear();
    LabelPicker(m_records, m_store, m_list, this).exec();
    showLabel();
}

void LabelsPage::removeItem()
{
    if (currentRow() >= 0 && !m_output.isBusy())
        m_list.remove(currentRow());
}

void LabelsPage::removeAll()
{
    if (m_output.isBusy())
        return;
    m_list.clear();
    m_outcome->clear();
}

/// The figures, and that some row is the current one.
void LabelsPage::followList()
{
    const bool isEmpty = m_list.rows().isEmpty();
    if (!isEmpty && currentRow() < 0)
        m_view->setCurrentIndex(m_list.index(0, 0));
    const qint64 labels = m_list.labels();
    const qint64 pages = m_paper.pages(labels, plan().place);
    QString words =
        counted(m_list.rows().size(), u"item"_s, u"items"_s) + u", "_s + counted(labels, u"label"_s, u"labels"_s);
    if (!m_paper.isRoll)
        words += u": "_s + counted(pages, u"sheet"_s, u"sheets"_s);
    m_sum->setText(isEmpty ? u"Add the items that you want labels for."_s : words);
    for (QPushButton *button : {m_print, m_savePdf, m_removeAll})
        button->setDisabled(isEmpty);
    followChoice();
}

void LabelsPage::followChoice()
{
    const int row = currentRow();
    const bool isOne = row >= 0 && row < m_list.rows().size();
    for (QWidget *part : std::initializer_list<QWidget *>{m_count, m_code, m_remove})
        part->setEnabled(isOne);
    const QSignalBlocker quietly(m_code);
    m_code->clear();
    if (isOne) {
        const LabelRow &chosen = m_list.rows().at(row);
        m_count->setValue(chosen.count);
        for (const LabelChoice &choice : chosen.choices)
            m_code->addItem(choice.words);
        m_code->setCurrentIndex(static_cast<int>(chosen.choice));
    }
    showLabel();
}

void LabelsPage::showLabel()
{
    const int row = currentRow();
    if (row < 0 || row >= m_list.rows().size())
        return m_preview->show({}, m_paper, m_setting.dotsPerInch);
    const LabelRow &chosen = m_list.rows().at(row);
    const FittedLabel fitted = fitLabel(chosen, m_currency, {m_paper, m_setting.dotsPerInch});
    m_preview->show(fitted.label, m_paper, m_setting.dotsPerInch);
    if (!fitted.longCode.isEmpty())
        tell(u"\u26a0 "_s + tooLongWords(fitted.longCode, false) + u": choose a wider paper, or another code."_s);
    else if (!fitted.hasPrice)
        tell(u"\u26a0 "_s + tooLongWords(u"The price"_s, false) + u": choose a wider paper."_s);
    else if (chosen.item.isDoubled)
        tell(u"\u26a0 Another item has the ID %1, too, so the till sells neither by its codes: the label has name and "
             "price alone. Give one of them another ID."_s.arg(shownCode(chosen.item.id)));
    else if (chosen.choices.size() == 1)
        tell(u"\u26a0 The ID cannot be printed as bars: the label has name and price alone. Give the item a code on "
             "the page \"Codes\"."_s);
    else if (m_outcome->text().startsWith(u'\u26a0'))
        m_outcome->clear();
}

/// A roll has no place to begin at.
void LabelsPage::showPlace()
{
    m_place->setRange(1, m_paper.labels());
    m_place->setEnabled(!m_paper.isRoll);
    m_placeCaption->setEnabled(!m_paper.isRoll);
}

void LabelsPage::takeChoice(int choice)
{
    if (currentRow() < 0 || m_output.isBusy())
        return;
    m_list.setChoice(currentRow(), choice);
    showLabel();
}

void LabelsPage::takeCount(int count)
{
    if (currentRow() < 0 || m_output.isBusy())
        return;
    m_list.setCount(currentRow(), count);
    const QString typed = m_count->entry()->text();
    followList();
    m_count->entry()->setText(typed); // until the typing ends
}

void LabelsPage::choosePaper(int entry)
{
    m_paper = labelPapers().at(entry);
    m_setting = readLabelSetting(m_settings, m_paper);
    {
        const QSignalBlocker quietly(m_printer);
        m_printer->setEditText(m_setting.printer);
    }
    if (!saveLabelPaper(m_settings, m_paper))
        tell(u"\u26a0 The paper could not be saved for the next time."_s);
    showPlace();
    followList();
}

void LabelsPage::choosePrinter()
{
    m_setting.printer = m_printer->currentText().trimmed();
}

void LabelsPage::adjust()
{
    LabelAdjustDialog dialog(m_paper, m_setting, this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    m_setting = dialog.chosen();
    keep();
    showLabel();
}

LabelOrder LabelsPage::order() const
{
    return {m_list.rows(), plan(), m_currency, false};
}

void LabelsPage::print()
{
    if (m_output.isBusy())
        return;
    if (m_setting.printer.isEmpty())
        return tell(u"\u26a0 Choose the printer first, or save a PDF."_s);
    keep();
    m_output.print(order(), m_setting.printer);
}

void LabelsPage::savePdf()
{
    if (m_output.isBusy())
        return;
    const QPointer<LabelsPage> self(this);
    const FileChooser chooseFile = m_chooseFile; // outlives this page, should that go while the question is open
    const QString path = chooseFile(this, tables::documentsFolder() + u"/Labels.pdf"_s);
    if (!path.isEmpty() && self)
        m_output.save(order(), path);
}

void LabelsPage::keep()
{
    if (!saveLabelSetting(m_settings, m_paper, m_setting))
        tellInOffice(this, u"The choices could not be saved. Check the disk and the folder of the settings file."_s);
}

void LabelsPage::tell(const QString &text)
{
    showOutcome(*m_outcome, text);
}

} // namespace harrowby::app
