// SPDX-License-Identifier: MIT
#include "theme/measures.h"
#include "ui/controls.h"
#include "ui/widget_factory.h"
#include "ui/widgets/entry_edit.h"
#include "ui/widgets/panel.h"

#include <QBoxLayout>
#include <QEvent>
#include <QLabel>
#include <QMainWindow>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace harrowby {

namespace {

/// Keeps a panel in the middle of the window, in front of the rest and without taking room from it.
class Centring : public QObject
{
public:
    Centring(QWidget &panel, QWidget &window) : QObject(&panel), m_panel(panel), m_window(window)
    {
        window.installEventFilter(this);
        panel.installEventFilter(this);
    }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        const bool resized = watched == &m_window && event->type() == QEvent::Resize;
        const bool relaid =
            watched == &m_panel && (event->type() == QEvent::LayoutRequest || event->type() == QEvent::Show);
        if (resized || relaid)
            centre();
        return QObject::eventFilter(watched, event);
    }

private:
    void centre()
    {
        const int width = measuresOf(densityOf(m_window.size())).loginWidth;
        const QSize size(width, m_panel.sizeHint().height());
        m_panel.resize(size.boundedTo(m_window.size()));
        m_panel.move((m_window.width() - m_panel.width()) / 2, (m_window.height() - m_panel.height()) / 2);
    }

    QWidget &m_panel;
    QWidget &m_window;
};

} // namespace

void Controls::createLogin(QMainWindow &form)
{
    Frame12 = new Panel(Panel::Kind::Floating, &form);
    Frame12->setObjectName(u"Frame12"_s);
    Frame12->setAccessibleName(u"Login"_s);
    Frame12->hide();
    Text3 = makeEntry(Frame12, u"Text3"_s, u"User name"_s);
    Text4 = makeEntry(Frame12, u"Text4"_s, u"Password"_s);
    Text4->setEchoMode(QLineEdit::Password);
    Command28 = makePrimaryButton(Frame12, u"Command28"_s, u"&Login!"_s);
    Command29 = makeButton(Frame12, u"Command29"_s, u"&Clear"_s);

    QBoxLayout *column = makeColumn(Frame12);
    QLabel *title = makeText(Frame12, u"Harrowby Inventory"_s, u"title"_s);
    title->setAlignment(Qt::AlignCenter);
    column->addWidget(title);
    column->addSpacing(controlGap);
    column->addLayout(captioned(u"User Name"_s, Text3));
    column->addLayout(captioned(u"Password"_s, Text4));
    column->addSpacing(controlGap);
    QBoxLayout *buttons = makeRow();
    buttons->addWidget(Command28, 2);
    buttons->addWidget(Command29, 1);
    column->addLayout(buttons);
    new Centring(*Frame12, form);
}

} // namespace harrowby
