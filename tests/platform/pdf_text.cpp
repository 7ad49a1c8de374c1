// SPDX-License-Identifier: MIT
#include "tests/platform/pdf_text.h"

#include <QProcess>

using namespace Qt::StringLiterals;

namespace harrowby::testing {

QList<QStringList> pdfPages(const QString &file)
{
    QProcess process;
    process.start(u"pdftotext"_s, {u"-layout"_s, u"-enc"_s, u"UTF-8"_s, file, u"-"_s});
    if (!process.waitForFinished() || process.exitCode() != 0)
        return {};
    QStringList texts = QString::fromUtf8(process.readAllStandardOutput()).split(u'\f');
    texts.removeLast(); // a form feed ends each page
    QList<QStringList> pages;
    for (const QString &text : std::as_const(texts)) {
        QStringList lines;
        for (const QString &line : text.split(u'\n'))
            lines += line.trimmed();
        lines.removeAll(QString());
        pages += lines;
    }
    return pages;
}

QStringList pdfLines(const QString &file)
{
    QStringList all;
    for (const QStringList &page : pdfPages(file))
        all += page;
    return all;
}

} // namespace harrowby::testing
