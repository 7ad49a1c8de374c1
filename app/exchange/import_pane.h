// SPDX-License-Identifier: MIT
#pragma once

#include "app/catalogue/catalogue_import.h"
#include "app/exchange/import_draft.h"
#include "app/work/work_job.h"

#include <QList>
#include <QWidget>

#include <functional>

class QLabel;
class QPushButton;
class QStackedWidget;

namespace harrowby::app {

class ColumnsStep;
class DoneStep;
class FileStep;
class ImportStep;
class PreviewStep;
struct OpenedList;

/// Brings a file into the store, one step after the other: how it is read, its columns, choices, the preview, and what
/// was done. Until the last but one nothing of the store is written.
class ImportPane final : public QWidget
{
    Q_OBJECT

public:
    /// Records and job, which it shares with the rest of the page, must outlive it. `loss` says what has happened to
    /// the store file once it is lost.
    ImportPane(Records &records, const ImportDesk &desk, WorkJob &job, std::function<QString()> loss,
               QWidget *parent = nullptr);

    /// Reads the file, and begins with it.
    void begin(const QString &path);
    /// Whether something would be lost by closing: a file is being prepared.
    [[nodiscard]] bool isUnderWay() const { return m_step >= 0 && m_step < doneStep; }
    /// Whether its backup is being made or its rows are being written.
    [[nodiscard]] bool isWriting() const { return m_isWriting; }

Q_SIGNALS:
    void fileWanted();
    /// The file could not even be read; why, in words for a person.
    void refused(const QString &words);
    /// Shown from now on.
    void begun();
    /// The person is done, or has had enough.
    void left();
    void takeBackWanted(qint64 id);

private:
    static constexpr int fileStep = 0;
    static constexpr int columnsStep = 1;
    static constexpr int choicesStep = 2;
    static constexpr int previewStep = 3;
    static constexpr int doneStep = 4;

    void createSteps();
    void layOut();
    void goTo(int step);
    void goBack();
    void goOn();
    void cancel();
    void leaveStep();
    void open(const QString &path, const std::function<void(const OpenedList &)> &then);
    void take(ImportFile file);
    void readAgain(const QString &why);
    void settleFigures();
    void preview();
    void carryOut(bool validRows);
    void importOthers();
    void compareAgain();
    void finish(const Imported<ImportOutcome> &outcome);
    void discardPreview();
    void clean();
    void tell(const QString &problem);
    void say(const QString &words);
    [[nodiscard]] bool isLost();

    Records &m_records;
    ImportDesk m_desk;
    WorkJob &m_job;
    std::function<QString()> m_loss;
    ImportDraft m_draft;
    int m_step = -1;
    bool m_isWriting = false;
    FileStep *m_file = nullptr;
    PreviewStep *m_preview = nullptr;
    DoneStep *m_done = nullptr;
    QList<ImportStep *> m_steps;
    QLabel *m_heading = nullptr;
    QStackedWidget *m_stack = nullptr;
    QLabel *m_outcome = nullptr;
    QPushButton *m_cancel = nullptr;
    QPushButton *m_back = nullptr;
    QPushButton *m_next = nullptr;
    QList<std::int64_t> m_cleaning; ///< previews that are to be taken away
    WorkJob m_cleaner;
};

} // namespace harrowby::app
