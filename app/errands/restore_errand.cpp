// SPDX-License-Identifier: MIT
#include "app/errands/restore_errand.h"

#include "app/backup/restore.h"
#include "app/errands/errand.h"
#include "app/records/deeds.h"
#include "app/start/start_message.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace harrowby::app {

ExitCode restoreWithoutWindow(const QString &store, const QString &backup)
{
    const RestoreOrder order = {QFileInfo(backup).absoluteFilePath(), store, commandLineUser(), commandLinePlace};
    const RestoreResult result = restoreStore(order, [](const WorkStep &) { return true; });
    if (result.outcome != RestoreResult::Outcome::Done) {
        tellOfErrand(result.problem);
        return ExitCode::ErrandFailed;
    }
    if (!result.damaged.isEmpty())
        printOut(u"The backup is restored. %1\n"_s.arg(damagedWords(result.damaged)));
    else
        printOut(u"The backup is restored. The store that was there before is kept: %1\n"_s.arg(result.kept));
    return ExitCode::Done;
}

} // namespace harrowby::app
