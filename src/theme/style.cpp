// SPDX-License-Identifier: MIT
#include "theme/style.h"

#include "basic/logging.h"
#include "theme/colours.h"
#include "theme/measures.h"

#include <QEvent>
#include <QFile>
#include <QGuiApplication>
#include <QRegularExpression>
#include <QWidget>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

// Resources of a static library are not registered by themselves; the macro has to stand outside any namespace.
static void registerResources()
{
    Q_INIT_RESOURCE(harrowby_theme);
}

namespace harrowby {

namespace {

enum class Wearer { Till, Dialog };

QString styleFile(const QString &name)
{
    QFile file(u":/harrowby/theme/"_s + name);
    if (!file.open(QIODevice::ReadOnly)) {
        qCWarning(lcWindow) << "no style sheet:" << file.errorString();
        return {};
    }
    return QString::fromUtf8(file.readAll());
}

constexpr auto densityProperty = "harrowbyDensity";

/// Every font size of the sheet, times the factor.
QString withFonts(const QString &sheet, double factor)
{
    if (factor == 1.0)
        return sheet;
    static const QRegularExpression points(u"([0-9.]+)pt"_s);
    QString scaled;
    qsizetype end = 0;
    for (auto found = points.globalMatch(sheet); found.hasNext();) {
        const QRegularExpressionMatch size = found.next();
        scaled += QStringView(sheet).mid(end, size.capturedStart() - end);
        scaled += QString::number(size.capturedView(1).toDouble() * factor) + u"pt"_s;
        end = size.capturedEnd();
    }
    return scaled += QStringView(sheet).mid(end);
}

/// The lengths of the sheet. An edge that gets wider takes its room from the padding and the height.
QString withMeasures(QString sheet, const Measures &measures)
{
    const std::pair<QString, int> lengths[] = {
        {u"@control@"_s, measures.control},
        {u"@control-focus@"_s, measures.control - 2},
        {u"@finger@"_s, touchHeight},
        {u"@touch@"_s, std::max(touchHeight, measures.control + 2)},
        {u"@purchase@"_s, measures.purchase},
        {u"@purchase-focus@"_s, measures.purchase - 2},
        {u"@button@"_s, measures.buttonPadding},
        {u"@button-focus@"_s, measures.buttonPadding - 2},
        {u"@tab@"_s, measures.tabPadding},
        {u"@tab-focus@"_s, measures.tabPadding - 2},
        {u"@total@"_s, measures.totalPoints},
        {u"@list-row@"_s, measures.listRow},
        {u"@header@"_s, measures.header},
        {u"@status-bar@"_s, measures.statusBar},
    };
    for (const auto &[name, length] : lengths)
        sheet.replace(name, QString::number(length));
    return withFonts(sheet, measures.fonts);
}

QString withColours(QString sheet, const Colours &colours, Wearer wearer)
{
    const bool till = wearer == Wearer::Till; // its controls stand on cards
    const std::pair<QString, QColor> names[] = {
        {u"@background@"_s, colours.background},
        {u"@card@"_s, colours.card},
        {u"@control-ground@"_s, till ? colours.card : colours.field},
        {u"@tile@"_s, colours.tile},
        {u"@stripe@"_s, colours.stripe},
        {u"@field@"_s, colours.field},
        {u"@text@"_s, colours.text},
        {u"@muted@"_s, colours.muted},
        {u"@border@"_s, colours.border},
        {u"@edge@"_s, colours.fieldBorder},
        {u"@accent@"_s, colours.accent},
        {u"@accent-hover@"_s, colours.accentHover},
        {u"@accent-pressed@"_s, colours.accentPressed},
        {u"@on-accent@"_s, colours.onAccent},
        {u"@accent-text@"_s, colours.accentText},
        {u"@selection@"_s, till ? colours.selection : colours.chosenRow},
        {u"@price@"_s, colours.price},
        {u"@link@"_s, colours.link},
        {u"@danger@"_s, colours.danger},
        {u"@on-danger@"_s, colours.onDanger},
    };
    for (const auto &[name, colour] : names)
        sheet.replace(name, colour.name());
    return sheet.replace(u"@shade@"_s, colours.dark ? u"dark"_s : u"light"_s);
}

QString styleText(Wearer wearer, const Measures &measures)
{
    const QString own = styleFile(wearer == Wearer::Till ? u"till.qss"_s : u"dialogs.qss"_s);
    return withColours(withMeasures(styleFile(u"common.qss"_s) + own, measures), Colours::current(), wearer);
}

/// Sets the style sheet of its window again whenever the application's palette or the window's density changes.
class StyleKeeper : public QObject
{
public:
    StyleKeeper(QWidget &window, Wearer wearer) : QObject(&window), m_window(window), m_wearer(wearer)
    {
        window.installEventFilter(this);
        dress();
    }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::ApplicationPaletteChange || event->type() == QEvent::PaletteChange ||
            event->type() == QEvent::DynamicPropertyChange)
            dress();
        return QObject::eventFilter(watched, event);
    }

private:
    void dress()
    {
        const qint64 key = QGuiApplication::palette().cacheKey();
        const QVariant density = m_window.property(densityProperty);
        const Density wanted = density.isValid() ? static_cast<Density>(density.toInt()) : Density::Usual;
        if (m_paletteKey == key && m_density == wanted)
            return;
        m_paletteKey = key;
        m_density = wanted;
        m_window.setStyleSheet(styleText(m_wearer, m_wearer == Wearer::Till ? measuresOf(wanted) : dialogMeasures()));
    }

    QWidget &m_window;
    Wearer m_wearer;
    qint64 m_paletteKey = -1;
    Density m_density = Density::Usual;
};

} // namespace

void applyTillStyle(QWidget &window)
{
    registerResources();
    new StyleKeeper(window, Wearer::Till);
}

void applyDialogStyle(QWidget &window)
{
    registerResources();
    new StyleKeeper(window, Wearer::Dialog);
}

void applyNoticeStyle(QWidget &window)
{
    registerResources();
    window.setStyleSheet(styleFile(u"notice.qss"_s));
}

void setTillDensity(QWidget &window, Density density)
{
    window.setProperty(densityProperty, static_cast<int>(density));
}

} // namespace harrowby
