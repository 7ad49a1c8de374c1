// SPDX-License-Identifier: MIT
#pragma once

#include <QMap>
#include <QObject>
#include <QPointer>
#include <QString>

class QWidget;

namespace harrowby::app {

class BannerView;

/// Who says something; the later one goes before the earlier one while both have something to say.
enum class BannerTopic {
    FirstSteps, ///< what to do first in a shop without items
    Reader,     ///< that a code reader is gone, or back
    Renamed,    ///< that an item which was sold has another name now
    Server,     ///< that the server is gone, or the shop unprotected
    Change,     ///< what the customer gets back, until the next item
    Cart,       ///< what became of the whole cart
    Code,       ///< what became of the last code, until the next one
};

/// How it looks.
enum class BannerTone {
    Plain,
    Large,   ///< an amount to hand over
    Refused, ///< with a warning sign beside the colour
};

/// What stands above the total of the counter. It keeps what is said while there is no window, and each new window gets
/// a view of its own.
class Banner final : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// Shown, and told to a screen reader, at once, unless a topic that goes before has something to say. An empty text
    /// is as clear(). Says the same text again when a person has to hear it again.
    void say(BannerTopic topic, const QString &text, BannerTone tone = BannerTone::Plain);
    void clear(BannerTopic topic);
    /// What stands there now; empty for nothing.
    [[nodiscard]] QString text() const;

    /// A new widget that shows it; the caller owns it. An older one shows no more.
    [[nodiscard]] QWidget *createView();

private:
    struct Line
    {
        QString text;
        BannerTone tone = BannerTone::Plain;
    };

    void show();

    QMap<BannerTopic, Line> m_lines;
    QPointer<BannerView> m_view;
};

/// The sound of a code that was refused or that nobody knows: the bell of the display, which needs no sound system and
/// which a desktop may replace by a sound of its own.
void soundRefusal();

} // namespace harrowby::app
