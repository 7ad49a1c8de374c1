// SPDX-License-Identifier: MIT
#pragma once

#include "app/catalogue/catalogue_import.h"
#include "app/work/work_job.h"

#include <QList>
#include <QWidget>

class QComboBox;
class QLabel;
class QPushButton;

namespace harrowby::app {

class GridView;
class ImportListModel;
class WorkStrip;

/// The rows of an import, to look through and to save as a file: those that are new, changed, refused …
class ImportListPanel final : public QWidget
{
    Q_OBJECT

public:
    /// The records must outlive it; saving opens its own. The names of its parts begin with `name`.
    ImportListPanel(Records &records, ImportDesk desk, const QString &name, QWidget *parent = nullptr);

    /// The first filter is shown.
    void show(std::int64_t id, ImportKind kind, const QList<RowFilter> &filters);
    /// Shows nothing any more: the import goes away.
    void clear();

private:
    void createParts(const QString &name);
    void layOut();
    void list();
    void followRow();
    void save();
    void saveTo(const QString &path);
    [[nodiscard]] RowFilter filter() const;
    void tell(const QString &words);

    Records &m_records;
    ImportDesk m_desk;
    std::int64_t m_id = 0;
    ImportKind m_kind = ImportKind::Items;
    QComboBox *m_filter = nullptr;
    QPushButton *m_save = nullptr;
    ImportListModel *m_model = nullptr;
    GridView *m_rows = nullptr;
    QLabel *m_words = nullptr; ///< all of the chosen row, or what the saving came to
    WorkJob m_job;
    WorkStrip *m_strip = nullptr;
};

} // namespace harrowby::app
