// SPDX-License-Identifier: MIT
#pragma once

#include "app/labels/label_making.h"
#include "app/labels/label_printing.h"
#include "app/records/deeds.h"
#include "app/work/work_job.h"

#include <QObject>
#include <QString>

class QWidget;

namespace harrowby::app {

/// Draws labels on a thread of its own, asks about those that do not fit, hands them to a printer or saves them, and
/// notes who did so.
class LabelOutput final : public QObject
{
    Q_OBJECT

public:
    /// The window, over which is asked, must outlive it.
    LabelOutput(SignedDeeds deeds, QWidget &window);

    /// Neither while it is busy.
    void print(const LabelOrder &order, const QString &printer) { make(order, {printer, {}}); }
    void save(const LabelOrder &order, const QString &path) { make(order, {{}, path}); }
    [[nodiscard]] bool isBusy() const { return m_job.isRunning() || m_printing.isRunning(); }
    [[nodiscard]] WorkJob &job() { return m_job; }
    /// Once; `found` gets their names.
    void findPrinters(std::function<void(const QStringList &)> found) { m_printing.findPrinters(std::move(found)); }

Q_SIGNALS:
    /// How far it is, and what came of it, for a line below.
    void said(const QString &text);

private:
    /// One of the two.
    struct Target
    {
        QString printer;
        QString path;
    };

    void make(const LabelOrder &order, const Target &target);
    void end(const LabelOrder &order, const Target &target, const Result<LabelsMade, QString> &made);
    [[nodiscard]] bool askForTheRest(const LabelsMade &made) const;
    void hand(const LabelOrder &order, const LabelsMade &made, const QString &printer);
    void write(const LabelsMade &made, const QString &path);
    void note(const LabelsMade &made, const QString &where);

    SignedDeeds m_deeds;
    QWidget &m_window;
    LabelPrinting m_printing;
    WorkJob m_job; ///< last: its end waits for the work
};

} // namespace harrowby::app
