// SPDX-License-Identifier: MIT
#include "app/backup/backup_page.h"
#include "app/office/office_login_dialog.h"
#include "app/office/receipt_page.h"
#include "app/office/user_dialog.h"
#include "app/records/sqlite_records.h"
#include "app/shop/first_user_dialog.h"
#include "app/start/look_choice.h"
#include "theme/colours.h"
#include "theme/dialogs.h"

#include "tests/program/test_program.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QVBoxLayout>

#include <cstdlib>
#include <functional>
#include <memory>

using namespace Qt::StringLiterals;
using namespace harrowby::app;

using Form = std::function<std::unique_ptr<QDialog>()>;
Q_DECLARE_METATYPE(Form)

namespace {

/// A page of the office in a window of its own.
template <class Page, class... Arguments>
Form pageOf(const Arguments &...arguments)
{
    return [=] {
        auto window = std::make_unique<QDialog>();
        const OfficeSettings settings = {[](const QString &, const QString &, const QString &usual) { return usual; },
                                         [](const QString &, const QString &, const QString &) { return true; }};
        auto *rows = new QVBoxLayout(window.get());
        rows->addWidget(new Page(arguments..., settings, window.get()));
        harrowby::dressDialog(*window);
        return window;
    };
}

/// Of a form that is only looked at.
SqliteRecords &noStore()
{
    static SqliteRecords records(nullptr);
    return records;
}

} // namespace

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
    void asksOnlyForWhatIsProposed();
    void takesTheReceiptAsProposedOrChanged();
    void refusesWhatNoReceiptTakes();
    void captionsStandInTheMiddle();
    void wearsTheTillsTheme();
    void formsWearTheTillsTheme_data();
    void formsWearTheTillsTheme();
    void boxesWearTheTillsTheme_data();
    void boxesWearTheTillsTheme();
    void textsAreReadableInAnyPalette();
    void chosenLookIsWorn_data();
    void chosenLookIsWorn();

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
    QCOMPARE(m_dialog->result(), static_cast<int>(QDialog::Accepted));
    QCOMPARE(m_dialog->password(), u"secret"_s);
}

void FirstUserTest::otherCaseIsTheSamePassword()
{
    type(u"secret"_s, u" SECRET"_s);
    press(QDialogButtonBox::AcceptRole);
    QCOMPARE(m_dialog->result(), static_cast<int>(QDialog::Accepted));
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
    QCOMPARE(m_dialog->result(), static_cast<int>(QDialog::Rejected));
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
    for (const auto *label : m_dialog->findChildren<QLabel *>()) {
        const QString shown = label->text().remove(u'\u200b'); // zero-width spaces at which the path may wrap
        named = named || (label->textFormat() == Qt::PlainText && shown.contains(u"/shops/a & b.sqlite"_s));
    }
    QVERIFY(named);
}

void FirstUserTest::asksOnlyForWhatIsProposed()
{
    QCOMPARE(m_dialog->receipt(), ReceiptProposal());
    QCOMPARE(m_dialog->findChildren<QLineEdit *>().size(), 2);
    const FirstUserDialog half({}, {{}, u"EUR"_s});
    QCOMPARE(half.findChildren<QLineEdit *>().size(), 3);
    QCOMPARE(half.receipt(), (ReceiptProposal{{}, u"EUR"_s}));
}

void FirstUserTest::takesTheReceiptAsProposedOrChanged()
{
    m_dialog = std::make_unique<FirstUserDialog>(u"/s"_s, ReceiptProposal{u"My Shop"_s, u"N"_s});
    QCOMPARE(m_dialog->receipt(), (ReceiptProposal{u"My Shop"_s, u"N"_s}));
    m_dialog->findChild<QLineEdit *>(u"shopTitle"_s)->setText(u" Corner Shop "_s);
    m_dialog->findChild<QLineEdit *>(u"shopCurrency"_s)->setText(u"EUR"_s);
    QCOMPARE(m_dialog->receipt(), (ReceiptProposal{u"Corner Shop"_s, u"EUR"_s}));
    m_dialog->findChild<QLineEdit *>(u"shopTitle"_s)->clear(); // a receipt without a title is allowed
    type(u"secret"_s, u"secret"_s);
    m_dialog->accept();
    QCOMPARE(m_dialog->result(), static_cast<int>(QDialog::Accepted));
}

void FirstUserTest::refusesWhatNoReceiptTakes()
{
    m_dialog = std::make_unique<FirstUserDialog>(u"/s"_s, ReceiptProposal{u"My Shop"_s, u"N"_s});
    m_dialog->show();
    type(u"secret"_s, u"secret"_s);
    const auto *title = m_dialog->findChild<QLineEdit *>(u"shopTitle"_s);
    m_dialog->findChild<QLineEdit *>(u"shopTitle"_s)->setText(QString(200, u'W'));
    m_dialog->accept();
    QVERIFY2(problem().contains(u"title is too long"_s), qPrintable(problem()));
    QCOMPARE(m_dialog->focusWidget(), title);
    m_dialog->findChild<QLineEdit *>(u"shopTitle"_s)->setText(u"My Shop"_s);
    m_dialog->findChild<QLineEdit *>(u"shopCurrency"_s)->setText(u" "_s);
    m_dialog->accept();
    QVERIFY2(problem().contains(u"enter a currency"_s), qPrintable(problem()));
    QVERIFY(m_dialog->isVisible());
}

void FirstUserTest::captionsStandInTheMiddle()
{
    m_dialog = std::make_unique<FirstUserDialog>(u"/s"_s, ReceiptProposal{u"My Shop"_s, u"N"_s});
    m_dialog->show();
    int captions = 0;
    for (const auto *label : m_dialog->findChildren<QLabel *>()) {
        if (label->buddy() == nullptr)
            continue;
        ++captions;
        QVERIFY(label->alignment().testFlag(Qt::AlignVCenter));
        QVERIFY(std::abs(label->geometry().center().y() - label->buddy()->geometry().center().y()) <= 1);
    }
    QCOMPARE(captions, 4);
}

void FirstUserTest::wearsTheTillsTheme()
{
    QVERIFY(m_dialog->styleSheet().contains(u"QPushButton[styleWord=\"primary\"]"_s));
    int main = 0;
    for (const auto *button : m_dialog->findChildren<QPushButton *>()) {
        QVERIFY2(button->icon().isNull(), qPrintable(button->text()));
        if (button->property("styleWord") == u"primary"_s) {
            ++main;
            QVERIFY(button->isDefault());
        }
    }
    QCOMPARE(main, 1);
}

void FirstUserTest::formsWearTheTillsTheme_data()
{
    QTest::addColumn<Form>("make");
    QTest::addColumn<int>("captions");
    QTest::newRow("password of the office") << Form([] {
        return std::make_unique<OfficeLoginDialog>(
            [](const QString &, const QString &) { return harrowby::Result<OfficeUser, QString>(OfficeUser()); });
    }) << 2;
    QTest::newRow("new user") << Form([] { return std::make_unique<UserDialog>(QString(), UserDialog::Save()); }) << 4;
    QTest::newRow("new password") << Form([] { return std::make_unique<UserDialog>(u"ANNA"_s, UserDialog::Save()); })
                                  << 3;
    const SignedDeeds deeds(noStore(), officePlace, {});
    QTest::newRow("receipt") << pageOf<ReceiptPage>(deeds) << 3;
    QTest::newRow("backup") << pageOf<BackupPage>(deeds, u"/s"_s) << 1;
}

void FirstUserTest::formsWearTheTillsTheme()
{
    QFETCH(const Form, make);
    const std::unique_ptr<QDialog> form = make();
    form->show();
    int main = 0;
    for (const auto *button : form->findChildren<QPushButton *>()) {
        QVERIFY2(button->icon().isNull(), qPrintable(button->text()));
        main += button->property("styleWord") == u"primary"_s ? 1 : 0;
    }
    QCOMPARE(main, 1);
    int captions = 0;
    for (const auto *label : form->findChildren<QLabel *>()) {
        if (label->buddy() == nullptr)
            continue;
        ++captions;
        QVERIFY(label->alignment().testFlag(Qt::AlignVCenter));
        const int off = label->geometry().center().y() - label->buddy()->geometry().center().y();
        QVERIFY2(std::abs(off) <= 1, qPrintable(label->text() + QString::number(off)));
    }
    QTEST(captions, "captions");
}

void FirstUserTest::boxesWearTheTillsTheme_data()
{
    QTest::addColumn<QMessageBox::Icon>("icon");
    QTest::addColumn<bool>("dark");
    QTest::addColumn<QColor>("colour");
    for (const bool dark : {false, true}) {
        const QColor accent(dark ? 0x40c9ac : 0x006256);
        const QByteArray shade = dark ? "dark " : "light ";
        QTest::newRow(shade + "question") << QMessageBox::Question << dark << accent;
        QTest::newRow(shade + "information") << QMessageBox::Information << dark << accent;
        QTest::newRow(shade + "warning") << QMessageBox::Warning << dark << QColor(dark ? 0xffc14d : 0xb86e00);
        QTest::newRow(shade + "error") << QMessageBox::Critical << dark << QColor(dark ? 0xff8076 : 0xba0e0e);
    }
}

void FirstUserTest::boxesWearTheTillsTheme()
{
    QFETCH(const QMessageBox::Icon, icon);
    QFETCH(const bool, dark);
    QFETCH(const QColor, colour);
    const QPalette before = QApplication::palette();
    applyLook(dark ? LookChoice::Dark : LookChoice::Light);
    QMessageBox box(icon, u"Store"_s, u"Stop it?"_s, QMessageBox::Yes | QMessageBox::No);
    box.setDefaultButton(QMessageBox::No);
    harrowby::dressBox(box);
    box.show();
    const QImage drawing = box.iconPixmap().toImage();
    int own = 0;
    for (int y = 0; y < drawing.height(); ++y)
        for (int x = 0; x < drawing.width(); ++x)
            own += drawing.pixelColor(x, y) == colour ? 1 : 0;
    QVERIFY2(own > 100, qPrintable(QString::number(own)));
    for (const QAbstractButton *button : box.buttons()) {
        QVERIFY(button->icon().isNull() && button->height() >= 44);
        QCOMPARE(button->property("styleWord") == u"primary"_s, button == box.defaultButton());
    }
    QApplication::setPalette(before);
}

void FirstUserTest::textsAreReadableInAnyPalette()
{
    QPalette faint(QColor(200, 200, 200));
    faint.setColor(QPalette::WindowText, QColor(150, 150, 150));
    QApplication::setPalette(faint);
    QDialog dialog;
    auto *text = new QLabel(u"Text"_s, &dialog);
    auto *caption = new QLabel(u"Caption"_s, &dialog);
    caption->setProperty("styleWord", u"caption"_s);
    harrowby::dressDialog(dialog);
    dialog.show();
    const auto contrast = [&](const QWidget *widget) {
        return harrowby::contrastRatio(widget->palette().color(widget->foregroundRole()),
                                       dialog.palette().color(QPalette::Window));
    };
    QVERIFY(contrast(text) >= 7.0);
    QVERIFY(contrast(caption) >= 4.5);
    QApplication::setPalette(QPalette());
}

void FirstUserTest::chosenLookIsWorn_data()
{
    QTest::addColumn<QString>("saved");
    QTest::addColumn<LookChoice>("look");
    QTest::addColumn<bool>("dark");
    QTest::newRow("nothing") << QString() << LookChoice::System << false;
    QTest::newRow("nonsense") << u"pink"_s << LookChoice::System << false;
    QTest::newRow("light") << u"light"_s << LookChoice::Light << false;
    QTest::newRow("dark") << u" Dark"_s << LookChoice::Dark << true;
}

void FirstUserTest::chosenLookIsWorn()
{
    QFETCH(QString, saved);
    QFETCH(LookChoice, look);
    QFETCH(bool, dark);
    const OfficeSettings settings = {
        [&](const QString &, const QString &, const QString &usual) { return saved.isEmpty() ? usual : saved; },
        [&](const QString &, const QString &, const QString &value) {
            saved = value;
            return true;
        }};
    QCOMPARE(savedLook(settings), look);
    const QPalette before = QApplication::palette();
    applyLook(look);
    // Windows that are open already follow, too.
    QCOMPARE(harrowby::Colours::current().dark, dark);
    QCoreApplication::processEvents();
    QCOMPARE(m_dialog->grab().toImage().pixelColor(2, 2).lightness() < 128, dark);
    QCOMPARE(before == QApplication::palette(), look == LookChoice::System);
    QVERIFY(saveLook(settings, look));
    QCOMPARE(savedLook(settings), look);
    QApplication::setPalette(before);
}

HARROWBY_TEST(app_first_user_test, FirstUserTest)
#include "first_user_test.moc"
