// SPDX-License-Identifier: MIT
#pragma once

#include "app/office/office_window.h"
#include "tests/app/shop_place.h"
#include "tests/app/store_files.h"

#include <QAbstractButton>
#include <QHash>
#include <QMessageBox>
#include <QObject>
#include <QTemporaryDir>
#include <QTest>

#include <functional>
#include <memory>

namespace harrowby::app::test {

[[nodiscard]] inline OfficeUser officeAdministrator()
{
    return {QStringLiteral("ADMINISTRATOR"), true, true};
}

/// The office's window over a store with the users ADMINISTRATOR, ANNA and BOB, anew for
/// each test function.
class OfficeDesk : public QObject
{
    Q_OBJECT

protected Q_SLOTS:
    void init();
    void cleanup();

protected:
    /// Builds all pages when it is on none that is built.
    template <class Widget>
    [[nodiscard]] Widget *part(const char *name) const
    {
        auto *found = builtPart<Widget>(name);
        if (found == nullptr)
            m_window->buildPages();
        return found != nullptr ? found : builtPart<Widget>(name);
    }
    /// Null when its page is not built.
    template <class Widget>
    [[nodiscard]] Widget *builtPart(const char *name) const
    {
        return m_window->findChild<Widget *>(QString::fromLatin1(name));
    }
    void press(const char *name) { QTest::mouseClick(part<QAbstractButton>(name), Qt::LeftButton); }
    void showPage(const QString &title) { m_window->showPage(title); }
    void choose(const QString &user);
    [[nodiscard]] OfficeSettings settings();
    [[nodiscard]] OfficeStore store() const { return storeOf(*m_shop); }
    [[nodiscard]] OfficeStore storeOf(const OpenShop &shop) const;
    /// Null on a server.
    [[nodiscard]] sqlite3 *file() const { return m_shop->file(); }
    /// A further window of the same shop on the same machine.
    [[nodiscard]] std::unique_ptr<OfficeWindow> makeWindow(const OfficeStore &store);
    void inNextDialog(const std::function<void(QDialog &)> &act);
    void answerNextBox(QMessageBox::ButtonRole role);
    static void accept(QDialog &dialog);
    static void enter(QDialog &dialog, const char *entry, const QString &text);
    [[nodiscard]] QString read(const QString &select) const { return column(m_path, select).value(0); }

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_path;
    std::unique_ptr<ShopPlace> m_place;
    std::unique_ptr<OpenShop> m_shop;
    QHash<QString, QString> m_saved;
    QString m_boxText;
    std::unique_ptr<OfficeWindow> m_window;
};

} // namespace harrowby::app::test
