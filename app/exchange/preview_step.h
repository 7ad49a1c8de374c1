// SPDX-License-Identifier: MIT
#pragma once

#include "app/catalogue/catalogue_import.h"
#include "app/exchange/import_step.h"

class QCheckBox;
class QLabel;

namespace harrowby::app {

class ImportListPanel;

/// The fourth step: what would become of each row, before anything is written.
class PreviewStep final : public ImportStep
{
    Q_OBJECT

public:
    /// The records must outlive it.
    PreviewStep(ImportDraft &draft, Records &records, const ImportDesk &desk, QWidget *parent = nullptr);

    [[nodiscard]] QString heading() const override;
    [[nodiscard]] QString nextWords() const override { return QStringLiteral("Import &Now"); }
    void enter() override;
    [[nodiscard]] Result<void, QString> leave() override;
    /// The preview is taken away.
    void clear();

private:
    [[nodiscard]] QString aboutWords() const;

    QString m_backupFolder;
    QLabel *m_about = nullptr;
    ImportListPanel *m_list = nullptr;
    QCheckBox *m_validRows = nullptr;
};

} // namespace harrowby::app
