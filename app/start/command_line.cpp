// SPDX-License-Identifier: MIT
#include "app/start/command_line.h"

#include "app/shop/errand_names.h"
#include "app/shop/file_facts.h"
#include "app/start/look_choice.h"
#include "basic/store_address.h"

#include <QFileInfo>

#include <optional>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

/// Options that Qt takes for itself, without their hyphens.
bool isQtOptionWithValue(const QString &name)
{
    static const QStringList names = {u"platform"_s,
                                      u"platformpluginpath"_s,
                                      u"platformtheme"_s,
                                      u"plugin"_s,
                                      u"style"_s,
                                      u"stylesheet"_s,
                                      u"display"_s,
                                      u"geometry"_s,
                                      u"qwindowgeometry"_s,
                                      u"qwindowicon"_s,
                                      u"qwindowtitle"_s,
                                      u"icon"_s,
                                      u"title"_s,
                                      u"session"_s,
                                      u"name"_s};
    return names.contains(name);
}

bool isQtSwitch(const QString &name)
{
    static const QStringList names = {u"reverse"_s, u"widgetcount"_s, u"nograb"_s, u"dograb"_s, u"sync"_s};
    return names.contains(name);
}

class Reader
{
public:
    explicit Reader(const QStringList &arguments) : m_arguments(arguments) {}

    Result<CommandLine, QString> read()
    {
        while (m_next < m_arguments.size() && !m_error)
            readOption(m_arguments.at(m_next++));
        if (!m_error && m_result.demo && !m_result.database.isEmpty())
            fail(u"--demo opens the demo shop's own file: leave out either --demo or --database."_s);
        if (!m_error)
            finishErrand();
        if (m_error)
            return Unexpected(*m_error);
        return m_result;
    }

private:
    void readOption(const QString &argument)
    {
        const qsizetype equals = argument.indexOf(u'=');
        const QString name = argument.left(equals);
        const bool hasValue = equals >= 0;
        if (name == u"--database"_s)
            readDatabase(hasValue, argument.mid(equals + 1));
        else if (name == u"--drawer"_s)
            readDrawer(hasValue ? argument.mid(equals + 1) : takeValue());
        else if (name == u"--customer-display"_s)
            readCustomerDisplay(hasValue, argument.mid(equals + 1));
        else if (name == u"--look"_s)
            readLook(hasValue ? argument.mid(equals + 1) : takeValue());
        else if (const auto values = ErrandLineReader::valuesOf(name))
            readErrand(name, values->size(), hasValue ? argument.mid(equals + 1) : QString(), hasValue);
        else if (hasValue || !readSwitch(argument))
            readQtOption(argument, name, hasValue ? argument.mid(equals + 1) : QString(), hasValue);
    }

    bool readSwitch(const QString &argument)
    {
        bool *const given = switchNamed(argument);
        if (given != nullptr)
            *given = true;
        return given != nullptr;
    }

    bool *switchNamed(const QString &name)
    {
        const std::pair<QString, bool *> switches[] = {
            {officeOption, &m_result.office},
            {u"--touch-keyboard"_s, &m_result.touchKeyboard},
            {u"--no-plugins"_s, &m_result.noPlugins},
            {u"--demo"_s, &m_result.demo},
            {u"--verbose"_s, &m_result.verbose},
            {u"--help"_s, &m_result.help},
            {u"-h"_s, &m_result.help},
            {u"--version"_s, &m_result.version},
            {u"-v"_s, &m_result.version},
        };
        for (const auto &[known, given] : switches) {
            if (name == known)
                return given;
        }
        return nullptr;
    }

    void readDatabase(bool hasValue, const QString &value)
    {
        const QString file = hasValue ? value : takeValue();
        if (file.isEmpty())
            return fail(u"--database needs the name of a file, or the address of a server."_s);
        if (!m_result.database.isEmpty())
            return fail(u"--database is given twice; a till sells from one store."_s);
        const bool isPath = file != memoryName && !isServer(file);
        m_result.database = isPath ? QFileInfo(file).absoluteFilePath() : file;
    }

    void readDrawer(const QString &value)
    {
        if (value.simplified().isEmpty())
            return fail(u"--drawer needs the name of this till's drawer."_s);
        m_result.drawer = value;
    }

    /// The screen may be left out, so what begins with a hyphen is the next option.
    void readCustomerDisplay(bool hasValue, const QString &value)
    {
        const bool isNext = !hasValue && m_next < m_arguments.size() && !m_arguments.at(m_next).startsWith(u'-');
        const QString screen = (isNext ? takeValue() : value).trimmed();
        bool isNumber = false;
        const bool isCounted = screen.toLongLong(&isNumber) >= 1;
        if ((screen.isEmpty() && (hasValue || isNext)) || (isNumber && !isCounted))
            return fail(u"--customer-display takes the name of a screen, or its number, counted from 1."_s);
        m_result.customerDisplay = hasValue || isNext ? screen : u""_s;
    }

    void readLook(const QString &value)
    {
        if (!lookNamed(value))
            return fail(u"--look takes light, dark or system."_s);
        m_result.look = value.toLower();
    }

    void readErrand(const QString &name, qsizetype needed, const QString &givenValue, bool hasValue)
    {
        QStringList values = hasValue ? QStringList(givenValue) : QStringList();
        while (values.size() < needed && m_next < m_arguments.size())
            values << takeValue();
        if (const QString error = m_errand.take(name, values); !error.isEmpty())
            fail(error);
    }

    void finishErrand()
    {
        auto errand = m_errand.finish();
        if (!errand)
            return fail(errand.error());
        m_result.errand = *std::move(errand);
        if (m_result.errand.isGiven() && m_result.office)
            fail(u"%1 needs no window: leave out --office."_s.arg(m_result.errand.name));
        if (m_result.errand.name == errand::copyStore && (m_result.demo || !m_result.database.isEmpty()))
            fail(u"--copy-store names both stores itself: leave out --database and --demo."_s);
    }

    void readQtOption(const QString &argument, const QString &dashedName, const QString &givenValue, bool hasValue)
    {
        const QString name = dashedName.startsWith(u"--"_s) ? dashedName.mid(2) : dashedName.mid(1);
        if (!dashedName.startsWith(u'-') || !(isQtOptionWithValue(name) || (isQtSwitch(name) && !hasValue)))
            return fail(u"\"%1\" is not known."_s.arg(argument));
        if (isQtSwitch(name))
            return;
        const QString value = hasValue ? givenValue : takeValue();
        if (name == u"platform"_s)
            m_result.platform = value;
        else if (name == u"display"_s)
            m_result.display = value;
    }

    QString takeValue() { return m_next < m_arguments.size() ? m_arguments.at(m_next++) : QString(); }
    void fail(const QString &error) { m_error = error; }

    QStringList m_arguments;
    qsizetype m_next = 0;
    CommandLine m_result;
    ErrandLineReader m_errand;
    std::optional<QString> m_error;
};

} // namespace

Result<CommandLine, QString> readCommandLine(const QStringList &arguments)
{
    return Reader(arguments).read();
}

QString helpText()
{
    return u"Usage: harrowby [options]\n"
           "Point of sale and stock inventory for one shop counter.\n"
           "\n"
           "  --database FILE  open this store file; a new one is created when it does not exist\n"
           "  --database postgresql://HOST/NAME, --database service=NAME\n"
           "                   open the store on this server, as libpq finds it; see \"A shop with several tills\"\n"
           "  --demo           open the demo shop\n"
           "  --office         open the store's office instead of the till: what is in stock, users and their rights,\n"
           "                   receipts, backups; asks for user name and password\n"
           "  --drawer NAME    the name of this till's drawer, which its payments bear; otherwise the one that the "
           "office "
           "has\n"
           "                   saved on this machine, or the machine's own name\n"
           "  --customer-display [SCREEN]\n"
           "                   show the customer what is sold on the second screen, or on that of this number or name\n"
           "  --touch-keyboard show a keyboard on the screen wherever text is typed\n"
           "  --look LOOK      light, dark, or system, which is as the desktop has it; kept for the next start\n"
           "  --no-plugins     load no plugins: the till is without its sales report\n"
           "  --verbose        show what goes into the log file in the terminal too\n"
           "  --backup FOLDER [--keep N]\n"
           "                   make a checked backup in this folder, beside tills that sell, and let N of them stay; "
           "needs\n"
           "                   no display\n"
           "  --export KIND FILE [--from DAY] [--to DAY] [--separator NAME] [--decimal NAME]\n"
           "                   write items, categories, codes, or purchases or activity (of these days) into a CSV\n"
           "                   file, with a comma, semicolon, tab or bar between cells and a decimal point or comma;\n"
           "                   needs no display\n"
           "  --import FILE [--dry-run] [--valid-rows] [--kind KIND] [--encoding NAME] [--separator NAME] [--decimal "
           "NAME]\n"
           "                [--columns COLUMN=HEADING,…] [--stock-in-hand] [--capitals] [--no-categories] "
           "[--as-stored]\n"
           "                   compare a CSV file of items, categories or codes with the store, say what is new, "
           "changed "
           "and\n"
           "                   refused, and import it, all rows or none unless --valid-rows; needs no display\n"
           "  --copy-store FROM TO\n"
           "                   copy a whole store from a file to a server whose store is empty, or from a server to a "
           "new\n"
           "                   file, while nobody has it open; a server is postgresql://HOST/NAME or service=NAME; "
           "needs "
           "no\n"
           "                   display\n"
           "  --restore FILE   bring back what this backup holds, while nobody has the store open; needs no display\n"
           "  -h, --help       show this help and leave\n"
           "  -v, --version    show the version and leave\n"
           "\n"
           "Without --database and --demo the store file is Harrowby/store.sqlite in your data folder\n"
           "(~/.local/share unless XDG_DATA_HOME says otherwise). Qt's options, such as -platform, work too.\n"_s;
}

QString versionText()
{
    return u"harrowby "_s + QLatin1StringView(HARROWBY_VERSION) + u'\n';
}

} // namespace harrowby::app
