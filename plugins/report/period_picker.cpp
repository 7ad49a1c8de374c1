// SPDX-License-Identifier: MIT
#include "plugins/report/period_picker.h"

#include <QCalendarWidget>
#include <QComboBox>
#include <QDateEdit>
#include <QHBoxLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace harrowby::report {

namespace {

constexpr QSize calendarSize(364, 372);

} // namespace

QWidget *captioned(const QString &caption, QWidget *control, QWidget *parent)
{
    auto *both = new QWidget(parent);
    auto *rows = new QVBoxLayout(both);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(2);
    auto *label = new QLabel(caption, both);
    label->setProperty("styleWord", u"caption"_s);
    label->setBuddy(control);
    rows->addWidget(label);
    rows->addWidget(control);
    return both;
}

PeriodPicker::PeriodPicker(const QDate &now, QWidget *parent) : QWidget(parent), m_now(now)
{
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(8);
    createChoice(*row);
    m_from = createDay(*row, u"from"_s, u"&From"_s);
    m_to = createDay(*row, u"to"_s, u"&To"_s);
    m_choice->setCurrentIndex(ThisMonth);
    showPeriod(thisMonth(m_now));
    connect(m_choice, &QComboBox::currentIndexChanged, this, &PeriodPicker::choose);
}

void PeriodPicker::createChoice(QHBoxLayout &row)
{
    m_choice = new QComboBox(this);
    m_choice->setObjectName(u"period"_s);
    m_choice->setAccessibleName(u"Period"_s);
    m_choice->addItems({u"Today"_s, u"This week"_s, u"This month"_s, u"From - to"_s});
    row.addWidget(captioned(u"&Period"_s, m_choice, this));
}

QDateEdit *PeriodPicker::createDay(QHBoxLayout &row, const QString &name, const QString &caption)
{
    auto *day = new QDateEdit(this);
    day->setObjectName(name);
    day->setAccessibleName(name == "from"_L1 ? u"First day"_s : u"Last day"_s);
    day->setLocale(QLocale(QLocale::English));
    day->setDisplayFormat(u"dd MMM yyyy"_s);
    day->setDateRange(firstDay(), lastDay());
    day->setCalendarPopup(true);
    constexpr int arrow = 64; // and the frame
    day->setMinimumWidth(fontMetrics().horizontalAdvance(u"00 MMM 0000"_s) * 5 / 4 + arrow);
    day->calendarWidget()->setFirstDayOfWeek(Qt::Monday);
    day->calendarWidget()->setMinimumSize(calendarSize); // a day of it suits a thumb
    connect(day, &QDateEdit::dateChanged, this, [this, day] { dayEdited(*day); });
    row.addWidget(captioned(caption, day, this));
    return day;
}

Period PeriodPicker::period() const
{
    return {m_from->date(), m_to->date()};
}

void PeriodPicker::setNow(const QDate &now)
{
    if (now == m_now)
        return;
    m_now = now;
    choose(m_choice->currentIndex());
}

void PeriodPicker::choose(int choice)
{
    if (choice == Today)
        showPeriod(today(m_now));
    else if (choice == ThisWeek)
        showPeriod(thisWeek(m_now));
    else if (choice == ThisMonth)
        showPeriod(thisMonth(m_now));
    else
        m_from->setFocus();
    Q_EMIT changed();
}

/// The other day follows when the first one would come after the last one.
void PeriodPicker::dayEdited(const QDateEdit &edited)
{
    if (m_from->date() > m_to->date()) {
        QDateEdit &other = &edited == m_from ? *m_to : *m_from;
        const QSignalBlocker quiet(other);
        other.setDate(edited.date());
    }
    const QSignalBlocker quiet(m_choice);
    m_choice->setCurrentIndex(FromTo);
    Q_EMIT changed();
}

void PeriodPicker::showPeriod(const Period &period)
{
    const QSignalBlocker quietFrom(m_from);
    const QSignalBlocker quietTo(m_to);
    m_from->setDate(period.from);
    m_to->setDate(period.to);
}

} // namespace harrowby::report
