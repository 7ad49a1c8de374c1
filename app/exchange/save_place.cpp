// SPDX-License-Identifier: MIT
#include "app/exchange/save_place.h"

#include "app/backup/backup_names.h"
#include "theme/dialogs.h"

#include <QDir>
#include <QFileDialog>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

QString askFor(QFileDialog &dialog)
{
    dressDialog(dialog);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return {};
    return QDir::cleanPath(dialog.selectedFiles().constFirst());
}

} // namespace

QString chooseSavePlace(QWidget *parent, const QString &title, const QString &offered)
{
    QFileDialog dialog(parent, title);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setNameFilters({u"Lists (*.csv)"_s, u"All files (*)"_s});
    dialog.setDefaultSuffix(u"csv"_s);
    dialog.selectFile(offered);
    return askFor(dialog);
}

QString chooseList(QWidget *parent)
{
    QFileDialog dialog(parent, u"List to Import"_s, usualBackupFolder());
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.setNameFilters({u"Lists (*.csv *.txt *.tsv *.tab)"_s, u"All files (*)"_s});
    return askFor(dialog);
}

} // namespace harrowby::app
