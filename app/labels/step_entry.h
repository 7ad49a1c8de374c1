// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QWidget>

class QLineEdit;
class QPushButton;

namespace harrowby::app {

/// A figure with a key on either side that makes it less or more, for fingers; typed, or stepped by the arrow keys,
/// too. Tab reaches the entry alone.
class StepEntry final : public QWidget
{
    Q_OBJECT

public:
    /// `name`: what a screen reader says of it. `decimals`: 1 for tenths, in which the figure counts then.
    StepEntry(const QString &objectName, const QString &name, int decimals = 0, QWidget *parent = nullptr);

    void setRange(int least, int most);
    void setValue(int value); ///< says nothing
    [[nodiscard]] int value() const { return m_value; }
    [[nodiscard]] QLineEdit *entry() const { return m_entry; }

Q_SIGNALS:
    /// By a person.
    void changed(int value);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QPushButton *makeKey(const QString &caption, const QString &name, int by);
    void step(int by);
    void take(int value);
    void follow(const QString &typed);
    void showValue();
    [[nodiscard]] QString textOf(int value) const;

    int m_decimals;
    int m_least = 1;
    int m_most = 1;
    int m_value = 1;
    QLineEdit *m_entry = nullptr;
    QPushButton *m_less = nullptr;
    QPushButton *m_more = nullptr;
};

} // namespace harrowby::app
