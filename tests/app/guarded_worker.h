// SPDX-License-Identifier: MIT
#pragma once

#include <QProcess>
#include <QString>

#include <memory>

namespace harrowby::app {

class BusyWait;
class StoreGuard;

} // namespace harrowby::app

/// A program that works on a store file as the till or the office does, and does each step when it is told: so that a
/// file can be moved under it, and the program be closed or killed, at a known moment.
namespace harrowby::app::test {

/// What the test program does when it is started with these arguments: "--work", "till" or "office", and the file.
[[nodiscard]] bool isWorker(int argc, char **argv);
int runWorker(int argc, char **argv);

/// Runs shell commands in the folder, with $S for the store file in it and $O for another store.
void runInFolder(const QString &folder, const QString &commands);
/// A guard over the store, in this process.
[[nodiscard]] std::unique_ptr<StoreGuard> guardStore(const QString &path, BusyWait &wait);

/// Starts the test program itself as a worker.
class Worker
{
public:
    Worker(const QString &role, const QString &store);
    ~Worker();
    Worker(const Worker &) = delete;
    Worker &operator=(const Worker &) = delete;

    /// One of
    ///   write TEXT   adds a line to SysUsage: "ok" or the reason why not
    ///   work NUMBER  adds so many lines, with a tick after each third: "ok" or the reason of the first failure
    ///   touch        changes no row: "ok" or the reason
    ///   read         reads: "ok" or the reason
    ///   tick         what the guard's timer does: "fine" or the kind of the loss
    ///   now          where the file lies that was opened
    ///   aside        where its log was put
    ///   rescue FILE  makes a rescue copy: "ok" or the reason
    QString ask(const QString &order);
    /// The same in two, so that several work at once.
    void send(const QString &order);
    QString hear();
    /// As the window is closed; the exit code.
    int close();
    void kill();

private:
    QProcess m_process;
};

} // namespace harrowby::app::test
