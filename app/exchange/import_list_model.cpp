// SPDX-License-Identifier: MIT
#include "app/exchange/import_list_model.h"

#include "app/catalogue/import_list.h"
#include "app/exchange/grid_view.h"
#include "app/exchange/kind_words.h"

#include <algorithm>
#include <array>
#include <limits>
#include <memory>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr std::array<QStringView, ImportListModel::ColumnCount> captions = {u"Line", u"Row", u"ID", u"Name",
                                                                            u"What becomes of it"};
constexpr int rowsOfPage = 100;
constexpr int mostPages = 30;

} // namespace

void ImportListModel::show(ImportKind kind, qint64 count, Fetch fetch)
{
    beginResetModel();
    m_kind = kind;
    m_count = static_cast<int>(std::min<qint64>(count, std::numeric_limits<int>::max()));
    m_fetch = std::move(fetch);
    m_pages.clear();
    m_pages.setMaxCost(mostPages);
    endResetModel();
}

int ImportListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_count;
}

int ImportListModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

/// A page that failed is kept as an empty one, so that it is told once and not at each painting.
const ImportedRow *ImportListModel::row(int row) const
{
    const int page = row / rowsOfPage;
    const QList<ImportedRow> *rows = m_pages.object(page);
    if (rows == nullptr && m_fetch) {
        auto fetched = m_fetch(qint64{page} * rowsOfPage, rowsOfPage);
        if (!fetched)
            Q_EMIT failed(fetched.error().words);
        auto kept = std::make_unique<QList<ImportedRow>>(fetched ? *std::move(fetched) : QList<ImportedRow>());
        rows = kept.get();
        m_pages.insert(page, kept.release());
    }
    const int place = row % rowsOfPage;
    return rows != nullptr && place < rows->size() ? &rows->at(place) : nullptr;
}

QString ImportListModel::wordsOf(int number) const
{
    const ImportedRow *found = number >= 0 && number < m_count ? row(number) : nullptr;
    if (found == nullptr)
        return {};
    const QString item = QString(found->key + u' ' + found->name).trimmed(); // either may be missing
    const QString words = rowWords(*found, m_kind);
    return u"Line %1, %2 %3%4"_s.arg(QString::number(found->line), stateWords(found->state), lineOf(item),
                                     words.isEmpty() ? QString() : u": "_s + words);
}

QVariant ImportListModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || role != Qt::DisplayRole)
        return {};
    const ImportedRow *found = row(index.row());
    if (found == nullptr)
        return {};
    switch (index.column()) {
    case Line:
        return found->line;
    case State:
        return stateWords(found->state);
    case Key:
        return lineOf(found->key);
    case Name:
        return lineOf(found->name);
    default:
        return lineOf(rowWords(*found, m_kind));
    }
}

QVariant ImportListModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || section < 0 || section >= ColumnCount)
        return {};
    if (role == Qt::TextAlignmentRole)
        return QVariant(Qt::AlignVCenter | Qt::AlignLeft);
    if (role != Qt::DisplayRole)
        return {};
    if (section == Key && m_kind == ImportKind::Categories)
        return u"Category"_s;
    return section == Key && m_kind == ImportKind::Codes ? u"Code"_s
                                                         : captions.at(static_cast<std::size_t>(section)).toString();
}

} // namespace harrowby::app
