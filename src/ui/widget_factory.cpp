// SPDX-License-Identifier: MIT
#include "ui/widget_factory.h"

#include "theme/style.h"
#include "ui/widgets/entry_edit.h"
#include "ui/widgets/panel.h"
#include "ui/widgets/pick_list.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QIcon>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace harrowby {

namespace {

constexpr int iconSize = 24;
constexpr int captionGap = 2;

int marginOf(const QWidget &widget)
{
    const auto *panel = qobject_cast<const Panel *>(&widget);
    return panel ? panel->margin() : 0;
}

} // namespace

QString elementName(const QString &array, int index)
{
    return array + u'_' + QString::number(index);
}

QPushButton *makeButton(QWidget *parent, const QString &name, const QString &caption)
{
    auto *button = new QPushButton(caption, parent);
    button->setObjectName(name);
    return button;
}

QPushButton *makePrimaryButton(QWidget *parent, const QString &name, const QString &caption)
{
    QPushButton *button = makeButton(parent, name, caption);
    setStyleWord(button, u"primary"_s);
    return button;
}

QPushButton *makePictureButton(QWidget *parent, const QString &name, const QString &icon, const QString &purpose)
{
    QPushButton *button = makeButton(parent, name, {});
    setStyleWord(button, u"picture"_s);
    button->setIcon(tillIcon(icon));
    button->setIconSize({iconSize, iconSize});
    button->setToolTip(purpose);
    button->setAccessibleName(purpose);
    return button;
}

PickList *makePickList(QWidget *parent, const QString &name, const QString &purpose)
{
    auto *list = new PickList(parent);
    list->setObjectName(name);
    list->setAccessibleName(purpose);
    list->lineEdit()->setAccessibleName(purpose);
    list->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    return list;
}

EntryEdit *makeEntry(QWidget *parent, const QString &name, const QString &purpose)
{
    auto *entry = new EntryEdit(parent);
    entry->setObjectName(name);
    entry->setAccessibleName(purpose);
    return entry;
}

QCheckBox *makeCheckBox(QWidget *parent, const QString &name, const QString &caption)
{
    auto *box = new QCheckBox(caption, parent);
    box->setObjectName(name);
    return box;
}

QLabel *makeText(QWidget *parent, const QString &text, const QString &styleWord)
{
    auto *label = new QLabel(text, parent);
    label->setTextFormat(Qt::PlainText);
    setStyleWord(label, styleWord);
    return label;
}

void setStyleWord(QWidget *widget, const QString &styleWord)
{
    widget->setProperty("styleWord", styleWord);
}

QBoxLayout *captioned(const QString &caption, QWidget *control)
{
    auto *column = new QVBoxLayout;
    column->setSpacing(captionGap);
    QLabel *label = makeText(control->parentWidget(), caption, u"caption"_s);
    label->setBuddy(control);
    column->addWidget(label);
    column->addWidget(control);
    return column;
}

QGridLayout *makeGrid(QWidget *panel)
{
    auto *grid = new QGridLayout(panel);
    const int margin = marginOf(*panel);
    grid->setContentsMargins(margin, margin, margin, margin);
    grid->setSpacing(controlGap);
    return grid;
}

QBoxLayout *makeColumn(QWidget *panel)
{
    auto *column = new QVBoxLayout(panel);
    const int margin = marginOf(*panel);
    column->setContentsMargins(margin, margin, margin, margin);
    column->setSpacing(controlGap);
    return column;
}

QBoxLayout *makeRow()
{
    auto *row = new QHBoxLayout;
    row->setSpacing(controlGap);
    return row;
}

} // namespace harrowby
