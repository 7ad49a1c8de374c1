// SPDX-License-Identifier: MIT
#include "app/records/server_words.h"

#include "basic/store_address.h"

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

using Trouble = ServerProblem::Kind;

struct Words
{
    QString what;
    QString whatToDo;
};

Words deniedWords(const ServerProblem &problem)
{
    if (problem.state == "3D000"_L1)
        return {u"The server has no database of that name"_s,
                u"Check the name of the database. On the server, harrowby-server create makes one."_s};
    if (problem.state == "28000"_L1 && problem.reason.contains("no encryption"_L1))
        return {u"The server lets nobody in whose connection is not encrypted"_s,
                u"Install on this machine what harrowby-server add-till or add-office has written, or add "
                "sslmode=verify-full to the address."_s};
    return {u"The server does not let this machine in"_s,
            u"Check the user's name and the password. On the server, harrowby-server add-till NAME --new-password, or "
            "add-office for an office, writes a new one, to be installed on this machine."_s};
}

Words wayWords(const ServerProblem &problem)
{
    switch (problem.kind) {
    case Trouble::NoPackage:
        return {u"What connects to a server cannot be used"_s,
                u"Install the package %1 in the version of this program, then start again."_s.arg(
                    QLatin1StringView(serverPackage))};
    case Trouble::BadTarget:
        return {u"The address of the store leads nowhere"_s,
                u"Check the address. A service is described in the file .pg_service.conf in your home folder, which "
                "harrowby-server add-till and add-office write."_s};
    case Trouble::NoServer:
        return {u"The server cannot be reached"_s,
                u"See whether it is switched on, and whether this machine is on the shop's network; then start "
                "again."_s};
    case Trouble::NotTrusted:
        return {u"It is not certain that this is the shop's own server"_s,
                u"Install on this machine what harrowby-server add-till or add-office has written on the server: the "
                "certificate of the shop is part of it."_s};
    default:
        return deniedWords(problem);
    }
}

Words stateWords(Trouble kind)
{
    switch (kind) {
    case Trouble::NotAStore:
        return {u"There is no store in that database"_s,
                u"Check its name. On the server, harrowby-server create sets a store up."_s};
    case Trouble::SchemaTooOld:
        return {u"The store on the server is older than this program"_s,
                u"On the server, run harrowby-server update, then start again."_s};
    case Trouble::SchemaTooNew:
        return {u"This program is older than the store on the server"_s,
                u"Bring the program on this machine up to date, then start again."_s};
    case Trouble::Crowded:
        return {u"The server has no room for one more till or office"_s,
                u"Close one of them; or make room on the server, with harrowby-server update --tills NUMBER."_s};
    case Trouble::Starting:
        return {u"The server is just starting, or ending"_s, u"Wait a minute, then start again."_s};
    case Trouble::ReadOnly:
        return {u"Each server that can be reached is a standby, which takes no sales"_s,
                u"If the shop's server has died, run harrowby-server promote on the standby, then start again."_s};
    case Trouble::GivenUp:
        return {u"The server was not waited for any longer"_s, u"Start again when it is there."_s};
    default:
        return {u"The store on the server cannot be used"_s,
                u"On the server, harrowby-server status says how it is."_s};
    }
}

Words wordsOf(const ServerProblem &problem)
{
    switch (problem.kind) {
    case Trouble::NoPackage:
    case Trouble::BadTarget:
    case Trouble::NoServer:
    case Trouble::NotTrusted:
    case Trouble::Denied:
        return wayWords(problem);
    default:
        return stateWords(problem.kind);
    }
}

} // namespace

QString problemWords(const ServerProblem &problem, const QString &store)
{
    const Words words = wordsOf(problem);
    const QString reason = problem.reason.isEmpty() ? QString() : u" (%1)"_s.arg(problem.reason);
    return u"The store \"%1\" cannot be opened. %2%3.\n%4"_s.arg(storeWords(store), words.what, reason, words.whatToDo);
}

QString goneWords(const ServerProblem &problem)
{
    // Which is what is wrong with it: it was a store when it was opened.
    return problem.kind == Trouble::NotAStore ? problem.reason : wordsOf(problem).what;
}

QString nobodyYetWords(const QString &store)
{
    return u"The store \"%1\" has no user yet, and a till may not add one.\n"
           "Start the office once on a machine that is enrolled as one (harrowby-server add-office): it asks for the "
           "password of the first user."_s.arg(storeWords(store));
}

} // namespace harrowby::app
