// SPDX-License-Identifier: MIT
#include "app/customer/customer_place.h"

#include <QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

std::optional<ScreenFacts> wished(const QList<ScreenFacts> &screens, const QString &wish)
{
    bool isNumber = false;
    const qsizetype number = wish.toLongLong(&isNumber);
    if (isNumber)
        return number >= 1 && number <= screens.size() ? std::optional(screens[number - 1]) : std::nullopt;
    const auto found = std::find_if(screens.cbegin(), screens.cend(), [&](const ScreenFacts &screen) {
        return screen.name.compare(wish, Qt::CaseInsensitive) == 0;
    });
    return found != screens.cend() ? std::optional(*found) : std::nullopt;
}

} // namespace

std::optional<ScreenFacts> customerPlace(const QList<ScreenFacts> &screens, const QString &wish, const TillPlace &till)
{
    const auto isFree = [&](const ScreenFacts &screen) { return !coversTill(screen.geometry, till); };
    if (!wish.isEmpty()) {
        const auto screen = wished(screens, wish);
        return screen && isFree(*screen) ? screen : std::nullopt;
    }
    const auto free = std::find_if(screens.cbegin(), screens.cend(), isFree);
    return free != screens.cend() ? std::optional(*free) : std::nullopt;
}

bool coversTill(const QRect &geometry, const TillPlace &till)
{
    constexpr int edge = 16;
    const QRect covered = geometry.intersected(till.frame);
    return geometry.intersects(till.screen) || (covered.width() > edge && covered.height() > edge);
}

QString screensText(const QList<ScreenFacts> &screens)
{
    QStringList texts;
    for (const ScreenFacts &screen : screens) {
        const QRect &place = screen.geometry;
        texts << u"%1 %2 (%3x%4 at %5,%6)"_s.arg(texts.size() + 1)
                     .arg(screen.name)
                     .arg(place.width())
                     .arg(place.height())
                     .arg(place.x())
                     .arg(place.y());
    }
    return texts.join(u", "_s);
}

} // namespace harrowby::app
