// SPDX-License-Identifier: MIT
#include "app/catalogue/import_file.h"

#include "app/csv/csv_reader.h"
#include "basic/private_files.h"
#include "basic/text.h"

#include <QCryptographicHash>
#include <QFileInfo>
#include <QLocale>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr qint64 largestFile = qint64{512} << 20; ///< some million items

} // namespace

QString ImportFile::name() const
{
    return QFileInfo(path).fileName();
}

Result<ImportFile, QString> readImportFile(const QString &path)
{
    QFile file(path);
    if (const auto opened = openOrdinaryFile(file, QIODevice::ReadOnly); !opened)
        return Unexpected(u"The file \"%1\" cannot be read (%2)."_s.arg(path, opened.error()));
    if (file.size() > largestFile)
        return Unexpected(
            u"The file \"%1\" is larger than %2."_s.arg(path, QLocale::c().formattedDataSize(largestFile)));
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        return Unexpected(u"The file \"%1\" cannot be read (%2)."_s.arg(path, file.errorString()));
    return ImportFile{path, bytes,
                      QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex())};
}

QStringList headingsOf(QByteArrayView bytes, const CsvForm &form)
{
    CsvReader reader(bytes, form);
    CsvRow row;
    QStringList headings;
    if (reader.next(row)) {
        for (const QString &cell : row.cells)
            headings << trimBlanks(cell);
    }
    return headings;
}

} // namespace harrowby::app
