// SPDX-License-Identifier: MIT
#include "app/exchange/sample.h"

#include "app/catalogue/import_columns.h"
#include "app/exchange/grid_view.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr qsizetype sampleBytes = qsizetype{1} << 18; // even, so that no unit of UTF-16 is cut
constexpr qsizetype sampleRows = 30;
constexpr qsizetype shownColumns = 60;
constexpr qsizetype examples = 3;
constexpr qsizetype lettersOfExample = 24;

} // namespace

QString Sample::examplesOf(int column) const
{
    QStringList found;
    for (const CsvRow &row : rows) {
        const QString cell = lineOf(row.cells.value(column).trimmed());
        const QString shown = cell.size() > lettersOfExample ? cell.left(lettersOfExample) + u'\u2026' : cell;
        if (!shown.isEmpty() && !found.contains(shown))
            found << shown;
        if (found.size() == examples)
            break;
    }
    return found.join(u", "_s);
}

QByteArrayView beginningOf(QByteArrayView bytes)
{
    return bytes.first(std::min(bytes.size(), sampleBytes));
}

Sample readSample(QByteArrayView bytes, const CsvForm &form, bool hasHeadings)
{
    const bool isCut = bytes.size() > sampleBytes;
    CsvReader reader(beginningOf(bytes), form);
    Sample sample;
    CsvRow row;
    if (reader.next(row)) {
        sample.headings = hasHeadings ? row.cells : numberedHeadings(row.cells.size());
        if (!hasHeadings)
            sample.rows << row;
    }
    bool isAtEnd = false;
    while (sample.rows.size() < sampleRows && !(isAtEnd = !reader.next(row)))
        sample.rows << row;
    if (isCut && isAtEnd && sample.rows.size() > 1)
        sample.rows.removeLast();
    return sample;
}

void SampleModel::show(Sample sample)
{
    beginResetModel();
    m_sample = std::move(sample);
    endResetModel();
}

int SampleModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_sample.rows.size());
}

int SampleModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : 1 + static_cast<int>(std::min(m_sample.headings.size(), shownColumns));
}

QVariant SampleModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || role != Qt::DisplayRole)
        return {};
    const CsvRow &row = m_sample.rows.at(index.row());
    return index.column() == 0 ? QVariant(row.line) : QVariant(lineOf(row.cells.value(index.column() - 1)));
}

QVariant SampleModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || section < 0 || section >= columnCount())
        return {};
    if (role == Qt::TextAlignmentRole)
        return QVariant(Qt::AlignVCenter | Qt::AlignLeft);
    if (role != Qt::DisplayRole)
        return {};
    return section == 0 ? u"Line"_s : lineOf(m_sample.headings.at(section - 1));
}

} // namespace harrowby::app
