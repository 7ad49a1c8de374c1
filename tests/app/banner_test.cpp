// SPDX-License-Identifier: MIT
#include "app/banner/banner.h"
#include "tests/program/test_program.h"
#include "theme/style.h"

#include <QLabel>
#include <QTest>
#include <QWidget>

#include <memory>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;

class BannerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { m_view.reset(); }

    void showsWhatIsSaid();
    void laterTopicGoesBefore();
    void refusalHasASignBesideTheColour();
    void newViewShowsWhatWasSaid();
    void nothingIsLostWithoutAView();
    void longTextEndsInAnEllipsis();
    void textThatJustFitsGetsSmallerLetters();
    void textIsPlain();
    void sizeIsThePlaces();

private:
    [[nodiscard]] QLabel *label() const { return m_view->findChild<QLabel *>(u"hostBannerText"_s); }

    std::unique_ptr<Banner> m_banner;
    std::unique_ptr<QWidget> m_view;
};

void BannerTest::init()
{
    m_banner = std::make_unique<Banner>();
    m_view.reset(m_banner->createView());
    m_view->setFixedSize(300, 60);
    applyTillStyle(*m_view);
    m_view->show();
}

void BannerTest::showsWhatIsSaid()
{
    QCOMPARE(label()->text(), QString());
    m_banner->say(BannerTopic::Change, u"Change: 3.50"_s, BannerTone::Large);
    QCOMPARE(label()->text(), u"Change: 3.50"_s);
    QCOMPARE(label()->accessibleName(), u"Change: 3.50"_s);
    QCOMPARE(m_view->property("tone").toString(), u"large"_s);
    m_banner->clear(BannerTopic::Change);
    QCOMPARE(label()->text(), QString());
    QCOMPARE(m_view->property("tone").toString(), QString());
}

void BannerTest::laterTopicGoesBefore()
{
    m_banner->say(BannerTopic::Code, u"Nobody knows it."_s, BannerTone::Refused);
    m_banner->say(BannerTopic::FirstSteps, u"Set up the shop."_s);
    m_banner->say(BannerTopic::Change, u"Change: 3.50"_s);
    QCOMPARE(m_banner->text(), u"Nobody knows it."_s);
    m_banner->clear(BannerTopic::Change);
    QVERIFY(label()->text().endsWith(u"Nobody knows it."_s));
    m_banner->say(BannerTopic::Code, {}); // as clear()
    QCOMPARE(label()->text(), u"Set up the shop."_s);
    m_banner->clear(BannerTopic::FirstSteps);
    QCOMPARE(m_banner->text(), QString());
    m_banner->clear(BannerTopic::FirstSteps); // nothing is there to clear
}

void BannerTest::refusalHasASignBesideTheColour()
{
    const QColor usual = label()->palette().color(QPalette::WindowText);
    m_banner->say(BannerTopic::Code, u"Nobody knows it."_s, BannerTone::Refused);
    QCOMPARE(label()->text(), u"\u26a0 Nobody knows it."_s);
    QVERIFY(label()->palette().color(QPalette::WindowText) != usual);
    m_banner->say(BannerTopic::Code, u"12 x TEA"_s);
    QCOMPARE(label()->text(), u"12 x TEA"_s);
    QCOMPARE(label()->palette().color(QPalette::WindowText), usual);
}

void BannerTest::newViewShowsWhatWasSaid()
{
    m_banner->say(BannerTopic::FirstSteps, u"Set up the shop."_s);
    const std::unique_ptr<QWidget> old = std::move(m_view);
    m_view.reset(m_banner->createView());
    QCOMPARE(label()->text(), u"Set up the shop."_s);
    m_banner->clear(BannerTopic::FirstSteps);
    QCOMPARE(old->findChild<QLabel *>()->text(), u"Set up the shop."_s);
}

void BannerTest::nothingIsLostWithoutAView()
{
    m_view.reset();
    m_banner->say(BannerTopic::Change, u"Change: 3.50"_s);
    m_view.reset(m_banner->createView());
    QCOMPARE(label()->text(), u"Change: 3.50"_s);
}

void BannerTest::longTextEndsInAnEllipsis()
{
    const QString text = u"The code 4006381333931 is that of two items. "_s.repeated(9).trimmed();
    m_banner->say(BannerTopic::Code, text);
    QVERIFY(label()->text().endsWith(u'\u2026'));
    QVERIFY(label()->text().size() > 20);
    QVERIFY(text.startsWith(label()->text().chopped(1)));
    QCOMPARE(label()->accessibleName(), text); // who listens hears all
    QCOMPARE(label()->toolTip(), text);
    const auto lines = label()->fontMetrics().boundingRect(label()->rect(), Qt::TextWordWrap, label()->text());
    QVERIFY(lines.height() <= label()->height());
    m_view->setFixedSize(1200, 200);
    QTRY_COMPARE(label()->text(), text);
}

void BannerTest::textThatJustFitsGetsSmallerLetters()
{
    m_view->setFixedSize(266, 44); // of the smallest window
    m_banner->say(BannerTopic::FirstSteps, u"Short."_s);
    const int usual = label()->fontMetrics().height();
    const QString text = u"1. Office, Catalogue: a list of items; or Settings, Add/Edit Stock. 2. Users."_s;
    m_banner->say(BannerTopic::FirstSteps, text);
    QCOMPARE(label()->text(), text);
    QVERIFY(label()->fontMetrics().height() < usual);
    m_banner->say(BannerTopic::FirstSteps, u"Short."_s);
    QCOMPARE(label()->fontMetrics().height(), usual);
}

void BannerTest::textIsPlain()
{
    m_banner->say(BannerTopic::Code, u"<b>a</b> & b"_s);
    QCOMPARE(label()->text(), u"<b>a</b> & b"_s);
    QVERIFY(label()->textFormat() == Qt::PlainText);
    QCOMPARE(label()->toolTip(), u"&lt;b&gt;a&lt;/b&gt; &amp; b"_s);
}

void BannerTest::sizeIsThePlaces()
{
    const QSize before = m_view->minimumSizeHint();
    m_banner->say(BannerTopic::Code, QString(5000, u'9'));
    QCOMPARE(m_view->minimumSizeHint(), before); // nothing moves under a finger
}

HARROWBY_TEST(app_banner_test, BannerTest)
#include "banner_test.moc"
