// SPDX-License-Identifier: MIT
#include "app/boxes/office_box.h"

#include "spoken/spoken.h"
#include "theme/dialogs.h"

#include <QLabel>
#include <QMessageBox>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace harrowby::app {

void tellInOffice(QWidget *parent, const QString &text)
{
    QMessageBox box(QMessageBox::Warning, u"Store"_s, text, QMessageBox::Ok, parent);
    box.setDefaultButton(QMessageBox::Ok);
    dressBox(box);
    box.exec();
}

bool askInOffice(QWidget *parent, const QString &question, const QString &action)
{
    QMessageBox box(QMessageBox::Question, u"Store"_s, question, QMessageBox::Cancel, parent);
    const QPushButton *agree = box.addButton(action, QMessageBox::AcceptRole);
    box.setDefaultButton(QMessageBox::Cancel);
    dressBox(box);
    box.exec();
    return box.clickedButton() == agree;
}

QLabel *makeOfficeText(QWidget *parent, const QString &text)
{
    auto *label = new QLabel(parent);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setText(text);
    return label;
}

void showOutcome(QLabel &label, const QString &text)
{
    reportOutcome(&label, text);
}

} // namespace harrowby::app
