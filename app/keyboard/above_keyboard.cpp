// SPDX-License-Identifier: MIT
#include "app/keyboard/above_keyboard.h"

#include <algorithm>

namespace harrowby::app {

namespace {

constexpr int margin = 8;
constexpr int captionHeight = 28; // of what stands above an entry

int lowerEdge(const QRect &rect)
{
    return rect.top() + rect.height();
}

/// The largest of the nested panels that fits, at least the entry itself.
qsizetype largestFitting(const QList<QRect> &around, int room)
{
    qsizetype best = 0;
    while (best + 1 < around.size() && around.at(best + 1).height() <= room)
        ++best;
    return best;
}

} // namespace

QRect wholeFrame(const QRect &told, const QRect &window)
{
    return told.united(window);
}

int windowLift(const QRect &frame, int screenTop, int keyboardTop)
{
    const int covered = lowerEdge(frame) - keyboardTop;
    return std::clamp(covered, 0, std::max(0, frame.top() - screenTop));
}

int contentShift(const QList<QRect> &around, int windowTop, int keyboardTop, int now)
{
    if (around.isEmpty())
        return 0;
    const int first = windowTop + margin;
    const int last = keyboardTop - margin;
    const qsizetype chosen = largestFitting(around, last - first);
    const QRect group = around.at(chosen);
    const bool seen = group.top() - now >= first && lowerEdge(group) - now <= last;
    if (now > 0 && seen)
        return now;
    // A form that does not fit shows what is below the entry, where its buttons are.
    const QRect form = around.at(std::min(chosen + 1, around.size() - 1));
    const int wanted = std::max(lowerEdge(group), lowerEdge(form)) - last;
    return std::max(0, std::min(wanted, group.top() - captionHeight - first));
}

} // namespace harrowby::app
