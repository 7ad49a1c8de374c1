// SPDX-License-Identifier: MIT
#pragma once

#include "app/banner/banner.h"

#include <QFrame>

class QLabel;

namespace harrowby::app {

/// A text that wraps within a place of fixed height, in smaller letters where it has to; what does not fit even so ends
/// in an ellipsis, and the tool tip has all of it.
class BannerView final : public QFrame
{
    Q_OBJECT

public:
    explicit BannerView(QWidget *parent = nullptr);

    void showLine(const QString &text, BannerTone tone);

protected:
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void fit();
    void setSmall(bool isSmall);

    QLabel *m_label;
    QString m_text;
    bool m_isFitting = false;
};

} // namespace harrowby::app
