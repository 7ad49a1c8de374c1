// SPDX-License-Identifier: MIT
#pragma once

#include "app/boxes/office_page.h"
#include "app/cash/cash_choices.h"
#include "app/shop/office_settings.h"

class QLabel;
class QLayout;
class QLineEdit;
class QPushButton;
class QVBoxLayout;

namespace harrowby::app {

/// The office's page for cash: how customers may pay in this shop, this machine's drawer, and payments that found no
/// purchase.
class CashPage final : public OfficePage
{
    Q_OBJECT

public:
    /// The deeds' records must outlive it.
    CashPage(const SignedDeeds &deeds, OfficeSettings settings, QWidget *parent = nullptr);

    [[nodiscard]] std::optional<LeavingQuestion> leaving() const override;
    void readAnew() override;

private:
    void createEntries();
    QLayout *makeShop();
    QLayout *makeMachine();
    QLayout *makeOpen();
    QLayout *makeEnd();
    QLineEdit *makeEntry(const QString &objectName, const QString &spoken, const QString &text);
    void save();
    [[nodiscard]] bool saveChoices(const CashChoices &choices);
    [[nodiscard]] bool saveDrawer(const QString &name);
    void showSaved();
    void showChangedMeanwhile();
    void countOpen();
    void showOpen();
    void chooseDrawer();

    SignedDeeds m_deeds;
    OfficeSettings m_settings;
    CashChoices m_saved;
    QString m_savedDrawer;
    QLineEdit *m_ways = nullptr;
    QLineEdit *m_notes = nullptr;
    QLineEdit *m_drawer = nullptr;
    QLabel *m_outcome = nullptr;
    QLabel *m_openWords = nullptr;
    QPushButton *m_open = nullptr;
};

} // namespace harrowby::app
