// SPDX-License-Identifier: MIT
#include "app/csv/stored_cell.h"

#include "app/csv/decoding.h"
#include "app/csv/figures.h"
#include "basic/csv_cell.h"

#include <QHash>

#include <algorithm>
#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

namespace mark {
const QString null = u"null"_s;
const QString text = u"text"_s;
const QString integer = u"integer"_s;
const QString real = u"real"_s;
const QString infinite = u"infinite"_s;
const QString blob = u"blob"_s;
const QString escaped = u"escaped"_s;
} // namespace mark

QString hexOf(QByteArrayView bytes)
{
    return QString::fromLatin1(bytes.toByteArray().toHex().toUpper());
}

std::optional<QByteArray> bytesOfHex(QStringView digits)
{
    const QByteArray bytes = QByteArray::fromHex(digits.toLatin1());
    return hexOf(bytes) == digits ? std::optional(bytes) : std::nullopt;
}

QString escapedText(QByteArrayView utf8)
{
    QByteArray text;
    for (qsizetype at = 0; at < utf8.size();) {
        const qsizetype length = utf8[at] == '\0' ? 0 : characterLength(utf8.sliced(at));
        if (length == 0)
            text += "\\x" + utf8.sliced(at, 1).toByteArray().toHex().toUpper();
        else if (utf8[at] == '\\')
            text += "\\\\";
        else
            text += utf8.sliced(at, length);
        at += qMax<qsizetype>(length, 1);
    }
    QString decoded;
    (void)decodeBytes(decoded, text, CsvEncoding::Utf8);
    return decoded;
}

std::optional<QByteArray> unescapedText(const QString &text)
{
    const QByteArray utf8 = text.toUtf8();
    QByteArray bytes;
    for (qsizetype at = 0; at < utf8.size(); ++at) {
        if (utf8[at] != '\\') {
            bytes += utf8[at];
        } else if (const QByteArrayView rest = QByteArrayView(utf8).sliced(at + 1); rest.startsWith('\\')) {
            bytes += '\\';
            ++at;
        } else {
            const auto byte = rest.startsWith('x')
                                  ? bytesOfHex(QString::fromLatin1(rest.sliced(1, qMin<qsizetype>(2, rest.size() - 1))))
                                  : std::nullopt;
            if (!byte || byte->size() != 1)
                return {};
            bytes += *byte;
            at += 3;
        }
    }
    return bytes;
}

std::optional<StoredValue> readFigureCell(const QString &cell, QChar decimalSign)
{
    if (const auto integer = readInteger(cell))
        return StoredValue{*integer, false};
    if (const auto real = readFigure(cell, decimalSign))
        return StoredValue{*real, false};
    return {};
}

std::optional<StoredValue> readMarked(const QString &word, const QString &cell, QChar decimalSign)
{
    const auto bytesValue = [](const std::optional<QByteArray> &bytes, bool isText) {
        return bytes ? std::optional(StoredValue{*bytes, isText}) : std::nullopt;
    };
    if (word == mark::null && cell.isEmpty())
        return StoredValue{};
    if (word == mark::text)
        return StoredValue{cell, false};
    if (word == mark::integer || word == mark::real)
        return readFigureCell(cell, decimalSign);
    if (word == mark::infinite && (cell == u"inf"_s || cell == u"-inf"_s))
        return StoredValue{std::numeric_limits<double>::infinity() * (cell.startsWith(u'-') ? -1 : 1), false};
    if (word == mark::blob && cell.startsWith(u"0x"_s))
        return bytesValue(bytesOfHex(QStringView(cell).sliced(2)), false);
    if (word == mark::escaped) {
        const auto bytes = unescapedText(cell);
        QString text; // a person may have typed one in its place
        if (bytes && !bytes->contains('\0') && decodeBytes(text, *bytes, CsvEncoding::Utf8))
            return StoredValue{text, false};
        return bytesValue(bytes, true);
    }
    return {};
}

/// "StockCost:null StockName:escaped" by column.
std::optional<QHash<QString, QString>> readMarks(const QString &text)
{
    QHash<QString, QString> marks;
    const QStringList words = text.split(u' ', Qt::SkipEmptyParts);
    for (const QString &word : words) {
        const qsizetype colon = word.indexOf(u':');
        if (colon < 1)
            return {};
        marks.insert(word.left(colon), word.mid(colon + 1));
    }
    return marks;
}

} // namespace

const QString &asStoredHeading()
{
    static const QString heading = u"As Stored"_s;
    return heading;
}

void StoredRowWriter::value(const StoredColumn &column, const DbValue &value)
{
    const bool isFigure = column.kind == ColumnKind::Figure;
    if (const auto *whole = std::get_if<std::int64_t>(&value)) {
        m_out.figure(*whole);
        if (!isFigure)
            mark(column, mark::integer);
    } else if (const auto *real = std::get_if<double>(&value)) {
        m_out.figure(*real);
        if (std::isinf(*real))
            mark(column, mark::infinite);
        else if (!isFigure)
            mark(column, mark::real);
    } else if (const auto *words = std::get_if<QString>(&value)) {
        text(column, words->toUtf8());
    } else if (const auto *bytes = std::get_if<QByteArray>(&value)) {
        m_out.text(u"0x"_s + hexOf(*bytes));
        mark(column, mark::blob);
    } else {
        m_out.text({});
        mark(column, mark::null);
    }
}

void StoredRowWriter::text(const StoredColumn &column, QByteArrayView utf8)
{
    QString decoded;
    if (!decodeBytes(decoded, utf8, CsvEncoding::Utf8) || utf8.contains('\0')) {
        m_out.text(escapedText(utf8));
        mark(column, mark::escaped);
        return;
    }
    m_out.text(decoded);
    if (column.kind == ColumnKind::Figure)
        mark(column, mark::text);
}

void StoredRowWriter::end()
{
    m_out.text(m_marks.join(u' '));
    m_out.endRow();
    m_marks.clear();
}

void StoredRowWriter::mark(const StoredColumn &column, const QString &word)
{
    m_marks << column.name + u':' + word;
}

QStringList exportHeadings(const QList<StoredColumn> &columns)
{
    QStringList headings;
    for (const StoredColumn &column : columns)
        headings << column.name;
    return headings << asStoredHeading();
}

bool isExportOf(const QStringList &headings, const QList<StoredColumn> &columns)
{
    return headings == exportHeadings(columns);
}

bool isPartOfExport(const QStringList &headings, const QList<StoredColumn> &columns)
{
    const QStringList all = exportHeadings(columns);
    const auto isOne = [&all](const QString &heading) { return all.contains(heading); };
    return !headings.isEmpty() && std::all_of(headings.begin(), headings.end(), isOne);
}

std::optional<QList<StoredValue>> readStoredRow(const QStringList &cells, const QList<StoredColumn> &columns,
                                                QChar decimalSign, int *faultyColumn)
{
    const auto fail = [faultyColumn](qsizetype column) {
        if (faultyColumn != nullptr)
            *faultyColumn = static_cast<int>(column);
        return std::nullopt;
    };
    if (cells.size() != columns.size() + 1)
        return fail(qMin(cells.size(), columns.size()));
    auto marks = readMarks(cells.constLast());
    if (!marks)
        return fail(columns.size());
    QList<StoredValue> values;
    for (qsizetype i = 0; i < columns.size(); ++i) {
        const QString cell = unguardedText(cells.at(i), true);
        const StoredColumn &column = columns.at(i);
        const bool isMarked = marks->contains(column.name);
        const auto value = isMarked                            ? readMarked(marks->take(column.name), cell, decimalSign)
                           : column.kind == ColumnKind::Figure ? readFigureCell(cell, decimalSign)
                                                               : std::optional(StoredValue{cell, false});
        if (!value)
            return fail(i);
        values << *value;
    }
    return marks->isEmpty() ? std::optional(values) : fail(columns.size());
}

int columnOfBytes(const QStringList &cells, const QList<StoredColumn> &columns)
{
    const auto marks = readMarks(cells.value(columns.size()));
    for (qsizetype i = 0; marks && i < columns.size(); ++i) {
        const QString word = marks->value(columns.at(i).name);
        if (word != mark::blob && word != mark::escaped)
            continue;
        const auto value = readMarked(word, unguardedText(cells.value(i), true), u'.');
        if (value && std::holds_alternative<QByteArray>(value->value))
            return static_cast<int>(i);
    }
    return -1;
}

std::optional<QChar> decimalSignOfStoredRow(const QStringList &cells, const QList<StoredColumn> &columns)
{
    // Spreadsheets leave the empty cells at a row's end out.
    const auto marks = cells.size() <= columns.size() + 1 ? readMarks(cells.value(columns.size())) : std::nullopt;
    if (!marks)
        return {};
    for (qsizetype i = 0; i < columns.size(); ++i) {
        const QString usual = columns.at(i).kind == ColumnKind::Figure ? mark::real : mark::text;
        if (marks->value(columns.at(i).name, usual) != mark::real)
            continue;
        for (const QChar sign : {u'.', u','}) {
            if (cells.value(i).contains(sign))
                return sign;
        }
    }
    return {};
}

const QList<StoredColumn> *columnsOfExport(const QStringList &headings)
{
    for (const auto *columns : {&itemColumns(), &categoryColumns(), &codeColumns(), &purchaseColumns()}) {
        if (isExportOf(headings, *columns))
            return columns;
    }
    return nullptr;
}

const QList<StoredColumn> &itemColumns()
{
    using enum ColumnKind;
    static const QList<StoredColumn> columns = {
        {u"StockID"_s, Text},     {u"StockName"_s, Text},           {u"StockCategory"_s, Text},
        {u"StockCost"_s, Figure}, {u"StockReorderLevel"_s, Figure}, {u"StockAvailable"_s, Figure},
        {u"StockUse"_s, Text},    {u"StockLastUpdated"_s, Text},    {u"StockLastModified"_s, Text},
        {u"StockAdded"_s, Text},  {u"StockReorderUser"_s, Text}};
    return columns;
}

const QList<StoredColumn> &categoryColumns()
{
    using enum ColumnKind;
    static const QList<StoredColumn> columns = {{u"CategoryName"_s, Text}, {u"EntryDate"_s, Text}};
    return columns;
}

const QList<StoredColumn> &codeColumns()
{
    using enum ColumnKind;
    static const QList<StoredColumn> columns = {{u"Code"_s, Text}, {u"StockID"_s, Text}, {u"Units"_s, Figure}};
    return columns;
}

const QList<StoredColumn> &purchaseColumns()
{
    using enum ColumnKind;
    static const QList<StoredColumn> columns = {
        {u"PurchaseID"_s, Text},           {u"PurchasedItems"_s, Text}, {u"PurchasedItemsTotal"_s, Figure},
        {u"PurchasedItemsCost"_s, Figure}, {u"PurchasedDate"_s, Text},  {u"Users"_s, Text}};
    return columns;
}

} // namespace harrowby::app
