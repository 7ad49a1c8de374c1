// SPDX-License-Identifier: MIT
#include "app/exchange/source_file.h"

#include "app/shop/failure_text.h"

#include <QFileInfo>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

struct Beginning
{
    QByteArrayView bytes;
    QStringView what;
    bool isSpreadsheet = false;
};

// A zip is what today's spreadsheets save; the older ones save the second.
constexpr std::array<Beginning, 10> beginnings = {{
    {QByteArrayView("PK\x03\x04", 4), u"a spreadsheet in its own form", true},
    {QByteArrayView("\xD0\xCF\x11\xE0", 4), u"a spreadsheet in its own form", true},
    {QByteArrayView("\x89PNG", 4), u"a picture", false},
    {QByteArrayView("\xFF\xD8\xFF", 3), u"a picture", false},
    {QByteArrayView("GIF8", 4), u"a picture", false},
    {QByteArrayView("RIFF", 4), u"a picture or a sound", false},
    {QByteArrayView("%PDF", 4), u"a PDF file", false},
    {QByteArrayView("\x1F\x8B", 2), u"a packed file", false},
    {QByteArrayView("\x7F"
                    "ELF",
                    4),
     u"a program", false},
    {QByteArrayView("SQLite format 3", 15), u"a store or a backup", false},
}};

constexpr QStringView howToSave =
    u"In the program that you keep your list with, use \"Save As\" or \"Download\", choose \"CSV\", "
    "and import that file.";

} // namespace

std::optional<QString> whyNoList(QByteArrayView bytes)
{
    const auto *found = std::find_if(beginnings.begin(), beginnings.end(),
                                     [&](const Beginning &one) { return bytes.startsWith(one.bytes); });
    if (found == beginnings.end())
        return {};
    if (found->isSpreadsheet)
        return u"This is %1, which only that program reads. %2"_s.arg(found->what, howToSave);
    return u"This is %1 and no list of items. %2"_s.arg(found->what, howToSave);
}

Result<ImportFile, QString> readList(const QString &path)
{
    const QFileInfo info(path);
    const QString name = wrappingPath(path);
    if (!info.exists())
        return Unexpected(u"The file is not there: %1"_s.arg(name));
    if (info.isDir())
        return Unexpected(u"This is a folder. Please choose one file in it: %1"_s.arg(name));
    if (!info.isFile())
        return Unexpected(u"This is no ordinary file: %1"_s.arg(name));
    auto file = readImportFile(path);
    if (!file)
        return file;
    if (file->bytes.isEmpty())
        return Unexpected(u"The file is empty. %1"_s.arg(howToSave));
    if (const auto problem = whyNoList(file->bytes))
        return Unexpected(*problem);
    return file;
}

Result<QString, QString> oneFileOf(const QList<QUrl> &urls)
{
    if (urls.size() > 1)
        return Unexpected(u"Please drag one file at a time."_s);
    if (urls.isEmpty() || !urls.constFirst().isLocalFile())
        return Unexpected(u"Please drag a file of this computer. What comes from a web page, save first."_s);
    return urls.constFirst().toLocalFile();
}

} // namespace harrowby::app
