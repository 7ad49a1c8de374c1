// SPDX-License-Identifier: MIT
#include "app/shop/failure_notice.h"

#include "app/shop/failure_text.h"
#include "app/shop/notice_place.h"
#include "basic/logging.h"
#include "spoken/spoken.h"
#include "theme/dialogs.h"
#include "theme/style.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <QVBoxLayout>

#include <algorithm>
#include <exception>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr int noticeWidth = 440;
constexpr std::chrono::milliseconds placeInterval(250);

QString clockTime(const QDateTime &time)
{
    return time.toString(u"HH:mm:ss"_s);
}

/// The last few texts, without duplicates, as the window is small.
QString newest(QStringList texts)
{
    constexpr qsizetype most = 3;
    texts.removeDuplicates();
    return texts.mid(std::max<qsizetype>(0, texts.size() - most)).join(u'\n');
}

QLabel *createLine(QWidget *parent, const QString &name)
{
    auto *label = new QLabel(parent);
    label->setObjectName(name);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

} // namespace

FailureNotice::FailureNotice()
{
    setObjectName(u"failureNotice"_s);
    setWindowTitle(u"Not Saved"_s);
    setAccessibleName(u"Changes that were not saved"_s);
    setWindowFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::WindowDoesNotAcceptFocus);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_QuitOnClose, false);
    setFocusPolicy(Qt::NoFocus);
    applyNoticeStyle(*this);
    layOut();
    makeTouchSized(*this);
    m_place.setInterval(placeInterval);
    connect(&m_place, &QTimer::timeout, this, &FailureNotice::keepClear);
}

void FailureNotice::layOut()
{
    m_heading = createLine(this, u"failureHeading"_s);
    m_work = createLine(this, u"failureWork"_s);
    m_reason = createLine(this, u"failureReason"_s);
    m_advice = createLine(this, u"failureAdvice"_s);

    auto *dismissButton = new QPushButton(u"Dismiss (Ctrl+D)"_s, this);
    dismissButton->setObjectName(u"failureDismiss"_s);
    dismissButton->setFocusPolicy(Qt::NoFocus);
    connect(dismissButton, &QPushButton::clicked, this, &FailureNotice::dismiss);
    // ApplicationShortcut: the notice never has the focus.
    auto *key = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_D), this);
    key->setContext(Qt::ApplicationShortcut);
    connect(key, &QShortcut::activated, this, &FailureNotice::dismiss);

    auto *rows = new QVBoxLayout(this);
    rows->setContentsMargins(16, 12, 16, 12);
    for (QLabel *line : {m_heading, m_work, m_reason, m_advice})
        rows->addWidget(line);
    rows->addWidget(dismissButton, 0, Qt::AlignRight);
    setFixedWidth(noticeWidth);
}

void FailureNotice::add(const DbFailure &failure) noexcept
{
    if (failure.kind != DbFailure::Kind::Write)
        return;
    try {
        present({{}, failedWork(failure), failureReason(failure), failureAdvice(failure), true});
    } catch (const std::exception &error) {
        qCWarning(lcWindow) << "A failure could not be shown:" << error.what();
    }
}

void FailureNotice::addDoubtful(const DbFailure &failure) noexcept
try {
    if (failure.kind == DbFailure::Kind::Write)
        present({{},
                 doubtfulWork(failure),
                 failureReason(failure),
                 u"Do not do it again: as soon as the server answers, the till finds out and says so here."_s,
                 true,
                 true,
                 Notice::Outcome::NotKnown});
} catch (const std::exception &error) {
    qCWarning(lcWindow) << "A failure could not be shown:" << error.what();
}

void FailureNotice::settle(const QString &statement, bool isDone) noexcept
try {
    settle(statement, settledWork(statement, isDone), settledAdvice(statement, isDone));
} catch (const std::exception &error) {
    qCWarning(lcWindow) << "A notice could not be shown:" << error.what();
}

void FailureNotice::settle(const QString &statement, const QString &work, const QString &advice) noexcept
try {
    forget(doubtfulWork({DbFailure::Kind::Write, statement, {}}));
    present({{}, work, u"the server has been asked"_s, advice, true, true, Notice::Outcome::Settled});
} catch (const std::exception &error) {
    qCWarning(lcWindow) << "A notice could not be shown:" << error.what();
}

void FailureNotice::forget(const QString &work) noexcept
{
    const auto same = [&](const Line &line) { return line.notice.work == work; };
    if (const auto line = std::find_if(m_lines.begin(), m_lines.end(), same);
        line != m_lines.end() && --line->count == 0)
        m_lines.erase(line);
}

void FailureNotice::tell(const Notice &notice) noexcept
try {
    const std::pair cause(notice.subject, notice.reason);
    const auto sameWork = [&](const Line &line) { return line.notice.work == notice.work; };
    const bool isThere = std::any_of(m_lines.cbegin(), m_lines.cend(), sameWork);
    if (m_told.contains(cause) && !isThere)
        return;
    m_told.insert(cause);
    present(notice);
} catch (const std::exception &error) {
    qCWarning(lcWindow) << "A notice could not be shown:" << error.what();
}

void FailureNotice::add(const FileFailure &failure) noexcept
try {
    const QString subject = failureSubject(failure.kind);
    if (failure.isOver)
        return tellOver(subject);
    const bool isCounted = failure.kind == FileFailure::Kind::Receipt;
    tell({subject, failedWork(failure), failure.reason, failureAdvice(failure), isCounted});
} catch (const std::exception &error) {
    qCWarning(lcWindow) << "A failure could not be shown:" << error.what();
}

void FailureNotice::addLog(const QString &path, const Result<void, QString> &outcome) noexcept
try {
    const auto subject = u"log"_s;
    if (outcome)
        return tellOver(subject);
    tell({subject, u"The log file cannot be written; warnings go to the terminal."_s, outcome.error(),
          u"Check the disk and the file %1."_s.arg(wrappingPath(path))});
} catch (const std::exception &error) {
    qCWarning(lcWindow) << "A failure could not be shown:" << error.what();
}

void FailureNotice::tellOver(const QString &subject) noexcept
{
    m_told.removeIf([&](const auto &cause) { return cause.first == subject; });
}

void FailureNotice::present(const Notice &notice)
{
    note(notice);
    showLines();
    keepClear();
    show();
    m_place.start();
    for (QLabel *line : {m_heading, m_work, m_advice})
        reportOutcome(line, line->text());
}

void FailureNotice::note(const Notice &notice)
{
    if (m_lines.isEmpty())
        m_first = QDateTime::currentDateTime();
    const auto same = [&](const Line &line) { return line.notice.work == notice.work; };
    const auto line = std::find_if(m_lines.begin(), m_lines.end(), same);
    if (line == m_lines.end())
        m_lines << Line{notice, 1};
    else
        *line = Line{notice, line->count + 1};
}

/// What is worst of all that is shown.
QString FailureNotice::heading() const
{
    using Outcome = Notice::Outcome;
    const auto any = [this](auto isSo) {
        return std::any_of(m_lines.cbegin(), m_lines.cend(), [&](const Line &line) { return isSo(line.notice); });
    };
    const auto isNotDone = [](const Notice &notice) { return notice.outcome == Outcome::NotDone; };
    if (any([&](const Notice &notice) { return isNotDone(notice) && notice.isOfData; }))
        return u"\u26a0 Not saved (%1)"_s;
    if (any(isNotDone))
        return u"\u26a0 Not done (%1)"_s;
    if (any([](const Notice &notice) { return notice.outcome == Outcome::NotKnown; }))
        return u"\u26a0 Not known whether it was saved (%1)"_s;
    return u"Known now (%1)"_s;
}

void FailureNotice::showLines()
{
    const QString first = clockTime(m_first);
    const QString last = clockTime(QDateTime::currentDateTime());
    const QString time = first == last ? first : u"%1 to %2"_s.arg(first, last);
    m_heading->setText(heading().arg(time));
    QStringList works;
    QStringList reasons;
    QStringList advices;
    for (const Line &line : std::as_const(m_lines)) {
        const Notice &notice = line.notice;
        const bool often = notice.isCounted && line.count > 1;
        works << (often ? u"%1 (%2 times)"_s.arg(notice.work).arg(line.count) : notice.work);
        reasons << u"Reason: "_s + notice.reason;
        advices << notice.advice;
    }
    m_work->setText(works.join(u'\n'));
    m_reason->setText(newest(reasons));
    m_advice->setText(newest(advices));
    resize(noticeWidth, heightForWidth(noticeWidth));
}

void FailureNotice::keepClear()
{
    const QWidget *window = salesWindow();
    const QScreen *screen = window != nullptr ? window->screen() : QGuiApplication::primaryScreen();
    if (screen == nullptr)
        return;
    const QRect area = screen->availableGeometry();
    QList<QRect> totals = window != nullptr ? keptInSight(*window) : QList<QRect>();
    // While a modal box is open the notice cannot be dismissed, so it must not cover the box.
    if (const QWidget *box = QApplication::activeModalWidget())
        totals << box->frameGeometry();
    // A finger on its way to "Dismiss" must not meet what lies beneath, as when it moved back once a box has closed.
    if (isVisible() && isClear({m_askedFor, size()}, area, totals))
        return;
    const QRect frame = window != nullptr ? window->frameGeometry() : area;
    const QPoint place = noticePlace(size(), frame, area, totals);
    if (place == m_askedFor)
        return;
    m_askedFor = place;
    move(place);
}

void FailureNotice::dismiss()
{
    m_place.stop();
    m_lines.clear();
    m_askedFor = {};
    hide();
}

} // namespace harrowby::app
