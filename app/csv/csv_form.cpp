// SPDX-License-Identifier: MIT
#include "app/csv/csv_form.h"

#include <QHash>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

template <typename T>
std::optional<T> named(const QHash<QString, T> &names, const QString &name)
{
    const auto found = names.constFind(name.trimmed().toLower());
    return found == names.cend() ? std::nullopt : std::optional(*found);
}

} // namespace

const QList<QChar> &csvSeparators()
{
    static const QList<QChar> separators = {u',', u';', u'\t', u'|'};
    return separators;
}

std::optional<QChar> separatorNamed(const QString &name)
{
    if (name == u"\t"_s)
        return u'\t';
    static const QHash<QString, QChar> names = {{u","_s, u','},         {u"comma"_s, u','}, {u";"_s, u';'},
                                                {u"semicolon"_s, u';'}, {u"tab"_s, u'\t'},  {u"|"_s, u'|'},
                                                {u"bar"_s, u'|'},       {u"\\t"_s, u'\t'}};
    return named(names, name);
}

std::optional<QChar> decimalSignNamed(const QString &name)
{
    static const QHash<QString, QChar> names = {{u"."_s, u'.'}, {u"point"_s, u'.'}, {u","_s, u','}, {u"comma"_s, u','}};
    return named(names, name);
}

std::optional<CsvEncoding> encodingNamed(const QString &name)
{
    using enum CsvEncoding;
    static const QHash<QString, CsvEncoding> names = {{u"utf8"_s, Utf8},
                                                      {u"utf16"_s, Utf16LittleEndian},
                                                      {u"utf16le"_s, Utf16LittleEndian},
                                                      {u"utf16be"_s, Utf16BigEndian},
                                                      {u"windows1252"_s, Windows1252}};
    return named(names, QString(name).remove(u'-'));
}

QString encodingWords(CsvEncoding encoding)
{
    switch (encoding) {
    case CsvEncoding::Utf16LittleEndian:
        return u"UTF-16"_s;
    case CsvEncoding::Utf16BigEndian:
        return u"UTF-16 (big endian)"_s;
    case CsvEncoding::Windows1252:
        return u"Windows-1252"_s;
    case CsvEncoding::Utf8:
        break;
    }
    return u"UTF-8"_s;
}

QString decimalSignWords(QChar sign)
{
    return sign == u',' ? u"Comma: 1,50"_s : u"Point: 1.50"_s;
}

QString separatorWords(QChar separator)
{
    switch (separator.unicode()) {
    case u',':
        return u"Comma ( , )"_s;
    case u';':
        return u"Semicolon ( ; )"_s;
    case u'\t':
        return u"Tab"_s;
    case u'|':
        return u"Bar ( | )"_s;
    default:
        return separator;
    }
}

} // namespace harrowby::app
