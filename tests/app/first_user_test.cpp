// SPDX-License-Identifier: MIT
#include "first_user_dialog.h"

#include <QAbstractButton>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace harrowby::app;

class FirstUserTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_dialog = std::make_unique<FirstUserDialog>(u"/shops/a & b.sqlite"_s);
        m_dialog->show();
    }

    void goodPasswordIsTaken();
    void otherCaseIsTheSamePassword();
    void refusedEntryKeepsTheDialogOpen_data();
    void refusedEntryKeepsTheDialogOpen();
    void cancelRejects();
    void passwordsAreHiddenAndNamed();
    void everythingIsLargeEnoughForAThumb();
    void namesTheFile();

private:
    void type(const QString &password, const QString &again)
    {
        m_dialog->findChild<QLineEdit *>(u"password"_s)->setText(password);
        m_dialog->findChild<QLineEdit *>(u"passwordAgain"_s)->setText(again);
    }
    void press(QDialogButtonBox::ButtonRole role)
    {
        const auto *box = m_dialog->findChild<QDialogButtonBox *>();
        for (QAbstractButton *button : box->buttons()) {
            if (box->buttonRole(button) == role)
                QTest::mouseClick(button, Qt::LeftButton);
        }
    }
    QString problem() const { return m_dialog->findChild<QLabel *>(u"problem"_s)->text(); }

    std::unique_ptr<FirstUserDialog> m_dialog;
};

void FirstUserTest::goodPasswordIsTaken()
{
    type(u"secret"_s, u"secret"_s);
    press(QDialogButtonBox::AcceptRole);
    QCOMPARE(m_dialog->result(), int(QDialog::Accepted));
    QCOMPARE(m_dialog->password(), u"secret"_s);
}

void FirstUserTest::otherCaseIsTheSamePassword()
{
    type(u"secret"_s, u" SECRET"_s);
    press(QDialogButtonBox::AcceptRole);
    QCOMPARE(m_dialog->result(), int(QDialog::Accepted));
}

void FirstUserTest::refusedEntryKeepsTheDialogOpen_data()
{
    QTest::addColumn<QString>("password");
    QTest::addColumn<QString>("again");
    QTest::addColumn<QString>("said");
    QTest::addColumn<QString>("focused");
    QTest::newRow("blank") << u" "_s << u" "_s << u"Please enter a password."_s << u"password"_s;
    QTest::newRow("quote") << u"a'b"_s << u"a'b"_s << u"single quote"_s << u"password"_s;
    QTest::newRow("different") << u"secret"_s << u"secert"_s << u"differ"_s << u"passwordAgain"_s;
    QTest::newRow("only once") << u"secret"_s << u""_s << u"differ"_s << u"passwordAgain"_s;
}

void FirstUserTest::refusedEntryKeepsTheDialogOpen()
{
    QFETCH(QString, password);
    QFETCH(QString, again);
    QFETCH(QString, said);
    QFETCH(QString, focused);
    type(password, again);
    press(QDialogButtonBox::AcceptRole);
    QVERIFY(m_dialog->isVisible());
    QVERIFY2(problem().contains(said), qPrintable(problem()));
    QCOMPARE(m_dialog->focusWidget()->objectName(), focused);
}

void FirstUserTest::cancelRejects()
{
    type(u"secret"_s, u"secret"_s);
    press(QDialogButtonBox::RejectRole);
    QVERIFY(!m_dialog->isVisible());
    QCOMPARE(m_dialog->result(), int(QDialog::Rejected));
}

void FirstUserTest::passwordsAreHiddenAndNamed()
{
    for (const auto *entry : m_dialog->findChildren<QLineEdit *>()) {
        QCOMPARE(entry->echoMode(), QLineEdit::Password);
        QVERIFY(!entry->accessibleName().isEmpty());
    }
}

void FirstUserTest::everythingIsLargeEnoughForAThumb()
{
    for (const auto *entry : m_dialog->findChildren<QLineEdit *>())
        QVERIFY(entry->height() >= 44);
    for (const auto *button : m_dialog->findChildren<QAbstractButton *>())
        QVERIFY(button->height() >= 44);
}

void FirstUserTest::namesTheFile()
{
    bool named = false;
    for (const auto *label : m_dialog->findChildren<QLabel *>())
        named = named || (label->textFormat() == Qt::PlainText && label->text().contains(u"/shops/a & b.sqlite"_s));
    QVERIFY(named);
}

QTEST_MAIN(FirstUserTest)
#include "first_user_test.moc"
