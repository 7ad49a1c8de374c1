// SPDX-License-Identifier: MIT
#include "app/labels/label_adjust_dialog.h"

#include "app/boxes/office_box.h"
#include "app/labels/step_entry.h"
#include "theme/dialogs.h"

#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr int tenths = 1; // decimals

} // namespace

LabelAdjustDialog::LabelAdjustDialog(const LabelPaper &paper, LabelSetting setting, QWidget *parent) :
    QDialog(parent), m_setting(std::move(setting))
{
    setWindowTitle(u"Adjust Labels"_s);
    enlargeFont(*this);
    createEntries();
    auto *rows = new QVBoxLayout(this);
    rows->setContentsMargins(16, 16, 16, 12);
    rows->setSpacing(12);
    rows->addWidget(makeOfficeText(this, paper.words + u", at this computer."_s));
    rows->addLayout(makeForm());
    rows->addWidget(makeOfficeText(this,
                                   u"Print one page on plain paper and hold it against the labels: what is printed too "
                                   "far to the left goes right by so many mm, what is too high goes down. A figure "
                                   "below 0 moves it the other way."_s));
    rows->addLayout(makeButtons());
    dressDialog(*this);
}

void LabelAdjustDialog::createEntries()
{
    m_dots = new QComboBox(this);
    m_dots->setObjectName(u"labelDots"_s);
    m_dots->setAccessibleName(u"Dots per inch of the printer"_s);
    for (const int dots : labelDots())
        m_dots->addItem(u"%1 dots per inch"_s.arg(dots), dots);
    m_dots->setCurrentIndex(m_dots->findData(m_setting.dotsPerInch));
    m_right = new StepEntry(u"labelsRight"_s, u"Millimetres to the right"_s, tenths, this);
    m_down = new StepEntry(u"labelsDown"_s, u"Millimetres down"_s, tenths, this);
    for (StepEntry *entry : {m_right, m_down})
        entry->setRange(-LabelSetting::mostNudge, LabelSetting::mostNudge);
    m_right->setValue(m_setting.nudge.x());
    m_down->setValue(m_setting.nudge.y());
}

QLayout *LabelAdjustDialog::makeForm()
{
    auto *form = new QFormLayout;
    form->setVerticalSpacing(12);
    form->addRow(u"&Printer prints:"_s, m_dots);
    const auto add = [&](const QString &caption, StepEntry *entry) {
        auto *label = new QLabel(caption, this);
        label->setBuddy(entry->entry());
        form->addRow(label, entry);
    };
    add(u"To the &right, in mm:"_s, m_right);
    add(u"&Down, in mm:"_s, m_down);
    centreCaptions(*form);
    return form;
}

QLayout *LabelAdjustDialog::makeButtons()
{
    auto *save = new QPushButton(u"Sa&ve"_s, this);
    save->setObjectName(u"saveAdjustment"_s);
    save->setDefault(true);
    makePrimary(*save);
    connect(save, &QPushButton::clicked, this, &QDialog::accept);
    auto *cancel = new QPushButton(u"Cancel"_s, this);
    cancel->setObjectName(u"cancelAdjustment"_s);
    cancel->setAutoDefault(false);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    auto *row = new QHBoxLayout;
    row->setSpacing(12);
    row->addStretch(1);
    row->addWidget(save);
    row->addWidget(cancel);
    return row;
}

LabelSetting LabelAdjustDialog::chosen() const
{
    return {m_dots->currentData().toInt(), {m_right->value(), m_down->value()}, m_setting.printer};
}

} // namespace harrowby::app
