// SPDX-License-Identifier: MIT
#pragma once

#include "app/boxes/office_page.h"
#include "app/codes/code_table.h"

#include <QList>
#include <QString>

class QHBoxLayout;
class QLabel;
class QLineEdit;
class QPushButton;

namespace harrowby::tables {
class TableView;
} // namespace harrowby::tables

namespace harrowby::app {

/// The codes of the items: looked through, added, given their units, and deleted, also those of items that are gone.
class CodesPage final : public OfficePage
{
    Q_OBJECT

public:
    /// The deeds' records must outlive it.
    explicit CodesPage(const SignedDeeds &deeds, QWidget *parent = nullptr);

    void readAnew() override { (void)read(); }

private:
    QHBoxLayout *makeHead();
    QHBoxLayout *makeButtons();
    QPushButton *addButton(const QString &caption, const QString &name, void (CodesPage::*act)());
    bool read();
    void readAfter(const QString &outcome);
    void list();
    void followChoice();
    /// The entry of the chosen row; null when none is chosen.
    [[nodiscard]] const ItemCode *current() const;

    void addCodes();
    void changeUnits();
    void giveCode();
    void deleteCode();
    void setRules();
    void finish(const Records::Answer<bool> &done, const QString &what, const QString &outcome);

    SignedDeeds m_deeds;
    CodeTable m_table;
    QList<ItemCode> m_codes;
    QLineEdit *m_search = nullptr;
    tables::TableView *m_view = nullptr;
    QLabel *m_count = nullptr;
    QLabel *m_outcome = nullptr;
    QList<QPushButton *> m_forOne; ///< that need a chosen code
};

} // namespace harrowby::app
