// SPDX-License-Identifier: MIT
#include "tests/app/office_desk.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QListWidget>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace harrowby::app::test {

void OfficeDesk::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_place = std::make_unique<ShopPlace>(m_folder->filePath(u"shop.sqlite"_s));
    m_path = m_place->address();
    makeStore(m_path);
    runAll(m_path, {u"INSERT INTO Users (Username, Password, Type, InventoryUse, InventorySales) "
                    "VALUES ('ANNA', 'P', 'STAFF', -1, 0), ('BOB', 'P', 'OWNER', 0, -1)"_s});
    m_shop = std::make_unique<OpenShop>(m_path);
    m_saved.clear();
    m_boxText.clear();
    m_window = makeWindow(store());
    m_window->show();
}

OfficeSettings OfficeDesk::settings()
{
    return {[this](const QString &section, const QString &key, const QString &defaultValue) {
                return m_saved.value(section + u'/' + key, defaultValue);
            },
            [this](const QString &section, const QString &key, const QString &value) {
                m_saved.insert(section + u'/' + key, value);
                return true;
            }};
}

OfficeStore OfficeDesk::storeOf(const OpenShop &shop) const
{
    return shop.file() != nullptr ? officeStore(shop.file(), m_path) : OfficeStore{m_path, shop.records()};
}

std::unique_ptr<OfficeWindow> OfficeDesk::makeWindow(const OfficeStore &store)
{
    auto window = std::make_unique<OfficeWindow>(store, settings(), officeAdministrator());
    window->buildPages();
    window->resize(1000, 680); // with the list at the side
    return window;
}

void OfficeDesk::cleanup()
{
    m_window.reset();
    m_shop.reset();
    m_place.reset();
    m_folder.reset();
}

void OfficeDesk::choose(const QString &user)
{
    auto *list = part<QListWidget>("users");
    const auto rows = list->findItems(user + u'\n', Qt::MatchStartsWith);
    QCOMPARE(rows.size(), 1);
    list->setCurrentItem(rows.constFirst());
}

void OfficeDesk::inNextDialog(const std::function<void(QDialog &)> &act)
{
    QTimer::singleShot(0, this, [act] {
        auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
        QVERIFY(dialog);
        act(*dialog);
    });
}

void OfficeDesk::answerNextBox(QMessageBox::ButtonRole role)
{
    inNextDialog([this, role](QDialog &dialog) {
        auto &box = dynamic_cast<QMessageBox &>(dialog);
        m_boxText = box.text();
        for (QAbstractButton *button : box.buttons()) {
            if (box.buttonRole(button) == role)
                return button->click();
        }
        box.reject();
    });
}

void OfficeDesk::accept(QDialog &dialog)
{
    const auto *box = dialog.findChild<QDialogButtonBox *>();
    for (QAbstractButton *button : box->buttons()) {
        if (box->buttonRole(button) == QDialogButtonBox::AcceptRole)
            QTest::mouseClick(button, Qt::LeftButton);
    }
}

void OfficeDesk::enter(QDialog &dialog, const char *entry, const QString &text)
{
    dialog.findChild<QLineEdit *>(QString::fromLatin1(entry))->setText(text);
}

} // namespace harrowby::app::test
