// SPDX-License-Identifier: MIT
#include "app/errands/import_errand.h"

#include "app/catalogue/catalogue_import.h"
#include "app/catalogue/import_columns.h"
#include "app/catalogue/import_shelf.h"
#include "app/errands/column_options.h"
#include "app/errands/form_options.h"
#include "app/records/deeds.h"
#include "app/records/store_records.h"
#include "app/start/start_message.h"

#include <QFileInfo>

#include <optional>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

struct ImportOrder
{
    QString file;
    bool dryRun = false;
    bool validRows = false;
    std::optional<ImportKind> kind;
    std::optional<CsvEncoding> encoding;
    std::optional<QChar> separator;
    std::optional<QChar> decimalSign;
    QList<GivenColumn> columns;
    ImportChoices choices; ///< what does not hang on the file
};

bool goOn(const WorkStep &)
{
    return true;
}

ExitCode failedImport(const QString &words)
{
    tellOfErrand(words);
    return ExitCode::ErrandFailed;
}

QString kindWords(ImportKind kind)
{
    return kindText(kind).toLower();
}

std::optional<ImportKind> kindNamed(const QString &name)
{
    for (const ImportKind kind : importKinds()) {
        if (name.compare(kindWords(kind), Qt::CaseInsensitive) == 0)
            return kind;
    }
    return {};
}

/// Imports by what the command line says and the file shows.
class ImportErrand
{
public:
    ImportErrand(const ErrandStore &store, const ImportOrder &order) :
        m_store(store), m_order(order), m_choices(order.choices)
    {
    }

    ExitCode run()
    {
        auto file = readImportFile(m_order.file);
        if (!file)
            return failedImport(file.error());
        m_file = *std::move(file);
        auto records = openStoreRecords(m_store.address, Access::Write);
        if (!records)
            return failedImport(records.error());
        m_records = *std::move(records);
        if (const auto open = choose())
            return failedImport(*open);
        return compare();
    }

private:
    /// Form, kind and columns; or what has to be said on the command line.
    std::optional<QString> choose()
    {
        const CsvGuess guess = guessForm(m_file.bytes);
        CsvForm &form = m_choices.form = guess.form;
        form.encoding = m_order.encoding.value_or(form.encoding);
        form.separator = m_order.separator.value_or(form.separator);
        m_headings = headingsOf(m_file.bytes, form);
        m_choices.kind = m_order.kind.value_or(guessKind(m_headings));
        const auto remembered = RememberedColumns(m_records->records()).match(m_choices.kind, m_headings);
        if (!remembered && m_order.columns.isEmpty() && looksLikeARow(m_headings))
            return u"The first line of \"%1\" looks like a row, and the first line has to name the columns. Put a line "
                   "with their names above it."_s.arg(m_file.name());
        auto columns = columnsFor(m_choices.kind, m_headings, remembered, m_order.columns);
        if (!columns)
            return columns.error();
        m_choices.columns = *columns;
        const DecimalGuess decimal = guessDecimalSign(m_file.bytes, form, m_choices.kind, m_choices.columns);
        if (!m_order.decimalSign && !decimal.sign)
            return u"It cannot be told whether the figures of \"%1\" have a decimal point or a decimal comma (%2 in "
                   u"line "
                   "%3). Say --decimal point or --decimal comma."_s.arg(m_file.name(), decimal.example)
                       .arg(decimal.line);
        form.decimalSign = m_order.decimalSign ? *m_order.decimalSign : *decimal.sign;
        return {};
    }

    CatalogueImport import()
    {
        ImportDesk desk;
        desk.user = desk.who = commandLineUser();
        desk.place = commandLinePlace;
        desk.store = m_store.address;
        return CatalogueImport(m_records->records(), desk);
    }

    ExitCode compare()
    {
        const auto staged = import().stage(m_file, m_choices, goOn);
        if (!staged)
            return failedImport(staged.error().words);
        ExitCode code = tellPreview(*staged);
        if (code != ExitCode::Done || m_order.dryRun) {
            import().discard(staged->id, goOn);
            return code;
        }
        code = write(*staged);
        return storeIsStillThere(m_store) ? code : ExitCode::ErrandFailed;
    }

    ExitCode tellPreview(const StagedImport &staged)
    {
        const CsvForm &form = m_choices.form;
        printOut(u"%1: %2, %3, %4, decimal %5\n"_s.arg(m_file.name(), kindWords(m_choices.kind),
                                                       encodingWords(form.encoding), separatorWords(form.separator),
                                                       form.decimalSign == u',' ? u"comma"_s : u"point"_s));
        printOut(columnWords(m_choices.kind, m_headings, m_choices.columns));
        printOut(u"%1 new, %2 changed, %3 unchanged, %4 refused\n"_s.arg(staged.counts.fresh)
                     .arg(staged.counts.changed)
                     .arg(staged.counts.unchanged)
                     .arg(staged.counts.refused));
        if (!staged.newCategories.isEmpty())
            printOut(u"New categories: %1\n"_s.arg(staged.newCategories.join(u", "_s)));
        if (staged.renamed > 0)
            printOut(
                u"%1 get%2 another name: tills that are open show the old %3 until their pages are loaded again\n"_s
                    .arg(staged.renamed == 1 ? u"1 item"_s : u"%1 items"_s.arg(staged.renamed),
                         staged.renamed == 1 ? u"s"_s : u""_s, staged.renamed == 1 ? u"one"_s : u"ones"_s));
        if (staged.counts.refused == 0)
            return ExitCode::Done;
        if (const ExitCode code = tellRows(staged.id, RowFilter::Refused); code != ExitCode::Done)
            return code;
        if (m_order.dryRun || m_order.validRows)
            return m_order.dryRun ? ExitCode::RowsRefused : ExitCode::Done;
        tellOfErrand(u"Nothing was imported, as rows are refused. --valid-rows imports the others."_s);
        return ExitCode::RowsRefused;
    }

    ExitCode tellRows(std::int64_t id, RowFilter filter)
    {
        constexpr qint64 most = 1000;
        for (qint64 from = 0;; from += most) {
            const auto rows = import().rows(id, filter, from, most);
            if (!rows)
                return failedImport(rows.error().words);
            for (const ImportedRow &row : *rows)
                printOut(u"Line %1%2: %3\n"_s.arg(row.line).arg(row.column.isEmpty() ? QString() : u", "_s + row.column,
                                                                row.reason));
            if (rows->size() < most)
                return ExitCode::Done;
        }
    }

    ExitCode write(const StagedImport &staged)
    {
        const auto outcome = import().apply(staged.id, m_order.validRows, nullptr, goOn);
        if (!outcome) {
            import().discard(staged.id, goOn);
            return failedImport(outcome.error().words);
        }
        if (!outcome->backup.isEmpty())
            printOut(u"The backup from before: %1\n"_s.arg(outcome->backup));
        printOut(u"Imported: %1 new, %2 changed\n"_s.arg(outcome->done.fresh).arg(outcome->done.changed));
        if (outcome->leftOut > 0) {
            printOut(u"Left out, as the store has changed meanwhile: %1\n"_s.arg(outcome->leftOut));
            if (const ExitCode code = tellRows(staged.id, RowFilter::LeftOut); code != ExitCode::Done)
                return code;
        }
        return staged.counts.refused + outcome->leftOut > 0 ? ExitCode::RowsRefused : ExitCode::Done;
    }

    const ErrandStore &m_store;
    const ImportOrder &m_order;
    ImportChoices m_choices;
    ImportFile m_file;
    QStringList m_headings;
    std::unique_ptr<StoreRecords> m_records;
};

std::optional<QString> readImportOptions(const ErrandLine &line, ImportOrder &order)
{
    const auto isSet = [&](const QString &option) { return line.options.contains(option); };
    CsvForm form;
    if (auto refused = readFormOptions(line, form))
        return refused;
    if (isSet(u"--separator"_s))
        order.separator = form.separator;
    if (isSet(u"--decimal"_s))
        order.decimalSign = form.decimalSign;
    if (isSet(u"--encoding"_s)) {
        order.encoding = encodingNamed(line.options.value(u"--encoding"_s));
        if (!order.encoding)
            return u"--encoding takes %1."_s.arg(encodingNames);
    }
    if (isSet(u"--kind"_s)) {
        order.kind = kindNamed(line.options.value(u"--kind"_s));
        if (!order.kind)
            return u"--kind takes items, categories or codes."_s;
    }
    if (isSet(u"--columns"_s)) {
        const auto columns = readColumns(line.options.value(u"--columns"_s));
        if (!columns)
            return columns.error();
        order.columns = *columns;
    }
    order.dryRun = isSet(u"--dry-run"_s);
    order.validRows = isSet(u"--valid-rows"_s);
    order.choices.stockInHand = isSet(u"--stock-in-hand"_s);
    order.choices.putIntoCapitals = isSet(u"--capitals"_s);
    order.choices.makeCategories = !isSet(u"--no-categories"_s);
    order.choices.asStored = isSet(u"--as-stored"_s);
    return {};
}

} // namespace

Result<Errand, QString> readImportErrand(const ErrandLine &line)
{
    ImportOrder order;
    order.file = QFileInfo(line.values.constFirst()).absoluteFilePath();
    if (const auto refused = readImportOptions(line, order))
        return Unexpected(*refused);
    return Errand([order](const ErrandStore &store) { return ImportErrand(store, order).run(); });
}

} // namespace harrowby::app
