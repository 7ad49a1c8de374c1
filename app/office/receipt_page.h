// SPDX-License-Identifier: MIT
#pragma once

#include "app/boxes/office_page.h"
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
    explicit ReceiptPage(OfficeSettings settings, QWidget *parent = nullptr);

    [[nodiscard]] std::optional<LeavingQuestion> leaving() const override;

private:
    void createEntries();
    QVBoxLayout *makeForm();
    QVBoxLayout *makePicture();
    [[nodiscard]] ReceiptHead entered() const;
    void showEntered();
    void save();

    OfficeSettings m_settings;
    ReceiptHead m_saved;
    QLineEdit *m_title = nullptr;
    QLineEdit *m_address = nullptr;
    QLineEdit *m_currency = nullptr;
    QCheckBox *m_emailReport = nullptr;
    QLabel *m_outcome = nullptr;
    QLabel *m_picture = nullptr;
};

} // namespace harrowby::app
