// SPDX-License-Identifier: MIT
#pragma once

#include "app/backup/store_contents.h"
#include "app/work/work_job.h"

#include <QDialog>
#include <QString>

#include <functional>
#include <utility>

class QGridLayout;
class QLabel;
class QLineEdit;
class QPushButton;

namespace harrowby::app {

/// Lets a person choose a backup and see what it holds beside what the store holds now. Accepted once she wants it in
/// the store's place and nobody else has the store open; the restore itself is made when the office has let go of it.
class RestoreDialog final : public QDialog
{
    Q_OBJECT

public:
    /// `file` is looked into at once unless it is empty.
    RestoreDialog(QString store, const StoreContents &now, const QString &file, QWidget *parent);

    /// The backup that is to be restored.
    [[nodiscard]] const QString &backup() const { return m_backup; }

    /// How it finds out why the store cannot be replaced now, such as who has it open, in words; empty when it can. By
    /// itself it looks at a store file.
    void setObstacleFinder(std::function<QString()> find) { m_findObstacle = std::move(find); }

    void accept() override;

private:
    void createControls();
    void layOut();
    [[nodiscard]] QGridLayout *makeTable();
    void choose();
    void look();
    void show(const Result<StoreContents, QString> &found);
    void fill(int column, const StoreContents *contents);
    [[nodiscard]] QString question() const;

    QString m_store;
    std::function<QString()> m_findObstacle;
    StoreContents m_now;
    QString m_backup;       ///< what was looked into and can be restored; empty otherwise
    StoreContents m_inside; ///< of it
    QLineEdit *m_file = nullptr;
    QPushButton *m_choose = nullptr;
    QPushButton *m_look = nullptr;
    QPushButton *m_restore = nullptr;
    QLabel *m_outcome = nullptr;
    QList<QList<QLabel *>> m_cells; ///< by column, then by row
    WorkJob m_job;                  ///< last, so that it ends before what its end touches is destroyed
};

} // namespace harrowby::app
