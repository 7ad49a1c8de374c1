// SPDX-License-Identifier: MIT
#include "tests/doubles/cluster_tools.h"

#include <QCoreApplication>
#include <QDir>

/// Makes the folder of a test run's private clusters, with the data that all of them begin with: PROGRAM FOLDER.
int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QString folder = application.arguments().value(1);
    const QString missing = harrowby::test::cluster::missing();
    if (!missing.isEmpty())
        qFatal("%s", qPrintable(missing));
    if (folder.isEmpty() || !QDir(folder).removeRecursively() || !QDir().mkpath(folder))
        qFatal("%s: no such folder can be made", qPrintable(folder));
    harrowby::test::cluster::makeTemplateIn(folder);
    return 0;
}
