// SPDX-License-Identifier: MIT
#pragma once

#include "app/boxes/office_page.h"
#include "app/catalogue/catalogue_import.h"
#include "app/work/work_job.h"

#include <functional>

class QStackedWidget;

namespace harrowby::app {

class ExportPane;
class ImportPane;
class StartPane;
class WorkStrip;

/// The office's page "Catalogue": exports, imports, and what was imported before. A file can be dragged onto it.
class CataloguePage final : public OfficePage
{
    Q_OBJECT

public:
    /// The records must outlive it. `loss` says what has happened to the store file once it is lost, and nothing
    /// before.
    CataloguePage(Records &records, const ImportDesk &desk, bool isAdministrator, std::function<QString()> loss = {},
                  QWidget *parent = nullptr);
    ~CataloguePage() override;

    [[nodiscard]] std::optional<LeavingQuestion> leaving() const override;
    void readAnew() override;

protected:
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    void layOut();
    void goHome(const QString &outcome = {});
    void chooseFile();
    void begin(const QString &path);
    void takeBack(qint64 id);
    void finishTakingBack(qint64 id, const Imported<ImportOutcome> &outcome);
    void showNotTakenBack(qint64 id);
    void openExport();

    Records &m_records;
    ImportDesk m_desk;
    std::function<QString()> m_loss;
    WorkJob m_job;
    StartPane *m_start = nullptr;
    ImportPane *m_import = nullptr;
    ExportPane *m_export = nullptr;
    QStackedWidget *m_stack = nullptr;
    WorkStrip *m_strip = nullptr;
};

} // namespace harrowby::app
