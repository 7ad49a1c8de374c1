// SPDX-License-Identifier: MIT
#include "app/work/work_strip.h"

#include "app/boxes/office_box.h"
#include "app/work/work_job.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace harrowby::app {

WorkStrip::WorkStrip(WorkJob &job, QWidget *parent) : QWidget(parent), m_job(job)
{
    setObjectName(u"workStrip"_s);
    createParts();
    m_delay.setSingleShot(true);
    m_delay.setInterval(usualDelay);
    connect(&m_delay, &QTimer::timeout, this, &WorkStrip::appear);
    connect(&job, &WorkJob::started, this, &WorkStrip::begin);
    connect(&job, &WorkJob::progressed, this, &WorkStrip::follow);
    connect(&job, &WorkJob::cancelled, this, &WorkStrip::sayCancelled);
    connect(&job, &WorkJob::finished, this, &WorkStrip::end);
    hide();
}

void WorkStrip::createParts()
{
    m_words = makeOfficeText(this, {});
    m_words->setObjectName(u"workWords"_s);
    m_bar = new QProgressBar(this);
    m_bar->setObjectName(u"workProgress"_s);
    m_bar->setAccessibleName(u"Progress"_s);
    m_bar->setMinimumHeight(32);
    m_cancel = new QPushButton(u"Cancel"_s, this);
    m_cancel->setObjectName(u"workCancel"_s);
    m_cancel->setAutoDefault(false);
    connect(m_cancel, &QPushButton::clicked, &m_job, &WorkJob::cancel);
    auto *bar = new QHBoxLayout;
    bar->setSpacing(12);
    bar->addWidget(m_bar, 1);
    bar->addWidget(m_cancel);
    auto *rows = new QVBoxLayout(this);
    rows->setContentsMargins({});
    rows->setSpacing(8);
    rows->addWidget(m_words);
    rows->addLayout(bar);
}

void WorkStrip::begin()
{
    m_step = {};
    m_words->setText(u"Please wait \u2026"_s);
    m_bar->setRange(0, 0);
    m_delay.start();
}

void WorkStrip::appear()
{
    if (!m_job.isRunning())
        return;
    m_busy = true;
    m_focusBefore = window()->focusWidget();
    show();
    m_cancel->setFocus();
    showOutcome(*m_words, m_words->text());
    Q_EMIT busyChanged(true);
}

/// A screen reader is told the words when they change; the percentage it reads at the bar.
void WorkStrip::follow(const WorkStep &step)
{
    if (m_job.isCancelled())
        return;
    const bool saysMore = step.words != m_step.words;
    m_step = step;
    m_bar->setRange(0, step.percent == WorkStep::unknown ? 0 : 100);
    m_bar->setValue(step.percent);
    if (saysMore && m_busy)
        showOutcome(*m_words, step.words);
    else if (saysMore)
        m_words->setText(step.words);
}

void WorkStrip::sayCancelled()
{
    m_bar->setRange(0, 0);
    // Intended: still enabled, so that the focus stays; a second press does nothing.
    showOutcome(*m_words, u"It is being stopped \u2026"_s);
}

void WorkStrip::end()
{
    m_delay.stop();
    if (!m_busy)
        return;
    m_busy = false;
    const bool hadFocus = m_cancel->hasFocus() || window()->focusWidget() == m_cancel;
    Q_EMIT busyChanged(false);
    if (hadFocus && m_focusBefore != nullptr)
        m_focusBefore->setFocus();
    hide();
}

} // namespace harrowby::app
