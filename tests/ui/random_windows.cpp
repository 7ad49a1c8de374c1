// SPDX-License-Identifier: MIT
#include "tests/ui/random_windows.h"

#include "tests/ui/random_choice.h"

#include "platform/object_registry.h"

#include <QDialog>
#include <QTimer>

#include <stdexcept>

using namespace Qt::StringLiterals;

namespace harrowby::test {

void registerWindows(ObjectRegistry &registry, HostWindows &shared)
{
    for (const char *classId : {"HarrowReport.ReportDll", "Harrowby.ReorderList"})
        registry.add(QString::fromLatin1(classId), [&shared] { return std::make_unique<HostWindow>(shared); });
}

void HostWindow::AccountPreview(std::shared_ptr<harrowby::DbConnection> &connection, const QString & /*folder*/,
                                bool /*third*/, QString &msgTitle, bool /*fifth*/, bool /*mayEditStock*/,
                                bool &canSettings, QString & /*loggedUser*/)
{
    QRandomGenerator random(m_shared.seeds.generate());
    // The host's window reads with statements of its own.
    if (const auto cursor = connection->query(u"Select * from PurchaseCart"_s)) {
        while (cursor->next() == DbCursor::Step::Row) {
        }
    }
    openWindow(nullptr);
    m_shared.settings->save(u"Option"_s, u"EmailReport"_s, chance(random, 60) ? u"1"_s : randomText(random));
    msgTitle = chance(random, 50) ? QString() : randomText(random);
    canSettings = canSettings || chance(random, 20);
    if (chance(random, 20))
        throw std::runtime_error("out of paper");
}

void HostWindow::Show(int /*modal*/, QWidget *owner)
{
    openWindow(owner);
}

void HostWindow::openWindow(QWidget *owner)
{
    ++m_shared.opened;
    QRandomGenerator random(m_shared.seeds.generate());
    QDialog window(owner);
    for (int times = random.bounded(3); times > 0; --times)
        m_shared.meanwhile(random);
    QTimer::singleShot(0, &window, &QDialog::close); // after the action above
    window.exec();
}

} // namespace harrowby::test
