// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

namespace harrowby::app::test {

/// False programs "lp", "lpstat" and "cancel", first in this process's PATH, which note how they are called.
class FalsePrintService
{
public:
    FalsePrintService();
    ~FalsePrintService();
    FalsePrintService(const FalsePrintService &) = delete;
    FalsePrintService &operator=(const FalsePrintService &) = delete;

    /// Takes each job as till-7 and has it printed at once; forgets what it has noted.
    void reset();
    /// How many times lpstat still lists the job; -1 for always.
    void setTakenAfter(int looks) const;
    /// The lines of a shell script that runs in its place, after the call has been noted; "-": there is no such
    /// program.
    void answerLp(const QString &script) const;
    /// What lpstat says, instead of the jobs.
    void answerList(const QString &lines) const;
    void answerCancel(const QString &script) const;
    /// The programs of the system count again.
    void leave() const;

    [[nodiscard]] QStringList calls() const;
    [[nodiscard]] QByteArray printed() const;

private:
    void write(const QString &program, const QString &script) const;

    QTemporaryDir m_folder;
    QByteArray m_path; ///< PATH as it was
};

} // namespace harrowby::app::test
