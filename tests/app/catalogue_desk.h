// SPDX-License-Identifier: MIT
#pragma once

#include "app/exchange/catalogue_page.h"
#include "tests/app/fussy_records.h"
#include "tests/app/shop_place.h"
#include "tests/app/store_files.h"

#include <QLabel>
#include <QMessageBox>
#include <QObject>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QWidget>

#include <functional>
#include <memory>
#include <mutex>

class QDialog;

namespace harrowby::app::test {

/// The office's page "Catalogue" over a store file with TEA and MILK, anew for each test function.
class CatalogueDesk : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

protected:
    template <class Widget>
    [[nodiscard]] Widget *part(const char *name) const
    {
        return m_window->findChild<Widget *>(QString::fromLatin1(name));
    }
    void open(bool isAdministrator);
    void press(const char *name) { QTest::mouseClick(part<QPushButton>(name), Qt::LeftButton); }
    [[nodiscard]] QString text(const char *name) const { return part<QLabel>(name)->text(); }
    /// Writes a file into the test's folder.
    QString file(const QString &name, const QByteArray &bytes) const;
    /// "Cancel" of the work that is shown; null when none is.
    [[nodiscard]] QPushButton *workCancel() const;
    /// Drags files onto the page, and drops them.
    void drop(const QStringList &paths);
    /// Drops a file, and waits for the first step.
    void begin(const QByteArray &bytes, const QString &name = QStringLiteral("list.csv"));
    /// Presses "Next", and waits for the step.
    void nextIs(int step);
    [[nodiscard]] bool isAtStep(int step) const;
    [[nodiscard]] QStringList listed(const char *name) const;
    void chooseEntry(const char *box, const QString &entry);
    /// The boxes and dialogs that are open, in the order in which they come.
    void inNextDialog(const std::function<void(QDialog &)> &act);
    void answerNextBox(QMessageBox::ButtonRole role);
    [[nodiscard]] QString read(const QString &select) const { return m_shop->read(select); }
    void run(const QString &sql) { m_shop->run(sql); }

    std::mutex m_clock; ///< who holds it holds up an import before its backup, which is named by the time
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<ShopPlace> m_place;
    QString m_store;
    std::unique_ptr<OpenShop> m_shop;
    std::unique_ptr<FussyRecords> m_fussy; ///< of a file
    Records *m_records = nullptr;
    std::unique_ptr<CataloguePage> m_window;
    std::unique_ptr<QObject> m_answers; ///< which are not given any more once it is gone
    QString m_lost;                     ///< what the page is told of the store file
    QString m_boxText;
};

} // namespace harrowby::app::test
