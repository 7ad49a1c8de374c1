// SPDX-License-Identifier: MIT
#include "app/office/role_buttons.h"

#include <QHBoxLayout>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace harrowby::app {

RoleButtons::RoleButtons(QWidget *parent) : QWidget(parent)
{
    auto *line = new QHBoxLayout(this);
    line->setContentsMargins({});
    line->setSpacing(8);
    for (qsizetype i = 0; i < userRoles().size(); ++i) {
        const Role &role = userRoles().at(i);
        auto *button = new QPushButton(role.caption, this);
        button->setObjectName(u"role%1"_s.arg(i));
        button->setAccessibleName(role.name);
        button->setCheckable(true);
        const QString words = role.rights.size() == userRights().size() ? u"Every right"_s : titlesOf(role.rights);
        button->setToolTip(words);
        button->setAccessibleDescription(words);
        connect(button, &QPushButton::clicked, this, [this, i] { Q_EMIT pressed(i); });
        m_buttons << button;
        line->addWidget(button, 1);
    }
}

void RoleButtons::mark(const Role *role)
{
    for (qsizetype i = 0; i < m_buttons.size(); ++i) {
        const bool isIt = role == &userRoles().at(i);
        m_buttons.at(i)->setChecked(isIt);
        m_buttons.at(i)->setText((isIt ? u"\u2713 "_s : QString()) + userRoles().at(i).caption);
    }
}

} // namespace harrowby::app
