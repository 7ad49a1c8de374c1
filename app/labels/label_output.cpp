// SPDX-License-Identifier: MIT
#include "app/labels/label_output.h"

#include "app/boxes/office_box.h"
#include "app/codes/code_text.h"
#include "basic/numbers.h"
#include "tables/files.h"

#include <QDir>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr qsizetype mostNamed = 5; // of the items that do not fit

QString labelsOf(qint64 count)
{
    return count == 1 ? u"1 label"_s : u"%1 labels"_s.arg(formatCount(static_cast<double>(count)));
}

QString firstOf(const QStringList &all)
{
    const QString named = all.first(std::min(all.size(), mostNamed)).join(u'\n');
    return all.size() > mostNamed ? named + u"\nand %1 more"_s.arg(all.size() - mostNamed) : named;
}

/// Where the next labels go on a sheet that is not full.
QString restWords(const LabelPlan &plan, qint64 labels)
{
    const int next = plan.paper.placeAfter(labels, plan.place);
    return plan.paper.isRoll || next == 0 ? QString() : u" The last sheet goes on with its label %1."_s.arg(next + 1);
}

} // namespace

LabelOutput::LabelOutput(SignedDeeds deeds, QWidget &window) : m_deeds(std::move(deeds)), m_window(window) {}

void LabelOutput::make(const LabelOrder &order, const Target &target)
{
    Q_EMIT said({});
    m_job.start<LabelsMade>(
        [order](const WorkWatch &watch) { return makeLabels(order, watch); },
        [this, order, target](const Result<LabelsMade, QString> &made) { end(order, target, made); });
}

void LabelOutput::end(const LabelOrder &order, const Target &target, const Result<LabelsMade, QString> &made)
{
    if (!made)
        return Q_EMIT said(u"\u26a0 The labels could not be made: "_s + made.error());
    if (made->isStopped)
        return Q_EMIT said(u"Cancelled: nothing was printed."_s);
    if (made->pdf.isEmpty() && !order.asFits && askForTheRest(*made)) {
        LabelOrder rest = order;
        rest.asFits = true;
        return make(rest, target);
    }
    if (made->pdf.isEmpty())
        return Q_EMIT said(u"Nothing was printed."_s);
    if (target.path.isEmpty())
        hand(order, *made, target.printer);
    else
        write(*made, target.path);
}

bool LabelOutput::askForTheRest(const LabelsMade &made) const
{
    QStringList parts;
    if (!made.longCodes.isEmpty())
        parts << tooLongWords(u"These codes"_s, true) + u":\n"_s + firstOf(made.longCodes);
    if (!made.longPrices.isEmpty())
        parts << tooLongWords(u"These prices"_s, true) + u":\n"_s + firstOf(made.longPrices);
    if (parts.isEmpty())
        return false;
    parts << (made.longPrices.isEmpty() ? u"Print those labels without a code?"_s
                                        : u"Print the others, and those with too long a code without it?"_s);
    return askInOffice(&m_window, parts.join(u"\n\n"_s), u"&Print"_s);
}

void LabelOutput::hand(const LabelOrder &order, const LabelsMade &made, const QString &printer)
{
    const QString rest = restWords(order.plan, made.labels);
    Q_EMIT said(u"Handing %1 to the printer \u2026"_s.arg(labelsOf(made.labels)));
    m_printing.print(
        printer, order.plan.paper, made.pdf, [this, made, printer, rest](const Result<void, QString> &taken) {
            if (!taken)
                return Q_EMIT said(
                    u"\u26a0 The printer %1 has not taken the labels: %2. Check it, or save a PDF."_s.arg(
                        shownCode(printer), taken.error()));
            note(made, u"printer "_s + printer);
            Q_EMIT said(u"%1 handed to the printer %2.%3"_s.arg(labelsOf(made.labels), shownCode(printer), rest));
        });
}

void LabelOutput::write(const LabelsMade &made, const QString &path)
{
    if (const auto saved = tables::saveFile(path, made.pdf); !saved) {
        Q_EMIT said(u"\u26a0 The labels were not saved."_s);
        return tellInOffice(&m_window,
                            u"It has not been saved as\n%1\n\n%2"_s.arg(QDir::toNativeSeparators(path), saved.error()));
    }
    note(made, QDir::toNativeSeparators(path));
    Q_EMIT said(u"%1 saved as %2"_s.arg(labelsOf(made.labels), QDir::toNativeSeparators(path)));
}

/// What could not be noted is told by the records.
void LabelOutput::note(const LabelsMade &made, const QString &where)
{
    (void)m_deeds.add(deed::labelsPrinted, u"%1 to %2"_s.arg(labelsOf(made.labels), where));
}

} // namespace harrowby::app
