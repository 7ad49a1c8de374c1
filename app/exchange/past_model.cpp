// SPDX-License-Identifier: MIT
#include "app/exchange/past_model.h"

#include "app/exchange/grid_view.h"
#include "app/exchange/kind_words.h"
#include "app/records/records.h"

#include <QLocale>

#include <algorithm>
#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

enum PastColumn { When, File, What, New, Changed, By, PastColumnCount };

constexpr std::array<QStringView, PastColumnCount> pastCaptions = {u"When", u"File",    u"What",
                                                                   u"New",  u"Changed", u"By"};

QString fileWords(const PastImport &past)
{
    const QString file = lineOf(past.file);
    return past.state == PastImport::State::TakenBack ? file + u" (taken back)"_s : file;
}

} // namespace

void PastModel::show(QList<PastImport> imports)
{
    beginResetModel();
    m_imports = std::move(imports);
    endResetModel();
}

const PastImport *PastModel::find(qint64 id) const
{
    const auto found =
        std::find_if(m_imports.cbegin(), m_imports.cend(), [&](const PastImport &one) { return one.id == id; });
    return found != m_imports.cend() ? &*found : nullptr;
}

const PastImport *PastModel::at(int row) const
{
    return row >= 0 && row < m_imports.size() ? &m_imports.at(row) : nullptr;
}

QModelIndex PastModel::indexOf(qint64 id) const
{
    const PastImport *found = find(id);
    return index(found != nullptr ? static_cast<int>(found - m_imports.constData()) : 0, 0);
}

int PastModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_imports.size());
}

int PastModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : PastColumnCount;
}

QVariant PastModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || role != Qt::DisplayRole)
        return {};
    const PastImport &past = m_imports.at(index.row());
    switch (index.column()) {
    case When:
        return momentWords(past.at);
    case File:
        return fileWords(past);
    case What:
        return kindWords(past.kind);
    case New:
        return groupedCount(past.counts.fresh);
    case Changed:
        return groupedCount(past.counts.changed);
    default:
        return lineOf(past.who);
    }
}

QVariant PastModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || section < 0 || section >= PastColumnCount)
        return {};
    if (role == Qt::TextAlignmentRole)
        return QVariant(Qt::AlignVCenter | Qt::AlignLeft);
    return role == Qt::DisplayRole ? pastCaptions.at(static_cast<std::size_t>(section)).toString() : QVariant();
}

QString momentWords(const QString &recordTime)
{
    return QLocale(QLocale::English).toString(timeOfRecord(recordTime).toLocalTime(), u"d MMM yyyy, HH:mm"_s);
}

} // namespace harrowby::app
