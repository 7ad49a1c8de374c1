// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

class QLabel;
class QPushButton;

namespace harrowby::app {

/// Says that others can read the store file, and offers to close it to them. Hidden when they cannot.
class StoreAccessLine final : public QWidget
{
    Q_OBJECT

public:
    explicit StoreAccessLine(QString store, QWidget *parent = nullptr);

private:
    void closeStore();

    QString m_store;
    QLabel *m_text = nullptr;
    QPushButton *m_close = nullptr;
};

} // namespace harrowby::app
