// SPDX-License-Identifier: MIT
#pragma once

#include "app/codes/code_table.h"

#include <QDialog>
#include <QString>

class QFormLayout;
class QLabel;
class QLineEdit;
class QPushButton;

namespace harrowby::app {

class ItemPicker;

/// Adds codes to items, one after the other, typed or scanned; or gives one code to an item.
class CodeDialog final : public QDialog
{
    Q_OBJECT

public:
    /// With a `given` code, it is given to the item that is picked, and the dialog closes. The deeds' records must
    /// outlive it.
    explicit CodeDialog(const SignedDeeds &deeds, ItemCode given = {}, QWidget *parent = nullptr);

    /// A code was added or given.
    [[nodiscard]] bool hasChanged() const { return m_hasChanged; }

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    QFormLayout *makeForm();
    void layOut();
    void act();
    void addCode(const StockItem &item);
    void giveCode(const StockItem &item);
    void refuse(const QString &text);

    CodeTable m_table;
    ItemCode m_given; ///< the code to give; an empty one when codes are added
    bool m_hasChanged = false;
    ItemPicker *m_items;
    QLineEdit *m_code = nullptr;
    QLineEdit *m_units = nullptr;
    QPushButton *m_action = nullptr;
    QLabel *m_outcome = nullptr;
};

} // namespace harrowby::app
