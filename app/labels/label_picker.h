// SPDX-License-Identifier: MIT
#pragma once

#include "app/labels/label_items.h"
#include "app/labels/label_list.h"
#include "app/work/work_job.h"

#include <QDialog>
#include <QTimer>

class QCheckBox;
class QComboBox;
class QLabel;
class QLayout;
class QLineEdit;
class QListWidget;
class QPushButton;

namespace harrowby::app {

class StepEntry;
class WorkStrip;

/// For how many labels of one item.
[[nodiscard]] StepEntry *makeLabelCount(const QString &objectName, const QString &name, QWidget *parent);

/// Adds items to the labels that are to be printed: one by one, or all that are found.
class LabelPicker final : public QDialog
{
    Q_OBJECT

public:
    /// `store`: the file, which is opened once more to read many items on a thread of their own. Records and list must
    /// outlive it.
    LabelPicker(Records &records, QString store, LabelList &list, QWidget *parent = nullptr);

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    void createFinders();
    void createCounts();
    void createButtons();
    void layOut();
    void fillGroups();
    [[nodiscard]] LabelQuery query() const;
    void search();
    void addCurrent();
    void addAll();
    void add(const QList<LabelItem> &items);
    void tellFailure(const DbFailure &failure);

    LabelItems m_items;
    QString m_store;
    LabelList &m_list;
    QList<LabelQuery> m_groups; ///< of the box, without a text
    QList<LabelItem> m_found;   ///< that are listed
    QTimer m_pause;             ///< while somebody types
    QLineEdit *m_entry = nullptr;
    QComboBox *m_group = nullptr;
    QListWidget *m_view = nullptr;
    QLabel *m_count = nullptr;
    StepEntry *m_each = nullptr;
    QCheckBox *m_asInStock = nullptr;
    QPushButton *m_add = nullptr;
    QPushButton *m_addAll = nullptr;
    QPushButton *m_close = nullptr;
    QLabel *m_outcome = nullptr;
    bool m_hasFailed = false; ///< the outcome is that of a failed reading
    WorkStrip *m_strip = nullptr;
    WorkJob m_job; ///< last: its end waits for the work
};

} // namespace harrowby::app
