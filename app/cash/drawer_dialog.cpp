// SPDX-License-Identifier: MIT
#include "app/cash/drawer_dialog.h"

#include "app/boxes/office_box.h"
#include "app/cash/drawer_openings.h"
#include "theme/dialogs.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace harrowby::app {

DrawerDialog::DrawerDialog(QWidget *parent) :
    QDialog(parent), m_reason(new QComboBox(this)), m_open(new QPushButton(u"&Open Drawer"_s, this))
{
    setWindowTitle(u"Open Drawer"_s);
    enlargeFont(*this);
    m_reason->setObjectName(u"drawerReason"_s);
    m_reason->setAccessibleName(u"Reason"_s);
    m_reason->setEditable(true);
    m_reason->setInsertPolicy(QComboBox::NoInsert);
    m_reason->addItems({u"Giving change"_s, u"Putting cash in"_s, u"Taking cash out"_s, u"Counting"_s});
    m_reason->clearEditText();
    m_reason->lineEdit()->setPlaceholderText(u"Reason"_s);
    m_open->setObjectName(u"openDrawerNow"_s);
    m_open->setDefault(true);
    makePrimary(*m_open);
    layOut();
    dressDialog(*this);
    connect(m_reason, &QComboBox::editTextChanged, this, &DrawerDialog::followEntry);
    connect(m_open, &QPushButton::clicked, this, &QDialog::accept);
    m_reason->setFocus();
    followEntry();
}

void DrawerDialog::layOut()
{
    auto *cancel = new QPushButton(u"Cancel"_s, this);
    cancel->setObjectName(u"cancelDrawer"_s);
    cancel->setAutoDefault(false);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(12);
    buttons->addStretch(1);
    buttons->addWidget(m_open);
    buttons->addWidget(cancel);

    auto *rows = new QVBoxLayout(this);
    rows->setContentsMargins(16, 16, 16, 12);
    rows->setSpacing(12);
    auto *question = makeOfficeText(this, u"Why is the drawer opened without a sale? The reason is recorded with your "
                                          "name."_s);
    question->setMinimumWidth(question->fontMetrics().averageCharWidth() * 44);
    rows->addWidget(question);
    rows->addWidget(m_reason);
    rows->addLayout(buttons);
}

QString DrawerDialog::reason() const
{
    return openingReason(m_reason->currentText());
}

void DrawerDialog::followEntry()
{
    m_open->setEnabled(!reason().isEmpty());
}

} // namespace harrowby::app
