// SPDX-License-Identifier: MIT
#pragma once

#include "app/catalogue/catalogue_import.h"
#include "app/exchange/import_step.h"

class QCheckBox;
class QLabel;
class QPushButton;

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
    [[nodiscard]] QString nextWords() const override;
    void enter() override;
    [[nodiscard]] Result<void, QString> leave() override;
    /// The preview is taken away.
    void clear();

    /// Nothing was written, as the store has changed since: the rows that differ by now are listed, and the others are
    /// offered alone. What is to be told.
    [[nodiscard]] QString showStoreChanged(const QString &why);
    [[nodiscard]] bool hasStoreChanged() const { return m_hasStoreChanged; }

Q_SIGNALS:
    void othersWanted();

private:
    void offerOthers(qint64 others);
    [[nodiscard]] QString aboutWords() const;

    Records &m_records;
    ImportDesk m_desk;
    QString m_backupFolder;
    bool m_hasStoreChanged = false;
    QLabel *m_about = nullptr;
    ImportListPanel *m_list = nullptr;
    QCheckBox *m_validRows = nullptr;
    QPushButton *m_others = nullptr;
};

} // namespace harrowby::app
