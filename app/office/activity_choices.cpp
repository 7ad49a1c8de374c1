// SPDX-License-Identifier: MIT
#include "app/office/activity_choices.h"

#include <QComboBox>
#include <QDateEdit>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

enum class Days {
    Today,
    Yesterday,
    Week,
    Month,
    All,
    Chosen,
};

} // namespace

ActivityChoices::ActivityChoices(QWidget *parent) : QWidget(parent)
{
    createDays();
    createOthers();
    auto *rows = new QVBoxLayout(this);
    rows->setContentsMargins({});
    rows->setSpacing(8);
    rows->addLayout(makeFirstRow());
    rows->addLayout(makeSecondRow());
    followDays();
}

QComboBox *ActivityChoices::makeChoice(const QString &name, const QString &spoken)
{
    auto *choice = new QComboBox(this);
    choice->setObjectName(name);
    choice->setAccessibleName(spoken);
    choice->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    choice->setMinimumContentsLength(10);
    return choice;
}

void ActivityChoices::createDays()
{
    m_days = makeChoice(u"activityDays"_s, u"Days"_s);
    for (const auto &[title, days] : {std::pair(u"Today"_s, Days::Today),
                                      {u"Yesterday"_s, Days::Yesterday},
                                      {u"The last 7 days"_s, Days::Week},
                                      {u"The last 30 days"_s, Days::Month},
                                      {u"All days"_s, Days::All},
                                      {u"From \u2026 to \u2026"_s, Days::Chosen}})
        m_days->addItem(title, static_cast<int>(days));
    m_days->setCurrentIndex(m_days->findData(static_cast<int>(Days::Week)));
    connect(m_days, &QComboBox::activated, this, [this] {
        followDays();
        Q_EMIT changed();
    });
    const auto makeDay = [this](const QString &name, const QString &spoken) {
        auto *day = new QDateEdit(QDate::currentDate(), this);
        day->setObjectName(name);
        day->setAccessibleName(spoken);
        day->setDisplayFormat(u"yyyy-MM-dd"_s);
        day->setCalendarPopup(true);
        connect(day, &QDateEdit::dateChanged, this, &ActivityChoices::changed);
        return day;
    };
    m_from = makeDay(u"activityFrom"_s, u"First day"_s);
    m_to = makeDay(u"activityTo"_s, u"Last day"_s);
    m_between = new QLabel(u"to"_s, this);
}

void ActivityChoices::createOthers()
{
    m_kind = makeChoice(u"activityKind"_s, u"Kind"_s);
    m_kind->addItem(u"All kinds"_s, -1);
    for (const ActivityKindWords &kind : activityKinds())
        m_kind->addItem(kind.title, static_cast<int>(kind.kind));
    m_user = makeChoice(u"activityUser"_s, u"User"_s);
    offerUsers({});
    for (const QComboBox *choice : {m_kind, m_user})
        connect(choice, &QComboBox::activated, this, &ActivityChoices::changed);
    m_text = new QLineEdit(this);
    m_text->setObjectName(u"activityText"_s);
    m_text->setAccessibleName(u"Text to find"_s);
    m_text->setPlaceholderText(u"Item, purchase, any text"_s);
    m_text->setClearButtonEnabled(true);
    connect(m_text, &QLineEdit::returnPressed, this, &ActivityChoices::changed);
    m_find = new QPushButton(u"&Find"_s, this);
    m_find->setObjectName(u"findActivity"_s);
    connect(m_find, &QPushButton::clicked, this, &ActivityChoices::changed);
}

QHBoxLayout *ActivityChoices::makeFirstRow()
{
    auto *row = new QHBoxLayout;
    row->setSpacing(8);
    row->addWidget(m_days, 2);
    row->addWidget(m_from);
    row->addWidget(m_between);
    row->addWidget(m_to);
    row->addWidget(m_kind, 3);
    return row;
}

QHBoxLayout *ActivityChoices::makeSecondRow()
{
    auto *row = new QHBoxLayout;
    row->setSpacing(8);
    row->addWidget(m_user, 2);
    row->addWidget(m_text, 3);
    row->addWidget(m_find);
    return row;
}

void ActivityChoices::followDays()
{
    const bool isChosen = m_days->currentData().toInt() == static_cast<int>(Days::Chosen);
    for (QWidget *part :
         {static_cast<QWidget *>(m_from), static_cast<QWidget *>(m_between), static_cast<QWidget *>(m_to)})
        part->setVisible(isChosen);
}

ActivityDays ActivityChoices::days() const
{
    constexpr int week = 7;
    constexpr int month = 30;
    const QDate today = QDate::currentDate();
    switch (static_cast<Days>(m_days->currentData().toInt())) {
    case Days::Today:
        return {today, today};
    case Days::Yesterday:
        return {today.addDays(-1), today.addDays(-1)};
    case Days::Week:
        return {today.addDays(1 - week), today};
    case Days::Month:
        return {today.addDays(1 - month), today};
    case Days::All:
        return {};
    case Days::Chosen:
        return {qMin(m_from->date(), m_to->date()), qMax(m_from->date(), m_to->date())};
    }
    return {};
}

ActivityFilter ActivityChoices::filter() const
{
    ActivityFilter filter;
    filter.days = days();
    if (const int kind = m_kind->currentData().toInt(); kind >= 0)
        filter.kind = static_cast<ActivityKind>(kind);
    filter.onlyUnknown = m_user->currentIndex() == 1;
    filter.who = m_user->currentData().toString();
    filter.text = m_text->text().trimmed();
    return filter;
}

void ActivityChoices::offerUsers(const QStringList &users)
{
    const QSignalBlocker quietly(m_user);
    const QString chosen = m_user->currentText();
    m_user->clear();
    m_user->addItem(u"All users"_s, QString());
    m_user->addItem(u"User not known"_s, QString());
    for (const QString &user : users)
        m_user->addItem(user, user);
    m_user->setCurrentIndex(qMax(0, m_user->findText(chosen)));
}

} // namespace harrowby::app
