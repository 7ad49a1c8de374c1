// SPDX-License-Identifier: MIT
#pragma once

#include "app/boxes/office_page.h"
#include "app/records/deeds.h"
#include "app/shop/receipt_head.h"

class QCheckBox;
class QLabel;
class QLineEdit;
class QVBoxLayout;

namespace harrowby::app {

/// What stands on a receipt, with a picture of it, and whether the daily report is mailed.
class ReceiptPage final : public OfficePage
{
    Q_OBJECT

public:
    /// The deeds' records must outlive it.
    ReceiptPage(const SignedDeeds &deeds, OfficeSettings settings, QWidget *parent = nullptr);

    [[nodiscard]] std::optional<LeavingQuestion> leaving() const override;

private:
    void createEntries();
    QVBoxLayout *makeForm();
    QVBoxLayout *makePicture();
    [[nodiscard]] ReceiptHead entered() const;
    void showEntered();
    void save();
    void showSaved();
    void tellWhatChanged(const ReceiptHead &before) const;

    OfficeSettings m_settings;
    SignedDeeds m_deeds;
    ReceiptHead m_saved;
    QLineEdit *m_title = nullptr;
    QLineEdit *m_address = nullptr;
    QLineEdit *m_currency = nullptr;
    QCheckBox *m_emailReport = nullptr;
    QLabel *m_outcome = nullptr;
    QLabel *m_picture = nullptr;
};

} // namespace harrowby::app
