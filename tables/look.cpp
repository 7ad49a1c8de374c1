// SPDX-License-Identifier: MIT
#include "tables/look.h"

#include "spoken/spoken.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QEvent>
#include <QFormLayout>
#include <QGuiApplication>
#include <QLabel>
#include <QPushButton>
#include <QWidget>

#include <cmath>
#include <utility>

using namespace Qt::StringLiterals;

// Resources of a static library are not registered by themselves; the macro has to stand outside any namespace.
static void registerResources()
{
    Q_INIT_RESOURCE(harrowby_tables);
}

namespace harrowby::tables {

namespace {

/// The first colour with this share of the second one in it.
QColor mixed(const QColor &base, const QColor &other, double share)
{
    const auto channel = [share](int from, int to) {
        return static_cast<int>(std::lround(from + (to - from) * share));
    };
    return {channel(base.red(), other.red()), channel(base.green(), other.green()), channel(base.blue(), other.blue())};
}

/// Of a list that drops down; where the screen has less room, it scrolls.
constexpr int mostEntries = 24;

constexpr auto sheetTemplate = R"(
QDialog { background: @ground@; }
QLabel, QCheckBox, QPushButton, QComboBox, QDateEdit, QLineEdit, QProgressBar, QListView, QTabBar {
    font-size: 11pt; color: @text@;
}
QLabel { background: transparent; }
QLabel[look="caption"] { color: @muted@; font-size: 9.5pt; }
QLabel[look="totals"] { font-size: 12.5pt; font-weight: bold; }
QLabel[look="field"] { min-height: 46px; } /* as high as an entry */
QLabel[look="message"] { font-size: 14.5pt; color: @muted@; }

QPushButton { background: @field@; border: 1px solid @edge@; border-radius: 9px; min-height: 42px; padding: 1px 14px; outline: none; }
QPushButton:hover { border-color: @accent@; background: @tile@; }
QPushButton:pressed { background: @selection@; border-color: @accent@; }
QPushButton:focus { border: 3px solid @accent@; padding: 0px 12px; min-height: 40px; }
QPushButton:disabled { color: @muted@; background: @tile@; border: 1px solid @border@; }
QPushButton[look="primary"] { background: @accent@; color: @on-accent@; border-color: @accent@; font-weight: bold; }
QPushButton[look="primary"]:hover, QPushButton[look="primary"]:pressed { background: @accent-pressed@; }
QPushButton[look="primary"]:focus { border: 3px solid @text@; }
QPushButton[look="primary"]:disabled { color: @muted@; background: @tile@; border: 1px solid @border@; }

QMessageBox {
    messagebox-critical-icon: url(:/harrowby/tables/box-critical-@shade@.svg);
    messagebox-information-icon: url(:/harrowby/tables/box-information-@shade@.svg);
    messagebox-question-icon: url(:/harrowby/tables/box-question-@shade@.svg);
    messagebox-warning-icon: url(:/harrowby/tables/box-warning-@shade@.svg);
    icon-size: 48px;
}
QDialogButtonBox { dialogbuttonbox-buttons-have-icons: 0; }
QDialogButtonBox QPushButton { min-width: 84px; }

QLineEdit {
    background: @field@; border: 1px solid @edge@; border-radius: 9px; min-height: 42px; padding: 1px 8px;
    selection-background-color: @accent@; selection-color: @on-accent@;
}
QLineEdit:focus { border: 2px solid @accent@; padding: 0px 7px; }
QLineEdit:disabled, QComboBox:disabled { color: @muted@; background: @tile@; border-color: @border@; }
QComboBox { combobox-popup: 0; } /* below or above the box, from the first entry on, and in rows of the list's style */
QComboBox, QDateEdit {
    background: @field@; border: 1px solid @edge@; border-radius: 9px; min-height: 42px; padding: 1px 0px 1px 8px;
    selection-background-color: @accent@; selection-color: @on-accent@;
}
QComboBox:focus, QComboBox:on, QDateEdit:focus { border: 2px solid @accent@; padding: 0px 0px 0px 7px; }
QDateEdit QLineEdit, QDateEdit QLineEdit:focus {
    border: none; border-radius: 0px; min-height: 0px; padding: 0px; background: transparent;
}
QComboBox::drop-down, QDateEdit::drop-down {
    border: none; width: 40px; subcontrol-origin: padding; subcontrol-position: center right;
}
QComboBox::down-arrow, QDateEdit::down-arrow {
    image: url(:/harrowby/tables/down-@shade@.svg); width: 20px; height: 20px;
}
QComboBox QAbstractItemView {
    background: @field@; color: @text@; border: 1px solid @edge@; outline: none;
    selection-background-color: @selection@; selection-color: @text@;
}
QComboBox QAbstractItemView::item { min-height: 44px; border: none; padding: 0px 8px; }
QComboBox QAbstractItemView::item:selected { background: @selection@; color: @text@; }

QCheckBox { min-height: 44px; spacing: 10px; border: 2px solid transparent; border-radius: 9px; padding: 0px 4px; }
QCheckBox::indicator {
    width: 24px; height: 24px; border: 2px solid @edge@; border-radius: 6px; background: @field@;
}
QCheckBox::indicator:checked {
    background: @accent@; border-color: @accent@; image: url(:/harrowby/tables/check-@shade@.svg);
}
QCheckBox::indicator:disabled { background: @tile@; border-color: @border@; }
QCheckBox::indicator:checked:disabled { background: @muted@; border-color: @muted@; }
QCheckBox:focus { border-color: @accent@; min-height: 44px; padding: 0px 4px; }
QCheckBox:disabled { color: @muted@; }

QTabBar { qproperty-drawBase: 0; }
QTabBar::tab {
    background: @field@; border: 1px solid @edge@; border-radius: 9px; min-height: 42px; min-width: 120px;
    padding: 1px 13px; margin: 0px 8px 0px 0px;
}
QTabBar::tab:hover { border-color: @accent@; }
QTabBar::tab:selected { background: @accent@; color: @on-accent@; border-color: @accent@; font-weight: bold; }
QTabBar::tab:selected:focus { border: 3px solid @text@; padding: 0px 11px; min-height: 40px; }

QListWidget {
    background: @field@; border: 1px solid @border@; border-radius: 9px; outline: none;
    selection-background-color: @selection@; selection-color: @text@;
}
QListWidget:focus { border: 2px solid @accent@; }
QListWidget::item { min-height: 48px; border: none; padding: 2px 8px; }
QListWidget::item:selected { background: @selection@; color: @text@; }

QTreeView {
    background: @field@; alternate-background-color: @tile@; color: @text@; font-size: 11pt;
    border: 2px solid @border@; border-radius: 9px; outline: none;
    selection-background-color: @selection@; selection-color: @text@;
}
QTreeView:focus { border-color: @accent@; }
QTreeView::item { min-height: 40px; padding: 0px 22px 0px 6px; border: none; }
QTreeView::item:selected { background: @selection@; color: @text@; }
QHeaderView { background: transparent; border: none; }
QHeaderView::section {
    background: @tile@; color: @muted@; border: none; border-bottom: 1px solid @border@;
    padding: 0px 8px 0px 6px; min-height: 42px; font-size: 10pt; font-weight: bold;
}
QFileDialog QHeaderView::section { min-height: 22px; padding: 0px 6px; }
QHeaderView::up-arrow, QHeaderView::down-arrow {
    subcontrol-origin: padding; subcontrol-position: center right; width: 16px; height: 16px; right: 4px;
}
QHeaderView::up-arrow { image: url(:/harrowby/tables/up-@shade@.svg); }
QHeaderView::down-arrow { image: url(:/harrowby/tables/down-@shade@.svg); }

QScrollBar:vertical { background: transparent; width: 16px; margin: 2px; border: none; }
QScrollBar::handle:vertical { background: @edge@; border-radius: 6px; min-height: 44px; }
QScrollBar::handle:vertical:hover { background: @accent@; }
QScrollBar::add-line, QScrollBar::sub-line { width: 0px; height: 0px; }
QScrollBar::add-page, QScrollBar::sub-page { background: transparent; }

QProgressBar {
    background: @field@; border: 1px solid @edge@; border-radius: 9px; min-height: 28px; text-align: center;
}
QProgressBar::chunk { background: @selection@; border-radius: 8px; }
QCalendarWidget QWidget { color: @text@; alternate-background-color: @tile@; }
QCalendarWidget QAbstractItemView { background: @field@; selection-background-color: @accent@;
    selection-color: @on-accent@; }
QWidget#qt_calendar_navigationbar { background: @tile@; }
QCalendarWidget QToolButton { min-height: 44px; min-width: 44px; color: @text@; background: @tile@; border: none; }
QToolTip { background: @field@; color: @text@; border: 1px solid @edge@; padding: 6px; }
)";

QString sheetFor(const Look &look)
{
    const std::pair<QString, QColor> names[] = {{u"@ground@"_s, look.ground},
                                                {u"@field@"_s, look.field},
                                                {u"@tile@"_s, look.tile},
                                                {u"@text@"_s, look.text},
                                                {u"@muted@"_s, look.muted},
                                                {u"@border@"_s, look.border},
                                                {u"@edge@"_s, look.edge},
                                                {u"@accent@"_s, look.accent},
                                                {u"@on-accent@"_s, look.onAccent},
                                                {u"@selection@"_s, look.selection},
                                                {u"@accent-pressed@"_s, look.accentPressed}};
    QString sheet = QString::fromLatin1(sheetTemplate);
    for (const auto &[name, colour] : names)
        sheet.replace(name, colour.name());
    return sheet.replace(u"@shade@"_s, look.dark ? u"dark"_s : u"light"_s);
}

/// Redresses its window whenever the application's palette changes.
class LookKeeper : public QObject
{
public:
    explicit LookKeeper(QWidget &window) : QObject(&window), m_window(window)
    {
        window.installEventFilter(this);
        dressAgain();
    }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::ApplicationPaletteChange || event->type() == QEvent::PaletteChange)
            dressAgain();
        return QObject::eventFilter(watched, event);
    }

private:
    void dressAgain()
    {
        const qint64 key = QGuiApplication::palette().cacheKey();
        if (m_paletteKey == key)
            return;
        m_paletteKey = key;
        m_window.setStyleSheet(sheetFor(Look(QGuiApplication::palette())));
    }

    QWidget &m_window;
    qint64 m_paletteKey = -1;
};

} // namespace

Look::Look(const QPalette &palette)
{
    const QColor window = palette.color(QPalette::Active, QPalette::Window);
    const QColor base = palette.color(QPalette::Active, QPalette::Base);
    dark = window.lightnessF() < 0.5F;
    accent = dark ? QColor(64, 201, 172) : QColor(0, 98, 86);
    onAccent = dark ? QColor(4, 30, 25) : QColor(Qt::white);
    accentPressed = mixed(accent, dark ? Qt::white : Qt::black, 0.2);
    ground = dark ? mixed(window, Qt::black, 0.3) : mixed(window, accent, 0.05);
    field = dark ? mixed(window, Qt::black, 0.15) : base;
    tile = dark ? mixed(window, Qt::white, 0.04) : mixed(base, accent, 0.05);
    text = palette.color(QPalette::Active, QPalette::WindowText);
    muted = mixed(text, field, 0.25);
    border = mixed(field, text, 0.16);
    edge = mixed(field, text, 0.52);
    selection = mixed(field, accent, 0.25);
}

void dress(QWidget &window)
{
    registerResources();
    new LookKeeper(window);
    speakTruly(&window);
    for (auto *list : window.findChildren<QComboBox *>())
        list->setMaxVisibleItems(mostEntries);
    for (const auto *box : window.findChildren<QDialogButtonBox *>()) {
        for (QAbstractButton *button : box->buttons())
            button->setIcon({}); // of another style
    }
}

void makePrimary(QPushButton &button)
{
    button.setProperty("look", u"primary"_s);
}

void centreCaptions(QFormLayout &form)
{
    for (int row = 0; row < form.rowCount(); ++row) {
        for (const auto role : {QFormLayout::LabelRole, QFormLayout::FieldRole}) {
            const QLayoutItem *item = form.itemAt(row, role);
            auto *label = item != nullptr ? qobject_cast<QLabel *>(item->widget()) : nullptr;
            if (label == nullptr)
                continue;
            label->setProperty("look", u"field"_s);
            label->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
        }
    }
}

} // namespace harrowby::tables
