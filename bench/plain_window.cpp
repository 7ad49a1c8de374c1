// SPDX-License-Identifier: MIT
#include "bench/plain_window.h"

#include "bench/paint_watch.h"
#include "bench/stopwatch.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QHash>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabBar>
#include <QTreeWidget>

namespace harrowby::bench {

namespace {

constexpr int controlsPerRow = 3;

bool isPartOfControl(const QWidget &widget)
{
    for (const QWidget *parent = widget.parentWidget(); parent; parent = parent->parentWidget()) {
        if (qobject_cast<const QComboBox *>(parent) || qobject_cast<const QAbstractScrollArea *>(parent) ||
            qobject_cast<const QTabBar *>(parent))
            return true;
    }
    return false;
}

int panelOf(const QWidget &widget, const QHash<const QWidget *, int> &panels)
{
    for (const QWidget *parent = widget.parentWidget(); parent; parent = parent->parentWidget()) {
        if (const auto panel = panels.constFind(parent); panel != panels.cend())
            return *panel;
    }
    return -1;
}

/// Into the panel's layout, a few controls a row.
void place(QWidget &widget, QWidget &panel)
{
    auto *layout = qobject_cast<QGridLayout *>(panel.layout());
    if (!layout)
        layout = new QGridLayout(&panel);
    const int place = layout->count();
    layout->addWidget(&widget, place / controlsPerRow, place % controlsPerRow);
}

} // namespace

PlainWindow::PlainWindow(const QMainWindow &model) : m_size(model.size())
{
    QHash<const QWidget *, int> panels;
    // Parents come before their children.
    for (const QWidget *widget : model.findChildren<QWidget *>()) {
        Control control{};
        if (isPartOfControl(*widget) || !kindOf(*widget, control.kind, control.text))
            continue;
        control.panel = panelOf(*widget, panels);
        if (control.kind == Kind::Frame)
            panels.insert(widget, static_cast<int>(m_controls.size()));
        m_controls.push_back(control);
    }
}

bool PlainWindow::kindOf(const QWidget &widget, Kind &kind, QString &text)
{
    const auto is = [&](Kind found, const QString &itsText) {
        kind = found;
        text = itsText;
        return true;
    };
    if (const auto *box = qobject_cast<const QCheckBox *>(&widget))
        return is(Kind::CheckBox, box->text());
    if (const auto *button = qobject_cast<const QAbstractButton *>(&widget))
        return is(Kind::Button, button->text());
    if (const auto *combo = qobject_cast<const QComboBox *>(&widget))
        return is(Kind::ComboBox, combo->currentText());
    if (const auto *edit = qobject_cast<const QLineEdit *>(&widget))
        return is(Kind::LineEdit, edit->text());
    if (qobject_cast<const QTabBar *>(&widget))
        return is(Kind::Tabs, {});
    if (qobject_cast<const QPlainTextEdit *>(&widget))
        return is(Kind::Text, {});
    if (qobject_cast<const QAbstractItemView *>(&widget))
        return is(Kind::List, {});
    if (const auto *label = qobject_cast<const QLabel *>(&widget))
        return is(Kind::Label, label->text());
    return qobject_cast<const QFrame *>(&widget) && is(Kind::Frame, {});
}

QWidget *PlainWindow::create(const Control &control, QWidget *parent)
{
    switch (control.kind) {
    case Kind::Label:
        return new QLabel(control.text, parent);
    case Kind::Button:
        return new QPushButton(control.text, parent);
    case Kind::CheckBox:
        return new QCheckBox(control.text, parent);
    case Kind::LineEdit:
        return new QLineEdit(control.text, parent);
    case Kind::List:
        return new QTreeWidget(parent);
    case Kind::Text:
        return new QPlainTextEdit(parent);
    case Kind::Frame:
        return new QFrame(parent);
    case Kind::Tabs: {
        auto *tabs = new QTabBar(parent);
        for (int i = 0; i < 3; ++i)
            tabs->addTab(QStringLiteral("Tab"));
        return tabs;
    }
    case Kind::ComboBox: {
        auto *combo = new QComboBox(parent);
        combo->setEditable(true);
        combo->setEditText(control.text);
        return combo;
    }
    }
    return nullptr;
}

double PlainWindow::show() const
{
    const Stopwatch watch;
    QMainWindow window;
    window.resize(m_size);
    auto *stage = new QWidget(&window);
    window.setCentralWidget(stage);
    std::vector<QWidget *> widgets;
    for (const Control &control : m_controls) {
        QWidget *panel = control.panel < 0 ? stage : widgets.at(static_cast<std::size_t>(control.panel));
        widgets.push_back(create(control, panel));
        place(*widgets.back(), *panel);
    }
    PaintWatch paint{&window, stage};
    window.show();
    return paint.wait() ? watch.milliseconds() : -1.0;
}

} // namespace harrowby::bench
