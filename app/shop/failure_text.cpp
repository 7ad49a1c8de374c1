// SPDX-License-Identifier: MIT
#include "app/shop/failure_text.h"

#include <QRegularExpression>

#include <sqlite3.h>

#include <optional>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

struct HeldChange
{
    bool isHolding = false; ///< otherwise it was to be taken off the list
    QString word;
};

struct Target
{
    QString verb;  ///< "UPDATE", "INSERT" or "DELETE"
    QString table; ///< upper-cased
};

Target targetOf(const QString &statement)
{
    static const QRegularExpression head(uR"(^\s*(UPDATE|INSERT|DELETE)\s+(?:INTO\s+|FROM\s+)?["`\[]?(\w+))"_s,
                                         QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = head.match(statement.left(200));
    return {match.captured(1).toUpper(), match.captured(2).toUpper()};
}

QString stockWork(const QString &verb)
{
    if (verb == u"INSERT"_s)
        return u"The new stock item was not saved."_s;
    return verb == u"DELETE"_s ? u"The stock item was not deleted."_s : u"The stock of an item was not changed."_s;
}

QString categoryWork(const QString &verb)
{
    if (verb == u"INSERT"_s)
        return u"The category was not added."_s;
    return verb == u"DELETE"_s ? u"The category was not deleted."_s : u"The category was not renamed."_s;
}

QString codeWork(const QString &verb)
{
    if (verb == u"INSERT"_s)
        return u"The code of an item was not added."_s;
    return verb == u"DELETE"_s ? u"The code of an item was not deleted."_s
                               : u"The codes of an item were not changed."_s;
}

QString paymentWork(const QString &verb)
{
    return verb == u"DELETE"_s ? u"A payment that did not come about was not removed."_s
                               : u"The payment of a purchase was not recorded."_s;
}

/// What the till writes beside the work of a person, and writes again by itself.
bool isTriedAgain(const DbFailure &failure)
{
    return targetOf(failure.statement).table == u"HARROWBYPAYMENT"_s ||
           targetOf(failure.statement).table == u"HARROWBYRUN"_s;
}

/// Of an engine that says by SQLSTATE why it failed: a server.
QString serverAdvice(const QString &state, const QString &again)
{
    if (state == u"08001"_s || state == u"08006"_s || state == u"57014"_s)
        return u"See whether the server is switched on, and this machine on the shop's network, %1."_s.arg(again);
    if (state == u"08004"_s || state.startsWith(u"28"_s))
        return u"The server does not let this machine in any more. Install here what harrowby-server add-till or "
               "add-office writes."_s;
    if (state == u"08007"_s)
        return u"Do not do it again: as soon as the server answers, this program finds out and says so."_s;
    if (state == u"25006"_s)
        return u"This server is a standby. If the shop's server has died, run harrowby-server promote, %1."_s.arg(
            again);
    if (state == u"53100"_s)
        return u"The server's disk is full. Free some space there, %1."_s.arg(again);
    if (state == u"53300"_s)
        return u"Too many tills and offices are connected. Close one, %1."_s.arg(again);
    if (state == u"55P03"_s || state == u"40P01"_s)
        return u"Another till or the office keeps it locked. Wait until that is done, %1."_s.arg(again);
    if (state == u"42501"_s)
        return u"This machine may not do that on the server. Use one that is enrolled as an office."_s;
    if (state.startsWith(u"22"_s))
        return u"The server cannot store that. Change the entry."_s;
    if (state.startsWith(u"23"_s))
        return u"The store has a rule against it. Change the entry, or the rule."_s;
    return u"On the server, harrowby-server status says how it is. Then do the step again."_s;
}

/// "The purchase was not recorded." as "The purchase was recorded."
QString doneWork(QString work)
{
    static const QRegularExpression denial(u"\\b(was|were) not "_s);
    if (const auto match = denial.match(work); match.hasMatch())
        work.replace(match.capturedStart(), match.capturedLength(), match.captured(1) + u' ');
    return work;
}

/// Of a cart that was put aside or brought back, as the statement names it by its word; of others nothing.
std::optional<HeldChange> heldChange(const QString &statement)
{
    static const QRegularExpression named(u"^(INSERT|DELETE) HarrowbyHeld (.+)$"_s);
    const QRegularExpressionMatch match = named.match(statement);
    if (!match.hasMatch())
        return {};
    return HeldChange{match.captured(1) == u"INSERT"_s, match.captured(2)};
}

/// What was done of it, or not.
QString heldWork(const HeldChange &change, bool isDone)
{
    if (change.isHolding)
        return (isDone ? u"The cart \"%1\" was held."_s : u"The cart \"%1\" was not held."_s).arg(change.word);
    return (isDone ? u"The cart \"%1\" was taken off the list of held carts."_s
                   : u"The cart \"%1\" was not taken off the list of held carts."_s)
        .arg(change.word);
}

QString withinSentence(const QString &sentence)
{
    return sentence.left(1).toLower() + sentence.mid(1);
}

constexpr auto notKnown = "It is not known"_L1;

/// `work` says that it was done.
QString notKnownWhether(const QString &work)
{
    return notKnown + u" whether "_s + withinSentence(work);
}

/// `work` says that it was not done.
QString doubtfulWords(const QString &work)
{
    return notKnownWhether(doneWork(work));
}

} // namespace

QString failedWork(const DbFailure &failure)
{
    const Target target = targetOf(failure.statement);
    if (target.table == u"STOCKLIST"_s)
        return stockWork(target.verb);
    if (target.table == u"PURCHASECART"_s)
        return target.verb == u"DELETE"_s ? u"The purchase was not deleted."_s : u"The purchase was not recorded."_s;
    if (target.table == u"INVENTORYCATEGORY"_s)
        return categoryWork(target.verb);
    if (target.table == u"STORESETTINGS"_s)
        return u"The store settings were not saved."_s;
    if (target.table == u"SYSUSAGE"_s)
        return u"The activity was not recorded."_s;
    if (target.table == u"HARROWBYCODE"_s)
        return codeWork(target.verb);
    if (target.table == u"HARROWBYDRAWEROPENING"_s)
        return u"The opening of the cash drawer was not recorded, so the drawer stays shut."_s;
    if (target.table == u"HARROWBYSETTING"_s)
        return u"A setting of the shop was not saved."_s;
    if (target.table == u"HARROWBYPAYMENT"_s)
        return paymentWork(target.verb);
    if (target.table == u"HARROWBYRUN"_s)
        return u"It was not noted that this till is open, or closed."_s;
    return u"A change was not saved."_s;
}

QString failureReason(const DbFailure &failure)
{
    constexpr qsizetype longest = 160;
    const QString reason = failure.reason.left(longest + 1).simplified();
    return reason.size() > longest ? reason.left(longest) + u'\u2026' : reason;
}

QString failureAdvice(const DbFailure &failure)
{
    const QString again =
        isTriedAgain(failure) ? u"and go on: the till does this again by itself"_s : u"then do the step again"_s;
    // What a Statement was refused for (store/statement.cpp).
    if (failure.engineCode == 0 && failure.reason.contains(u"text value"_s))
        return u"Change the name or ID: it holds a character that the store cannot look for, such as a single quote."_s;
    if (failure.engineCode == SQLITE_READONLY_DBMOVED)
        return u"Nothing is being saved any more. Stop here and follow the box in front."_s;
    if (!failure.engineState.isEmpty())
        return serverAdvice(failure.engineState, again);
    switch (failure.engineCode & 0xff) {
    case SQLITE_FULL:
        return u"The disk is full. Free some space, %1."_s.arg(again);
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return u"Another program keeps the store file locked. Close it, %1."_s.arg(again);
    case SQLITE_READONLY:
    case SQLITE_PERM:
        return u"The store file cannot be written. Allow writing to it, %1."_s.arg(again);
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
        return u"The store file is damaged. Stop selling, keep a copy of it, and bring back the last backup."_s;
    case SQLITE_IOERR:
    case SQLITE_CANTOPEN:
        return u"The disk does not answer as it should. Check the disk and its space, %1."_s.arg(again);
    case SQLITE_CONSTRAINT:
        return u"The store file has a rule against it. Change the entry, or the rule."_s;
    default:
        return u"A table or a column of the store file may be missing. Close the till and check the file."_s;
    }
}

QString doubtfulWork(const DbFailure &failure)
{
    const auto held = heldChange(failure.statement);
    return held ? notKnownWhether(heldWork(*held, true)) : doubtfulWords(failedWork(failure));
}

QString neverKnownWork(const QString &statement)
{
    return u"It cannot be found out any more"_s +
           doubtfulWork({DbFailure::Kind::Write, statement, {}}).sliced(notKnown.size());
}

QString settledWork(const QString &statement, bool isDone)
{
    const DbFailure write = {DbFailure::Kind::Write, statement, {}};
    const auto held = heldChange(statement);
    const QString work = held ? heldWork(*held, isDone) : isDone ? doneWork(failedWork(write)) : failedWork(write);
    return u"Known now: "_s + withinSentence(work);
}

/// The cart of a till stays at its counter until this is known.
QString settledAdvice(const QString &statement, bool isDone)
{
    const auto held = heldChange(statement);
    if (!held)
        return isDone ? u"Nothing is left to do."_s : u"Do the step again, if it is still wanted."_s;
    if (held->isHolding == isDone)
        return u"It is on the list of held carts. If it is still at the counter, take it out there; if it was sold or "
               "held again meanwhile, recall it and clear it: it is one cart."_s;
    return u"The one at the counter is the only one. If the till was started anew since, ring it up again."_s;
}

QString failureWords(const QString &work, const DbFailure &failure)
{
    const auto nobodyKnows = "08007"_L1;
    const bool isDoubtful = failure.engineState == nobodyKnows;
    return (isDoubtful ? doubtfulWords(work) : work) + u'\n' + failureReason(failure) + u'\n' + failureAdvice(failure);
}

QString failedWork(const FileFailure &failure)
{
    switch (failure.kind) {
    case FileFailure::Kind::Receipt:
        return u"A receipt was neither printed nor kept."_s;
    case FileFailure::Kind::SettingsRead:
        return u"The saved settings cannot be read: the usual ones are used."_s;
    case FileFailure::Kind::SettingsWrite:
        return u"The settings of this computer were not saved (printer, receipt, daily report)."_s;
    }
    return {};
}

QString failureAdvice(const FileFailure &failure)
{
    switch (failure.kind) {
    case FileFailure::Kind::Receipt:
        return u"Check the disk and the folder %1. Until then receipts are lost; the last one can be printed again "
               u"with "
               "\"Purchase Cart\" while the cart is empty."_s.arg(wrappingPath(failure.path));
    case FileFailure::Kind::SettingsRead:
        return u"Put the file %1 right, or move it away and save the settings anew."_s.arg(wrappingPath(failure.path));
    case FileFailure::Kind::SettingsWrite:
        return u"Check the disk and the file %1, then save the settings again."_s.arg(wrappingPath(failure.path));
    }
    return {};
}

QString failureSubject(FileFailure::Kind kind)
{
    switch (kind) {
    case FileFailure::Kind::Receipt:
        return u"receipt"_s;
    case FileFailure::Kind::SettingsRead:
        return u"settings read"_s;
    case FileFailure::Kind::SettingsWrite:
        break;
    }
    return u"settings"_s;
}

QString wrappingPath(QString path)
{
    return path.replace(u'/', u"/\u200b"_s);
}

} // namespace harrowby::app
