// SPDX-License-Identifier: MIT
#include "failure_notice.h"

#include "basic/logging.h"
#include "dialog_style.h"
#include "failure_text.h"
#include "notice_place.h"

#include <QAccessible>
#include <QApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <QVBoxLayout>

#include <algorithm>
#include <exception>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr int noticeWidth = 440;
constexpr std::chrono::milliseconds placeInterval(250);

QString clockTime(const QDateTime &time)
{
    return time.toString(u"HH:mm:ss"_s);
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
    setStyleSheet(failureNoticeStyle());
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
    // The window never has the focus, so the key works wherever in the program it is.
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
        note(failure);
        showLines(failure);
        keepClear();
        show();
        m_place.start();
        QAccessibleEvent alert(this, QAccessible::Alert);
        QAccessible::updateAccessibility(&alert);
    } catch (const std::exception &error) {
        qCWarning(lcWindow) << "A failure could not be shown:" << error.what();
    }
}

void FailureNotice::note(const DbFailure &failure)
{
    if (m_lines.isEmpty())
        m_first = QDateTime::currentDateTime();
    const QString work = failedWork(failure);
    const auto same = [&](const Line &line) { return line.work == work; };
    const auto line = std::find_if(m_lines.begin(), m_lines.end(), same);
    if (line != m_lines.end())
        ++line->count;
    else
        m_lines << Line{work, 1};
}

void FailureNotice::showLines(const DbFailure &failure)
{
    const QString first = clockTime(m_first);
    const QString last = clockTime(QDateTime::currentDateTime());
    const QString time = first == last ? first : u"%1 to %2"_s.arg(first, last);
    m_heading->setText(u"\u26a0 Not saved (%1)"_s.arg(time));
    QStringList works;
    for (const Line &line : m_lines)
        works << (line.count == 1 ? line.work : u"%1 (%2 times)"_s.arg(line.work).arg(line.count));
    m_work->setText(works.join(u'\n'));
    m_reason->setText(u"Reason: "_s + failureReason(failure));
    m_advice->setText(failureAdvice(failure));
    resize(noticeWidth, heightForWidth(noticeWidth));
}

void FailureNotice::keepClear()
{
    const QWidget *window = salesWindow();
    const QScreen *screen = window != nullptr ? window->screen() : QGuiApplication::primaryScreen();
    if (screen == nullptr)
        return;
    const QRect area = screen->availableGeometry();
    QList<QRect> totals = window != nullptr ? visibleTotals(*window) : QList<QRect>();
    // A box waits for its answer, and the notice cannot be dismissed meanwhile.
    if (const QWidget *box = QApplication::activeModalWidget())
        totals << box->frameGeometry();
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
