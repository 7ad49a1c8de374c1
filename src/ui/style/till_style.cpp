// SPDX-License-Identifier: MIT
#include "ui/style/till_style.h"

#include "basic/logging.h"
#include "ui/style/colours.h"

#include <QEvent>
#include <QFile>
#include <QGuiApplication>
#include <QWidget>

#include <utility>

using namespace Qt::StringLiterals;

// Resources of a static library are not registered by themselves; the macro has to stand outside any namespace.
static void registerResources()
{
    Q_INIT_RESOURCE(harrowby_style);
}

namespace harrowby {

namespace {

QString sheetTemplate()
{
    QFile file(u":/harrowby/style/till.qss"_s);
    if (!file.open(QIODevice::ReadOnly)) {
        qCWarning(lcWindow) << "no style sheet:" << file.errorString();
        return {};
    }
    return QString::fromUtf8(file.readAll());
}

QString sheetFor(const Colours &colours)
{
    const std::pair<QString, QColor> names[] = {
        {u"@background@"_s, colours.background},
        {u"@card@"_s, colours.card},
        {u"@tile@"_s, colours.tile},
        {u"@field@"_s, colours.field},
        {u"@text@"_s, colours.text},
        {u"@muted@"_s, colours.muted},
        {u"@border@"_s, colours.border},
        {u"@field-border@"_s, colours.fieldBorder},
        {u"@accent@"_s, colours.accent},
        {u"@accent-hover@"_s, colours.accentHover},
        {u"@accent-pressed@"_s, colours.accentPressed},
        {u"@on-accent@"_s, colours.onAccent},
        {u"@accent-text@"_s, colours.accentText},
        {u"@selection@"_s, colours.selection},
        {u"@price@"_s, colours.price},
        {u"@danger@"_s, colours.danger},
        {u"@link@"_s, colours.link},
    };
    QString sheet = sheetTemplate();
    for (const auto &[name, colour] : names)
        sheet.replace(name, colour.name());
    return sheet.replace(u"@shade@"_s, colours.dark ? u"dark"_s : u"light"_s);
}

/// Redresses its window whenever the application's palette changes.
class StyleKeeper : public QObject
{
public:
    explicit StyleKeeper(QWidget &window) : QObject(&window), m_window(window)
    {
        window.installEventFilter(this);
        dress();
    }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::ApplicationPaletteChange || event->type() == QEvent::PaletteChange)
            dress();
        return QObject::eventFilter(watched, event);
    }

private:
    void dress()
    {
        const qint64 key = QGuiApplication::palette().cacheKey();
        if (m_paletteKey == key)
            return;
        m_paletteKey = key;
        m_window.setStyleSheet(sheetFor(Colours::current()));
    }

    QWidget &m_window;
    qint64 m_paletteKey = -1;
};

} // namespace

void applyTillStyle(QWidget &window)
{
    registerResources();
    new StyleKeeper(window);
}

} // namespace harrowby
