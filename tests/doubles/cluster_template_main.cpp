// SPDX-License-Identifier: MIT
#include "tests/doubles/cluster_tools.h"

#include <QCoreApplication>
#include <QDir>

#include <csignal>

namespace {

/// Of runs that were killed.
void removeLeftFolders(const QDir &ofBuild)
{
    for (const QString &run : ofBuild.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        if (::kill(run.toInt(), 0) != 0)
            QDir(ofBuild.filePath(run)).removeRecursively();
    }
}

} // namespace

/// Makes the folder of a test run's private clusters below that of its build, with the data that all of them begin
/// with: PROGRAM FOLDER.
int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QString missing = harrowby::test::cluster::missing();
    if (!missing.isEmpty())
        qFatal("%s", qPrintable(missing));
    const QString ofBuild = application.arguments().value(1);
    removeLeftFolders(QDir(ofBuild));
    const QString folder = harrowby::test::cluster::runFolder(ofBuild);
    if (ofBuild.isEmpty() || !QDir(folder).removeRecursively() || !QDir().mkpath(folder))
        qFatal("%s: no such folder can be made", qPrintable(folder));
    harrowby::test::cluster::makeTemplateIn(folder);
    return 0;
}
