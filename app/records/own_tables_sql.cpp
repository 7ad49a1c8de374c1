// SPDX-License-Identifier: MIT
// Writes what makes the store program's own tables into the file that it is given: on a server the set-up makes them.
#include "app/records/record_tables.h"

#include <QFile>

int main(int argc, char **argv)
{
    using namespace harrowby::app;
    QFile file(argc == 2 ? QString::fromLocal8Bit(argv[1]) : QString());
    if (!file.open(QIODevice::WriteOnly))
        return 1;
    for (const RecordTable *table : kept::all()) {
        for (const QString &statement : kept::makingOnServer(*table))
            file.write(statement.toUtf8() + ";\n");
    }
    return file.flush() ? 0 : 1;
}
