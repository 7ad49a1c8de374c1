// SPDX-License-Identifier: MIT
#include "app/labels/label_settings.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

const auto section = u"Labels"_s;
const auto paperKey = u"Paper"_s;

constexpr int rollDots = 203; // thermal printers, the most usual ones
constexpr int sheetDots = 600;

QString keyOf(const LabelPaper &paper, const QString &what)
{
    return paper.key + u'-' + what;
}

int readFigure(const OfficeSettings &settings, const LabelPaper &paper, const QString &what, int usual)
{
    bool isFigure = false;
    const int figure = settings.get(section, keyOf(paper, what), {}).toInt(&isFigure);
    return isFigure ? figure : usual;
}

int readNudge(const OfficeSettings &settings, const LabelPaper &paper, const QString &what)
{
    return std::clamp(readFigure(settings, paper, what, 0), -LabelSetting::mostNudge, LabelSetting::mostNudge);
}

} // namespace

const QList<int> &labelDots()
{
    static const QList<int> dots = {rollDots, 300, sheetDots};
    return dots;
}

const LabelPaper &savedLabelPaper(const OfficeSettings &settings)
{
    return labelPaper(settings.get(section, paperKey, {}));
}

bool saveLabelPaper(const OfficeSettings &settings, const LabelPaper &paper)
{
    return settings.save(section, paperKey, paper.key);
}

LabelSetting readLabelSetting(const OfficeSettings &settings, const LabelPaper &paper)
{
    const int usual = paper.isRoll ? rollDots : sheetDots;
    const int dots = readFigure(settings, paper, u"Dots"_s, usual);
    return {labelDots().contains(dots) ? dots : usual,
            {readNudge(settings, paper, u"Right"_s), readNudge(settings, paper, u"Down"_s)},
            settings.get(section, keyOf(paper, u"Printer"_s), {})};
}

bool saveLabelSetting(const OfficeSettings &settings, const LabelPaper &paper, const LabelSetting &setting)
{
    const LabelSetting before = readLabelSetting(settings, paper);
    bool all = true;
    const auto save = [&](const QString &what, const QString &was, const QString &is) {
        if (was != is)
            all = settings.save(section, keyOf(paper, what), is) && all;
    };
    save(u"Dots"_s, QString::number(before.dotsPerInch), QString::number(setting.dotsPerInch));
    save(u"Right"_s, QString::number(before.nudge.x()), QString::number(setting.nudge.x()));
    save(u"Down"_s, QString::number(before.nudge.y()), QString::number(setting.nudge.y()));
    save(u"Printer"_s, before.printer, setting.printer);
    return all;
}

} // namespace harrowby::app
