// SPDX-License-Identifier: MIT
#include "app/exchange/import_list_dialog.h"

#include "app/boxes/office_box.h"
#include "app/exchange/import_list_panel.h"
#include "theme/dialogs.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr QSize usualSize(820, 560);

} // namespace

ImportListDialog::ImportListDialog(Records &records, const ImportDesk &desk, const PastImport &import, RowFilter filter,
                                   const QString &about, QWidget *parent) :
    QDialog(parent)
{
    setWindowTitle(u"Rows of the Import"_s);
    enlargeFont(*this);
    auto *list = new ImportListPanel(records, desk, u"dialog"_s, this);
    auto *close = new QPushButton(u"&Close"_s, this);
    close->setObjectName(u"closeImportList"_s);
    connect(close, &QPushButton::clicked, this, &QDialog::accept);
    auto *foot = new QHBoxLayout;
    foot->addStretch(1);
    foot->addWidget(close);
    auto *rows = new QVBoxLayout(this);
    rows->setContentsMargins(16, 16, 16, 16);
    rows->setSpacing(12);
    rows->addWidget(makeOfficeText(this, about));
    rows->addWidget(list, 1);
    rows->addLayout(foot);
    list->show(import.id, import.kind, {filter});
    dressDialog(*this);
    resize(usualSize.boundedTo(roomFor(*this)));
}

} // namespace harrowby::app
