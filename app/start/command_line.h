// SPDX-License-Identifier: MIT
#pragma once

#include "app/start/errand_line.h"
#include "basic/result.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace harrowby::app {

struct CommandLine
{
    bool help = false;
    bool version = false;
    bool demo = false;
    bool verbose = false;
    bool office = false;        ///< the store's own windows instead of the till
    bool touchKeyboard = false; ///< Qt's keyboard on the screen
    bool noPlugins = false;     ///< no foreign component is loaded
    QString database;           ///< absolute path, memoryName or a server's address; empty when it was not given
    QString drawer;             ///< the name of this till's drawer; empty when the option was not given
    /// Number or name of the customer's screen, empty for the second one; nothing when the option was not given.
    std::optional<QString> customerDisplay;
    ErrandLine errand; ///< what is to be done without a window
    QString look;      ///< "light", "dark" or "system"; empty when the option was not given
    QString platform;  ///< what Qt's own option -platform names; empty when it was not given
    QString display;   ///< what Qt's own option -display names
};

/// Reads the arguments (without the program's name), or says why they are refused. Needs no application object, so that
/// --help works without a display. Qt's own options are let through.
///
/// Read by hand and not by QCommandLineParser: to let -platform through, that one has to take -demo for --demo as well,
/// it takes "--" for nothing, names a refused option without its hyphens and value, and sets the help in lines of its
/// own.
[[nodiscard]] Result<CommandLine, QString> readCommandLine(const QStringList &arguments);

[[nodiscard]] QString helpText();
[[nodiscard]] QString versionText();

} // namespace harrowby::app
