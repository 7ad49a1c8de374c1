// SPDX-License-Identifier: MIT
#include "app/export/export.h"

#include "basic/numbers.h"

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

QString titleOf(ExportKind kind)
{
    const QString name = exportKindName(kind);
    return name.left(1).toUpper() + name.mid(1);
}

QString daysOf(const ExportRequest &request, const QString &between)
{
    if (request.kind != ExportKind::Purchases || !(request.from.isValid() || request.to.isValid()))
        return {};
    const QString from = request.from.toString(Qt::ISODate);
    const QString to = request.to.toString(Qt::ISODate);
    if (from == to)
        return from;
    return from.isEmpty() ? u"until"_s + between.right(1) + to
           : to.isEmpty() ? u"since"_s + between.right(1) + from
                          : from + between + to;
}

} // namespace

std::optional<ExportKind> exportKindNamed(const QString &name)
{
    for (const ExportKind kind :
         {ExportKind::Items, ExportKind::Categories, ExportKind::Codes, ExportKind::Purchases}) {
        if (name.compare(exportKindName(kind), Qt::CaseInsensitive) == 0)
            return kind;
    }
    return {};
}

QString exportKindName(ExportKind kind)
{
    switch (kind) {
    case ExportKind::Categories:
        return u"categories"_s;
    case ExportKind::Codes:
        return u"codes"_s;
    case ExportKind::Purchases:
        return u"purchases"_s;
    case ExportKind::Items:
        break;
    }
    return u"items"_s;
}

QString proposedExportName(const ExportRequest &request, const QDate &today)
{
    const QString days = daysOf(request, u"-to-"_s);
    return u"%1-%2.csv"_s.arg(exportKindName(request.kind), days.isEmpty() ? today.toString(Qt::ISODate) : days);
}

QString exportDeedWords(const ExportRequest &request, const ExportEnd &end, const QString &target)
{
    const QString days = daysOf(request, u" to "_s);
    const QString rows = formatCount(static_cast<double>(end.rows)) + (end.rows == 1 ? u" row"_s : u" rows"_s);
    return u"%1%2, %3, to %4"_s.arg(titleOf(request.kind), days.isEmpty() ? days : u' ' + days, rows, target);
}

} // namespace harrowby::app
