// SPDX-License-Identifier: MIT
#include "tests/app/catalogue_desk.h"

#include "app/work/work_strip.h"
#include "tests/app/quick_folder.h"
#include "theme/dialogs.h"

#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFile>
#include <QMimeData>
#include <QTimer>
#include <QTreeView>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace harrowby::app::test {

void CatalogueDesk::init()
{
    m_folder = std::make_unique<QTemporaryDir>(quickFolder() + u"/catalogue-XXXXXX"_s);
    m_place = std::make_unique<ShopPlace>(m_folder->filePath(u"shop.sqlite"_s));
    m_store = m_place->address();
    makeStore(m_store);
    m_shop = std::make_unique<OpenShop>(m_store);
    run(u"DELETE FROM StockList"_s);
    run(u"DELETE FROM InventoryCategory"_s);
    m_answers = std::make_unique<QObject>();
    for (const auto &[id, name] : {std::pair(u"TEA-0001"_s, u"TEA"_s), {u"MIL-0001"_s, u"MILK"_s}})
        run(u"INSERT INTO StockList (StockID, StockName, StockCategory, StockCost, StockReorderLevel, StockAvailable, "
            "StockUse) VALUES ('%1', '%2', 'DRINKS', '1.00', 5, 20, 'Enabled')"_s.arg(id, name));
    run(u"INSERT INTO InventoryCategory (CategoryName, EntryDate) VALUES ('DRINKS', 'today')"_s);
    m_fussy = m_shop->file() != nullptr ? std::make_unique<FussyRecords>(m_shop->file()) : nullptr;
    m_records = m_fussy ? m_fussy.get() : m_shop->records().get();
    m_lost.clear();
    m_boxText.clear();
    open(true);
}

void CatalogueDesk::open(bool isAdministrator)
{
    ImportDesk desk;
    desk.user = u"ANNA"_s;
    desk.who = u"ANNA"_s;
    desk.place = u"office"_s;
    desk.store = m_store;
    desk.backupFolder = m_folder->path();
    desk.now = [this] {
        const std::lock_guard held(m_clock);
        return QDateTime::currentDateTime();
    };
    m_window = std::make_unique<CataloguePage>(*m_records, desk, isAdministrator, [this] { return m_lost; });
    enlargeFont(*m_window);
    dressDialog(*m_window);
    for (WorkStrip *strip : m_window->findChildren<WorkStrip *>())
        strip->setDelay(0);
    m_window->resize(746, 440);
    m_window->show();
    m_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
}

void CatalogueDesk::cleanup()
{
    m_answers.reset();
    m_window.reset();
    m_fussy.reset();
    m_shop.reset();
    m_place.reset();
    m_folder.reset();
}

QString CatalogueDesk::file(const QString &name, const QByteArray &bytes) const
{
    const QString path = m_folder->filePath(name);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        QTest::qFail("the file was not written", __FILE__, __LINE__);
    return path;
}

QPushButton *CatalogueDesk::workCancel() const
{
    for (QPushButton *button : m_window->findChildren<QPushButton *>(u"workCancel"_s)) {
        if (button->isVisible())
            return button;
    }
    return nullptr;
}

void CatalogueDesk::drop(const QStringList &paths)
{
    QMimeData data;
    QList<QUrl> urls;
    for (const QString &path : paths)
        urls << (path.contains(u"://"_s) ? QUrl(path) : QUrl::fromLocalFile(path));
    data.setUrls(urls);
    QDragEnterEvent enter(QPoint(50, 50), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(m_window.get(), &enter);
    QVERIFY(enter.isAccepted());
    QDropEvent event(QPointF(50, 50), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(m_window.get(), &event);
}

void CatalogueDesk::begin(const QByteArray &bytes, const QString &name)
{
    drop({file(name, bytes)});
    QTRY_VERIFY(isAtStep(1));
}

bool CatalogueDesk::isAtStep(int step) const
{
    const QString heading = text("importHeading");
    return part<QLabel>("importHeading")->isVisible() &&
           (step > 4 ? heading == u"Done"_s : heading.startsWith(u"Step %1 of 4: "_s.arg(step)));
}

void CatalogueDesk::nextIs(int step)
{
    press("importNext");
    QTRY_VERIFY2(isAtStep(step), qPrintable(text("importHeading") + u": "_s + text("importOutcome")));
}

QStringList CatalogueDesk::listed(const char *name) const
{
    QStringList lines;
    const QAbstractItemModel &model = *part<QTreeView>(name)->model();
    for (int row = 0; row < model.rowCount(); ++row) {
        QStringList cells;
        for (int column = 0; column < model.columnCount(); ++column)
            cells << model.index(row, column).data().toString();
        lines << cells.join(u" | "_s);
    }
    return lines;
}

void CatalogueDesk::chooseEntry(const char *name, const QString &entry)
{
    auto *box = part<QComboBox>(name);
    const int index = box->findText(entry);
    QVERIFY2(index >= 0, qPrintable(entry));
    box->setCurrentIndex(index);
}

void CatalogueDesk::inNextDialog(const std::function<void(QDialog &)> &act)
{
    QTimer::singleShot(0, m_answers.get(), [this, act] {
        auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
        if (dialog == nullptr) // what was pressed is still at work
            return inNextDialog(act);
        act(*dialog);
        if (dialog->isVisible())
            dialog->reject();
    });
}

void CatalogueDesk::answerNextBox(QMessageBox::ButtonRole role)
{
    inNextDialog([this, role](QDialog &dialog) {
        auto &box = dynamic_cast<QMessageBox &>(dialog);
        m_boxText = box.text();
        for (QAbstractButton *button : box.buttons()) {
            if (box.buttonRole(button) == role)
                return button->click();
        }
    });
}

} // namespace harrowby::app::test
