// SPDX-License-Identifier: MIT
#include "app/backup/restore_window.h"

#include "app/boxes/office_box.h"
#include "app/work/work_job.h"
#include "app/work/work_strip.h"
#include "theme/dialogs.h"

#include <QCloseEvent>
#include <QDialog>
#include <QFileInfo>
#include <QLabel>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr int restoringWidth = 560;

/// Closing it cancels the restore, and it goes when that has ended.
class RestoreWindow : public QDialog
{
public:
    explicit RestoreWindow(const RestoreOrder &order) : m_order(order)
    {
        setWindowTitle(u"Restoring"_s);
        setObjectName(u"restoreWindow"_s);
        setMinimumWidth(restoringWidth);
        enlargeFont(*this);
        auto *rows = new QVBoxLayout(this);
        rows->setContentsMargins(24, 20, 24, 20);
        rows->setSpacing(16);
        rows->addWidget(makeOfficeText(
            this, u"The store is being restored from \"%1\"."_s.arg(QFileInfo(order.backup).fileName())));
        auto *strip = new WorkStrip(m_job, this);
        strip->setDelay(0);
        rows->addWidget(strip);
        dressDialog(*this);
    }

    RestoreResult run()
    {
        RestoreResult result;
        m_job.start<RestoreResult>([order = m_order](const WorkWatch &watch) { return restoreStore(order, watch); },
                                   [&](const Result<RestoreResult, QString> &ended) {
                                       result = ended ? *ended
                                                      : RestoreResult{RestoreResult::Outcome::Failed, ended.error(),
                                                                      QString(), false};
                                       done(QDialog::Accepted);
                                   });
        exec();
        return result;
    }

    void reject() override { m_job.cancel(); }

protected:
    void closeEvent(QCloseEvent *event) override
    {
        event->ignore();
        m_job.cancel();
    }

private:
    RestoreOrder m_order;
    WorkJob m_job;
};

} // namespace

RestoreResult restoreInWindow(const RestoreOrder &order)
{
    return RestoreWindow(order).run();
}

QString restoreWords(const RestoreResult &result)
{
    using Outcome = RestoreResult::Outcome;
    if (result.outcome == Outcome::Done && !result.damaged.isEmpty())
        return u"The backup is restored. "_s + damagedWords(result.damaged);
    if (result.outcome == Outcome::Done)
        return u"The backup is restored. What the store held before is kept: %1"_s.arg(result.kept);
    if (result.outcome == Outcome::Stopped)
        return u"The restore was cancelled. The store is as it was."_s;
    return result.problem;
}

} // namespace harrowby::app
