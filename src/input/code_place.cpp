// SPDX-License-Identifier: MIT
#include "input/code_place.h"

#include <QCoreApplication>
#include <QInputMethodQueryEvent>
#include <QVariant>
#include <QWidget>

namespace harrowby {

namespace {

constexpr char noCodesProperty[] = "harrowbyNoCodes";
constexpr int figureHints = Qt::ImhDigitsOnly | Qt::ImhFormattedNumbersOnly | Qt::ImhDate | Qt::ImhTime;

} // namespace

/// Asked as an input method would, so that entries of any kind answer. A widget without the attribute, such as a
/// button, may answer ImEnabled all the same.
CodePlace codePlaceOf(QObject *focus)
{
    const auto *widget = qobject_cast<const QWidget *>(focus);
    if (focus == nullptr || (widget != nullptr && !widget->testAttribute(Qt::WA_InputMethodEnabled)))
        return CodePlace::Host;
    QInputMethodQueryEvent query(Qt::ImEnabled | Qt::ImHints);
    QCoreApplication::sendEvent(focus, &query);
    const int hints = query.value(Qt::ImHints).toInt();
    if ((hints & Qt::ImhHiddenText) != 0)
        return CodePlace::Hidden;
    const bool takesText = query.value(Qt::ImEnabled).toBool() && (hints & figureHints) == 0;
    return takesText && !focus->property(noCodesProperty).toBool() ? CodePlace::Entry : CodePlace::Host;
}

void keepCodesOut(QWidget &entry)
{
    entry.setProperty(noCodesProperty, true);
}

} // namespace harrowby
