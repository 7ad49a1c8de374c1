// SPDX-License-Identifier: MIT
#include "app/labels/step_entry.h"

#include "input/touch_target.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr int digits = 5;

} // namespace

StepEntry::StepEntry(const QString &objectName, const QString &name, int decimals, QWidget *parent) :
    QWidget(parent), m_decimals(decimals)
{
    m_entry = new QLineEdit(this);
    m_entry->setObjectName(objectName);
    m_entry->setAccessibleName(name);
    m_entry->setAlignment(Qt::AlignCenter);
    m_entry->setInputMethodHints(decimals > 0 ? Qt::ImhFormattedNumbersOnly : Qt::ImhDigitsOnly);
    m_entry->setMinimumWidth(std::max(touchHeight, digits * m_entry->fontMetrics().averageCharWidth() + 18));
    m_entry->installEventFilter(this);
    connect(m_entry, &QLineEdit::textEdited, this, &StepEntry::follow);
    connect(m_entry, &QLineEdit::editingFinished, this, &StepEntry::showValue);
    m_less = makeKey(u"\u2212"_s, u"%1, less"_s.arg(name), -1);
    m_more = makeKey(u"+"_s, u"%1, more"_s.arg(name), 1);
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(8);
    row->addWidget(m_less);
    row->addWidget(m_entry, 1);
    row->addWidget(m_more);
    setFocusProxy(m_entry);
    showValue();
}

QPushButton *StepEntry::makeKey(const QString &caption, const QString &name, int by)
{
    auto *key = new QPushButton(caption, this);
    key->setProperty("styleWord", u"way"_s); // little blank beside the sign
    key->setObjectName(m_entry->objectName() + (by < 0 ? u"Less"_s : u"More"_s));
    key->setAccessibleName(name);
    key->setFixedWidth(touchHeight);
    key->setFocusPolicy(Qt::NoFocus);
    key->setAutoDefault(false);
    key->setAutoRepeat(true);
    connect(key, &QPushButton::clicked, this, [this, by] { step(by); });
    return key;
}

void StepEntry::setRange(int least, int most)
{
    m_least = least;
    m_most = std::max(least, most);
    setValue(m_value);
}

void StepEntry::setValue(int value)
{
    m_value = std::clamp(value, m_least, m_most);
    showValue();
}

void StepEntry::step(int by)
{
    take(m_value + by);
    showValue();
}

void StepEntry::take(int value)
{
    const int taken = std::clamp(value, m_least, m_most);
    if (taken == m_value)
        return;
    m_value = taken;
    m_less->setEnabled(m_value > m_least);
    m_more->setEnabled(m_value < m_most);
    Q_EMIT changed(m_value);
}

/// What is no figure yet changes nothing; the end of the typing puts the value back.
void StepEntry::follow(const QString &typed)
{
    bool isFigure = false;
    const double figure = QString(typed).replace(u',', u'.').toDouble(&isFigure) * std::pow(10, m_decimals);
    if (isFigure && figure >= m_least && std::abs(figure) < 1e6)
        take(static_cast<int>(std::lround(figure)));
}

void StepEntry::showValue()
{
    const QString text = textOf(m_value);
    if (m_entry->text() != text)
        m_entry->setText(text);
    m_less->setEnabled(m_value > m_least);
    m_more->setEnabled(m_value < m_most);
}

QString StepEntry::textOf(int value) const
{
    return QString::number(value / std::pow(10, m_decimals), 'f', m_decimals);
}

bool StepEntry::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress)
        return QWidget::eventFilter(watched, event);
    const int key = dynamic_cast<const QKeyEvent &>(*event).key();
    if (key != Qt::Key_Up && key != Qt::Key_Down)
        return QWidget::eventFilter(watched, event);
    step(key == Qt::Key_Up ? 1 : -1);
    return true;
}

} // namespace harrowby::app
