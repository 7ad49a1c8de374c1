// SPDX-License-Identifier: MIT
#pragma once

#include "app/catalogue/catalogue_import.h"
#include "app/exchange/import_step.h"

class QLabel;
class QPushButton;

namespace harrowby::app {

class ImportListPanel;

/// What was done, where the backup lies that was made first, and which rows were left out.
class DoneStep final : public ImportStep
{
    Q_OBJECT

public:
    /// The records must outlive it.
    DoneStep(ImportDraft &draft, Records &records, const ImportDesk &desk, QWidget *parent = nullptr);

    /// `isLate`: it was to be stopped when it was being written already.
    void show(const ImportOutcome &outcome, bool isLate);

    [[nodiscard]] QString heading() const override { return QStringLiteral("Done"); }
    [[nodiscard]] QString nextWords() const override { return QStringLiteral("&Done"); }
    void enter() override {}
    [[nodiscard]] Result<void, QString> leave() override { return {}; }

Q_SIGNALS:
    void takeBackWanted();

private:
    QLabel *m_words = nullptr;
    QLabel *m_backup = nullptr;
    QLabel *m_leftOut = nullptr;
    ImportListPanel *m_list = nullptr;
    QPushButton *m_takeBack = nullptr;
};

} // namespace harrowby::app
