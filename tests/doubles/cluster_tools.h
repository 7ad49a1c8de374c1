// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

#include <vector>

#include <sys/types.h>

class QProcess;

/// What private clusters are made with: PostgreSQL's programs, and the user that they run as.
namespace harrowby::test::cluster {

/// Why the machine can have no private cluster; empty when it can.
[[nodiscard]] QString missing();

/// The folder of this test run's clusters below that of its build: named after the process that runs the tests, this
/// one's parent, so that two runs at once have nothing in common.
[[nodiscard]] QString runFolder(const QString &ofBuild);
/// A folder that clusters are made in: the one of this run below the folder that the environment variable
/// HARROWBY_TEST_CLUSTERS names, or the system's. The path of a socket in it is short enough.
[[nodiscard]] QString parentFolder();
/// A freshly initialised data folder to be copied: the one of this run, or one that this program makes once.
[[nodiscard]] QString templateFolder();
/// Makes it: FOLDER/template. Who runs servers must be able to pass through the folder.
void makeTemplateIn(const QString &folder);

/// Hands a folder to the user that servers run as.
void giveAway(const QString &folder);
/// One of PostgreSQL's programs.
[[nodiscard]] QString program(const QString &name);
/// Has a process run as that user, and end with this one.
void prepare(QProcess &process);
/// Runs a program to its end as that user; one that fails ends the test program with its output.
void run(const QString &program, const QStringList &arguments, const QByteArray &input = {});

/// A port of 127.0.0.1 that nobody listens on.
[[nodiscard]] quint16 freePort();
/// The children of a process.
[[nodiscard]] std::vector<pid_t> childrenOf(pid_t process);
/// Returns when a process has ended, if only as one that nobody has waited for yet.
void awaitEnd(pid_t process);

} // namespace harrowby::test::cluster
