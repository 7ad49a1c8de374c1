// SPDX-License-Identifier: MIT
#include "tests/support/counter.h"

#include "store/inv_basic.h"
#include "ui/widgets/pick_list.h"
#include "ui/widgets/quick_sale_button.h"
#include "ui/widgets/row_list.h"
#include "ui/widgets/tab_strip.h"
#include "ui/widgets/text_table_model.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>

using namespace Qt::StringLiterals;

namespace harrowby::test {

Counter::Counter() : connection(std::make_shared<RecordingConnection>(file.connect()))
{
    file.addUser(u"ADMINISTRATOR"_s, u"PASS"_s, {}, u"ADMIN"_s);
    file.sql(u"INSERT INTO StoreSettings VALUES (0, 0, 'shop@example.com', 0, 0)"_s);
    settings->save(u"Option"_s, u"UsePOSforReceipt"_s, u"0"_s);
}

Counter::~Counter()
{
    if (!boxes.isDone())
        QTest::qFail(boxes.problems().constData(), __FILE__, __LINE__);
    delete m_window.data();
    InvBasic::setConnection(nullptr);
}

void Counter::open()
{
    InvBasic::setConnection(connection);
    m_window = new Inventory({windowBoxes, settings, printers, clock, objects});
    m_window->load();
    m_window->resize(1024, 768);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window));
}

void Counter::close()
{
    boxes.expect(u"Close Inventory?"_s, box::Ask, Answer::Yes);
    m_window->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QTRY_VERIFY(m_window.isNull());
}

QWidget *Counter::control(const char *name) const
{
    auto *found = m_window->findChild<QWidget *>(QString::fromLatin1(name));
    if (found == nullptr) {
        QStringList names;
        for (const QWidget *widget : m_window->findChildren<QWidget *>())
            names << widget->objectName();
        qFatal("no control %s; there are: %s", name, qPrintable(names.join(u' ')));
    }
    return found;
}

QString Counter::text(const char *name) const
{
    QWidget *found = control(name);
    if (auto *list = qobject_cast<PickList *>(found))
        return list->entryText();
    if (auto *log = qobject_cast<QPlainTextEdit *>(found))
        return log->toPlainText();
    return found->property("text").toString();
}

void Counter::setText(const char *name, const QString &text) const
{
    QWidget *found = control(name);
    if (auto *list = qobject_cast<PickList *>(found))
        list->setEntryText(text);
    else
        found->setProperty("text", text);
}

void Counter::click(const char *name) const
{
    find<QAbstractButton>(name)->click();
}

void Counter::pick(const char *name, int entry) const
{
    auto *list = find<PickList>(name);
    list->showPopup();
    list->view()->setCurrentIndex(list->model()->index(entry, 0));
    QTest::keyClick(list->view(), Qt::Key_Return);
}

QStringList Counter::entries(const char *name) const
{
    const auto *list = find<PickList>(name);
    QStringList all;
    for (int entry = 0; entry < list->count(); ++entry)
        all << list->itemText(entry);
    return all;
}

bool Counter::hasFocus(const char *name) const
{
    return m_window->focusWidget() == control(name);
}

void Counter::chooseTab(const char *strip, int number) const
{
    auto *tabs = find<TabStrip>(strip);
    QTest::mouseClick(tabs, Qt::LeftButton, {}, tabs->tabRect(number - 1).center());
}

int Counter::selectedTab(const char *strip) const
{
    return find<TabStrip>(strip)->selectedTab();
}

void Counter::logIn(const QString &name, const QString &password)
{
    setText("Text3", name);
    setText("Text4", password);
    click("Command28");
}

QStringList Counter::rows(const char *name) const
{
    const TextTableModel &list = find<RowList>(name)->rows();
    QStringList all;
    for (int row = 0; row < list.rowCount(); ++row) {
        QStringList texts;
        for (int column = 0; column < list.columnCount(); ++column)
            texts << list.text(row, column);
        all << texts.join(u'|');
    }
    return all;
}

} // namespace harrowby::test
