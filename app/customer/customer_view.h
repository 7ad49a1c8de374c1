// SPDX-License-Identifier: MIT
#pragma once

#include "app/customer/customer_page.h"

#include <QWidget>

namespace harrowby::app {

/// The window on the customer's screen. It takes no focus, no key and no touch. Sizes follow its shorter side, so that
/// the cart can be read at two metres on a screen of ten inches.
class CustomerView final : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(QString text READ text) // what it says, for those who cannot look

public:
    CustomerView();

    void setPage(const CustomerPage &page);
    [[nodiscard]] QString text() const { return customerTexts(m_page).join(u'\n'); }

protected:
    void paintEvent(QPaintEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    CustomerPage m_page;
};

} // namespace harrowby::app
