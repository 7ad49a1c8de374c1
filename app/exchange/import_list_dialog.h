// SPDX-License-Identifier: MIT
#pragma once

#include "app/catalogue/catalogue_import.h"

#include <QDialog>

namespace harrowby::app {

/// Rows of an import that something is the matter with, to look through and to save.
class ImportListDialog final : public QDialog
{
    Q_OBJECT

public:
    /// The records must outlive it.
    ImportListDialog(Records &records, const ImportDesk &desk, const PastImport &import, RowFilter filter,
                     const QString &about, QWidget *parent = nullptr);
};

} // namespace harrowby::app
