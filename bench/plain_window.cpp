// SPDX-License-Identifier: MIT
#include "bench/plain_window.h"

#include "bench/paint_watch.h"
#include "bench/stopwatch.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabBar>
#include <QTreeWidget>

namespace harrowby::bench {

namespace {

bool isPartOfControl(const QWidget &widget)
{
    for (const QWidget *parent = widget.parentWidget(); parent; parent = parent->parentWidget()) {
        if (qobject_cast<const QComboBox *>(parent) || qobject_cast<const QAbstractScrollArea *>(parent) ||
            qobject_cast<const QTabBar *>(parent))
            return true;
    }
    return false;
}

} // namespace

PlainWindow::PlainWindow(const QMainWindow &model) : m_size(model.size())
{
    for (const QWidget *widget : model.findChildren<QWidget *>()) {
        Control control{};
        if (isPartOfControl(*widget) || !kindOf(*widget, control.kind, control.text))
            continue;
        control.place = QRect(widget->mapTo(&model, QPoint()), widget->size());
        control.visible = widget->isVisibleTo(&model);
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
    QWidget *lastVisible = &window;
    for (const Control &control : m_controls) {
        QWidget *widget = create(control, &window);
        widget->setGeometry(control.place);
        widget->setVisible(control.visible);
        // An item view paints on its viewport, and a tab bar may lie under another panel.
        if (control.visible && control.kind == Kind::Button)
            lastVisible = widget;
    }
    PaintWatch paint{&window, lastVisible};
    window.show();
    return paint.wait() ? watch.milliseconds() : -1.0;
}

} // namespace harrowby::bench
