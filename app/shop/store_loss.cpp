// SPDX-License-Identifier: MIT
#include "app/shop/store_loss.h"

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

using Kind = StoreLoss::Kind;

QString whereItIs(const StoreLoss &loss)
{
    if (loss.kind == Kind::Overwritten)
        return loss.logAside.isEmpty() ? u"Nothing more was written into the file."_s
                                       : u"Nothing more was written into the file. What was saved in the last moments "
                                         u"is in its log, which was "
                                         "put aside as \"%1\"."_s.arg(loss.logAside);
    if (loss.needsRescue())
        return u"All that was saved before is still in reach, but only as long as this window is open. Make a rescue "
               "copy now."_s;
    const QString file = loss.kind == Kind::LogLost ? u"the store file"_s : u"\"%1\""_s.arg(loss.nowAt);
    if (loss.isComplete)
        return u"All that was saved before is in %1."_s.arg(file);
    return loss.logAside.isEmpty()
               ? u"What was saved last is still on its way into %1."_s.arg(file)
               : u"What was saved last is still on its way from \"%1\" into %2."_s.arg(loss.logAside, file);
}

QString whatToDo(const StoreLoss &loss, const QString &place)
{
    const QString others = u"Then close all tills and the office of this store"_s;
    switch (loss.kind) {
    case Kind::Moved:
        return u"Stop here. Close the %1, move the file back to its place, and start again."_s.arg(place);
    case Kind::Overwritten:
        return u"Stop here. Close all tills and the office of this store, bring back the last backup, and start "
               "again."_s;
    case Kind::LogLost:
        return u"Close the %1 and start it again; leave the files beside the store file alone."_s.arg(place);
    case Kind::Replaced:
        if (!loss.needsRescue())
            return u"Stop here. Close the %1, find out which of the two files is the right one, put that in its "
                   "place, and start again."_s.arg(place);
        return others + u", find out whether the copy or the new file is the right one, put that in its place, and "
                        "start again."_s;
    default:
        return others + u", put the copy in the place of the store file, under its name, and start again."_s;
    }
}

} // namespace

bool StoreLoss::needsRescue() const
{
    return kind != Kind::Overwritten && kind != Kind::LogLost && nowAt.isEmpty();
}

QString lossHeadline(const StoreLoss &loss)
{
    switch (loss.kind) {
    case Kind::Moved:
        return u"The store file \"%1\" was moved or renamed while it was in use."_s.arg(loss.path);
    case Kind::Removed:
        return u"The store file \"%1\" was removed while it was in use."_s.arg(loss.path);
    case Kind::Replaced:
        return u"Another file was put in the place of the store file \"%1\" while it was in use."_s.arg(loss.path);
    case Kind::Overwritten:
        return u"The store file \"%1\" was overwritten or cut short while it was in use."_s.arg(loss.path);
    default:
        return u"The log of the store file \"%1\" was removed or replaced while it was in use."_s.arg(loss.path);
    }
}

QString lossAdvice(const StoreLoss &loss, const QString &place)
{
    return whereItIs(loss) + u"\n\n"_s + whatToDo(loss, place);
}

} // namespace harrowby::app
