// SPDX-License-Identifier: MIT
#pragma once

#include <QDialog>
#include <QString>

class QLabel;

namespace harrowby::app {

/// Says what is waited for while a store is opened. Opening ends by itself, so there is nothing to press.
class OpeningWindow : public QDialog
{
public:
    explicit OpeningWindow(const QString &text);

    void say(const QString &text);
    void reject() override {}

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    QLabel *m_text = nullptr;
};

} // namespace harrowby::app
