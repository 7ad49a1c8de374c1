// SPDX-License-Identifier: MIT
#pragma once

#include "app/banner/banner.h"

#include <QFrame>

class QLabel;

namespace harrowby::app {

/// A line of text that wraps within a place of fixed height; what does not fit ends in an ellipsis, and the tool tip
/// has all of it.
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

    QLabel *m_label;
    QString m_text;
};

} // namespace harrowby::app
