// SPDX-License-Identifier: MIT
#pragma once

#include "app/catalogue/catalogue_import.h"

#include <QWidget>

class QLabel;
class QPushButton;

namespace harrowby::app {

class GridView;
class PastModel;

/// Where the page begins: import, export, and the imports of the past, which can be taken back.
class StartPane final : public QWidget
{
    Q_OBJECT

public:
    /// The records must outlive it.
    StartPane(Records &records, ImportDesk desk, QWidget *parent = nullptr);

    /// Reads the imports of the past.
    void read();
    void say(const QString &outcome);
    void warn(const QString &problem) { say(u'\u26a0' + QStringLiteral(" ") + problem); }
    [[nodiscard]] const PastImport *find(qint64 id) const;

Q_SIGNALS:
    void importWanted();
    void exportWanted();
    void takeBackWanted(qint64 id);
    void leftListWanted(qint64 id);

private:
    void createParts();
    void layOut();
    void followChoice();
    [[nodiscard]] const PastImport *current() const;

    Records &m_records;
    ImportDesk m_desk;
    QPushButton *m_import = nullptr;
    QPushButton *m_export = nullptr;
    QLabel *m_none = nullptr;
    PastModel *m_model = nullptr;
    GridView *m_list = nullptr;
    QPushButton *m_takeBack = nullptr;
    QPushButton *m_showLeft = nullptr;
    QLabel *m_outcome = nullptr;
    bool m_isUnread = false; ///< when it was last tried
};

} // namespace harrowby::app
