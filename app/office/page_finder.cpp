// SPDX-License-Identifier: MIT
#include "app/office/page_finder.h"

#include "app/search/sought_text.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QComboBox>
#include <QLineEdit>
#include <QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

/// How well a place has the words; the lower, the better.
enum class Fit { Whole, Begins, InTitle, InMore, None };

struct Candidate
{
    OfficePlace place;
    QString more;
    Fit fit = Fit::None;
};

QStringList splitWords(const QString &text)
{
    QStringList words;
    QString word;
    for (const QChar letter : caselessKey(text)) {
        if (letter.isLetterOrNumber()) {
            word += letter;
        } else if (!word.isEmpty()) {
            words << word;
            word.clear();
        }
    }
    return word.isEmpty() ? words : words << word;
}

bool hasAll(const QStringList &typed, const QStringList &words)
{
    return std::all_of(typed.cbegin(), typed.cend(), [&words](const QString &begin) {
        return std::any_of(words.cbegin(), words.cend(),
                           [&begin](const QString &word) { return word.startsWith(begin); });
    });
}

Fit fitOf(const QStringList &typed, const Candidate &candidate)
{
    const QStringList title = splitWords(candidate.place.title);
    if (typed == title)
        return Fit::Whole;
    if (hasAll(typed, title))
        return title.constFirst().startsWith(typed.constFirst()) ? Fit::Begins : Fit::InTitle;
    return hasAll(typed, title + splitWords(candidate.more)) ? Fit::InMore : Fit::None;
}

/// What the control is called on the screen.
QString captionOf(const QWidget &control)
{
    const auto *button = qobject_cast<const QAbstractButton *>(&control);
    QString caption = button != nullptr && !button->text().isEmpty() ? button->text() : control.accessibleName();
    caption.remove(u'&').remove(u'\u2026').replace(u'\n', u' ');
    return caption.simplified();
}

bool isSetting(const QWidget &control, const QWidget &page)
{
    const bool known = qobject_cast<const QAbstractButton *>(&control) != nullptr ||
                       qobject_cast<const QLineEdit *>(&control) != nullptr ||
                       qobject_cast<const QComboBox *>(&control) != nullptr ||
                       qobject_cast<const QAbstractSpinBox *>(&control) != nullptr ||
                       qobject_cast<const QAbstractItemView *>(&control) != nullptr;
    return known && control.focusPolicy() != Qt::NoFocus && control.isVisibleTo(&page);
}

QString moreWordsFor(const OfficePageEntry &entry, const QString &control)
{
    QStringList words;
    for (const MoreWords &more : entry.words) {
        if (more.control == control)
            words << more.words;
    }
    return words.join(u' ');
}

QList<Candidate> candidatesOf(qsizetype index, const BuiltPage &built)
{
    const OfficePageEntry &entry = built.entry;
    QList<Candidate> all;
    all.append({{index, nullptr, entry.title(), entry.about}, entry.about + u' ' + moreWordsFor(entry, {})});
    for (QWidget *control : built.page->findChildren<QWidget *>()) {
        const QString caption = isSetting(*control, *built.page) ? captionOf(*control) : QString();
        if (!caption.isEmpty())
            all.append({{index, control, caption, entry.title()},
                        entry.title() + u' ' + moreWordsFor(entry, control->objectName())});
    }
    return all;
}

} // namespace

QList<OfficePlace> findPlaces(const QString &typed, const QList<BuiltPage> &pages)
{
    const QStringList words = splitWords(typed);
    if (words.isEmpty())
        return {};
    QList<Candidate> found;
    for (qsizetype i = 0; i < pages.size(); ++i) {
        for (Candidate &candidate : candidatesOf(i, pages.at(i))) {
            candidate.fit = fitOf(words, candidate);
            if (candidate.fit != Fit::None)
                found.append(candidate);
        }
    }
    std::stable_sort(found.begin(), found.end(),
                     [](const Candidate &one, const Candidate &other) { return one.fit < other.fit; });
    QList<OfficePlace> places;
    for (const Candidate &candidate : std::as_const(found))
        places << candidate.place;
    return places;
}

} // namespace harrowby::app
