// SPDX-License-Identifier: MIT
#pragma once

#include "app/activity/activity_search.h"
#include "app/boxes/office_page.h"
#include "app/csv/csv_form.h"
#include "app/export/export.h"
#include "app/records/deeds.h"
#include "app/work/work_job.h"

#include <QList>
#include <QString>

#include <functional>
#include <memory>

class QHBoxLayout;
class QLabel;
class QPushButton;

namespace harrowby::tables {
struct Table;
class TableView;
} // namespace harrowby::tables

namespace harrowby::app {

class ActivityChoices;
class WorkStrip;

/// The office's page that finds who did what: by days, kind, user and text, newest first, in pages that "More" adds.
class ActivityPage final : public OfficePage
{
    Q_OBJECT

public:
    /// Gives the path to save at, empty for none. `suggestion` is a path.
    using FileChooser = std::function<QString(QWidget *parent, const QString &suggestion)>;

    /// `store`: the file, which is opened once more for each search. The records of the deeds must outlive the page.
    ActivityPage(SignedDeeds deeds, QString store, QWidget *parent = nullptr);

    /// Asks this instead of the person.
    void setFileChooser(FileChooser chooser) { m_chooseFile = std::move(chooser); }
    void readAnew() override;

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    struct Found
    {
        QList<ActivityEntry> entries;
        QStringList users; ///< to choose from; none when they were not asked for
        QString problem;   ///< in words for a person
    };

    QHBoxLayout *makeEnd();
    void search();
    void more();
    void look(bool withUsers);
    void take(Result<Found, QString> found);
    void list();
    void showTable(tables::Table table);
    void hideColumns();
    void sayCount();
    void showDetail();
    void followBusy(bool busy);
    void save();
    void saved(const ExportEnd &end, const QString &target);

    SignedDeeds m_deeds;
    QString m_store;
    FileChooser m_chooseFile;
    WorkJob m_job;
    std::shared_ptr<ActivitySearch> m_search;
    QList<ActivityEntry> m_entries;
    bool m_again = false; ///< something else was chosen while the job ran
    bool m_saving = false;
    bool m_hasUsers = false;

    ActivityChoices *m_choices = nullptr;
    tables::TableView *m_view = nullptr;
    QLabel *m_detail = nullptr;
    QLabel *m_outcome = nullptr;
    QPushButton *m_more = nullptr;
    QPushButton *m_save = nullptr;
    WorkStrip *m_strip = nullptr;
};

} // namespace harrowby::app
