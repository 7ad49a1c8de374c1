// SPDX-License-Identifier: MIT
#include "app/cash/cash_choices.h"

#include "app/cash/payment.h"
#include "app/records/shop_settings.h"

#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr Cents centsOfOne = 100;

const auto waysName = u"PaymentWays"_s;
const auto notesName = u"CashNotes"_s;
const auto usualWays = cardWay();
const auto usualNotes = u"5 10 20 50 100"_s;

bool isIn(const QStringList &ways, const QString &way)
{
    return ways.contains(way, Qt::CaseInsensitive) || way.compare(cashWay(), Qt::CaseInsensitive) == 0;
}

/// Empty when it is none.
std::optional<Cents> readNote(const QString &text)
{
    static const QRegularExpression shape(u"^([0-9]{1,7})(?:\\.([0-9]{1,2}))?$"_s);
    const auto found = shape.match(text);
    const Cents cents =
        found.captured(1).toLongLong() * centsOfOne + found.captured(2).leftJustified(2, u'0').toLongLong();
    return found.hasMatch() && cents > 0 ? std::optional(cents) : std::nullopt;
}

} // namespace

Result<QStringList, QString> readWays(const QString &text)
{
    QStringList ways;
    for (const QString &part : text.split(u',')) {
        const QString way = part.simplified();
        if (way.isEmpty())
            continue;
        if (way.size() > CashChoices::longestWay)
            return Unexpected(u"\"%1\" is too long: at most %2 characters."_s.arg(way).arg(CashChoices::longestWay));
        if (isIn(ways, way))
            return Unexpected(u"\"%1\" is there already."_s.arg(way));
        if (!std::all_of(way.cbegin(), way.cend(), [](QChar c) { return c.isPrint(); }))
            return Unexpected(u"\"%1\" holds a sign that cannot be shown."_s.arg(way));
        ways << way;
    }
    if (ways.size() > CashChoices::mostWays)
        return Unexpected(u"At most %1 ways can be listed."_s.arg(CashChoices::mostWays));
    return ways;
}

QString waysText(const QStringList &ways)
{
    return ways.join(u", "_s);
}

Result<QList<Cents>, QString> readNotes(const QString &text)
{
    static const QRegularExpression between(u"[\\s,;]+"_s);
    QList<Cents> notes;
    for (const QString &part : text.split(between, Qt::SkipEmptyParts)) {
        const auto note = readNote(part);
        if (!note)
            return Unexpected(u"\"%1\" is no note. Write them as 5 10 20 or 0.50."_s.arg(part));
        if (!notes.contains(*note))
            notes << *note;
    }
    if (notes.size() > CashChoices::mostNotes)
        return Unexpected(u"At most %1 notes can be listed."_s.arg(CashChoices::mostNotes));
    std::sort(notes.begin(), notes.end());
    return notes;
}

QString notesText(const QList<Cents> &notes)
{
    QStringList texts;
    for (const Cents note : notes)
        texts << noteText(note);
    return texts.join(u' ');
}

QString noteText(Cents cents)
{
    const QString whole = QString::number(cents / centsOfOne);
    return cents % centsOfOne == 0 ? whole : u"%1.%2"_s.arg(whole).arg(cents % centsOfOne, 2, 10, QChar(u'0'));
}

CashChoices readCashChoices(Records &records)
{
    const ShopSettings settings(records);
    const auto ways = readWays(settings.value(waysName, usualWays));
    const auto notes = readNotes(settings.value(notesName, usualNotes));
    return {ways ? *ways : *readWays(usualWays), notes ? *notes : *readNotes(usualNotes)};
}

Records::Answer<bool> changeCashChoices(const SignedDeeds &deeds, const CashChoices &before, const CashChoices &choices)
{
    Records &records = deeds.records();
    const bool newWays = choices.ways != before.ways;
    const bool newNotes = choices.notes != before.notes;
    QList<RecordStatement> statements;
    const auto replace = [&](const QString &name, const QString &title, const QString &was, const QString &is) {
        statements += ShopSettings::saving(name, is);
        statements << deeds.statement(deed::settingChanged, u"%1: %2; before: %3."_s.arg(title, is, was));
    };
    if (newWays)
        replace(waysName, u"Ways of paying beside cash"_s, waysText(before.ways), waysText(choices.ways));
    if (newNotes)
        replace(notesName, u"Notes"_s, notesText(before.notes), notesText(choices.notes));
    const auto isAsBefore = [&]() -> Records::Answer<bool> {
        const CashChoices now = readCashChoices(records);
        return (!newWays || now.ways == before.ways) && (!newNotes || now.notes == before.notes);
    };
    return records.writeTogetherIf(kept::setting(), isAsBefore, statements);
}

} // namespace harrowby::app
