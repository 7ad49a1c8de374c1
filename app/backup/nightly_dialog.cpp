// SPDX-License-Identifier: MIT
#include "app/backup/nightly_dialog.h"

#include "app/backup/backup_names.h"
#include "app/boxes/office_box.h"
#include "app/work/work_strip.h"
#include "theme/dialogs.h"

#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

#include <set>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr QSize nightlySize(680, 520);

QString planText(const NightlyPlan &plan)
{
    return u"every day at %1 into %2, the newest %3 stay"_s.arg(plan.time.toString(u"HH:mm"_s), plan.folder,
                                                                QString::number(plan.keep));
}

/// Every half hour, and the one that counts now.
void fillTimes(QComboBox &list, QTime now)
{
    std::set<QTime> times = {now};
    for (int half = 0; half < 48; ++half)
        times.insert(QTime(half / 2, half % 2 * 30));
    list.clear();
    for (const QTime &time : times)
        list.addItem(time.toString(u"HH:mm"_s), time);
    list.setCurrentIndex(list.findData(now));
}

void fillNumbers(QComboBox &list, int now)
{
    std::set<int> numbers = {3, 7, 14, 30, 60, 90, 365, now};
    list.clear();
    for (const int number : numbers)
        list.addItem(QString::number(number), number);
    list.setCurrentIndex(list.findData(now));
}

} // namespace

NightlyDialog::NightlyDialog(NightlyTimer timer, QWidget *parent) : QDialog(parent), m_timer(std::move(timer))
{
    setWindowTitle(u"Backup Every Day"_s);
    setObjectName(u"nightlyDialog"_s);
    enlargeFont(*this);
    createControls();
    layOut();
    const auto before = m_timer.read();
    fill(before ? before->plan : NightlyPlan{.folder = usualBackupFolder()});
    dressDialog(*this);
    resize(nightlySize.boundedTo(roomFor(*this)));
    showWhatCounts();
    if (before)
        lookWhetherItRuns();
}

void NightlyDialog::reject()
{
    m_isLeaving = m_job.isRunning();
    if (!m_isLeaving)
        QDialog::reject();
}

/// Somebody may have stopped it by systemd's own programs.
void NightlyDialog::lookWhetherItRuns()
{
    m_job.start<bool>([timer = m_timer](const WorkWatch &) { return timer.isRunning(); },
                      [this](const Result<bool, QString> &runs) {
                          if (m_isLeaving)
                              return QDialog::reject();
                          if (runs && !*runs)
                              showOutcome(*m_outcome,
                                          u"\u26a0 It is set up, but systemd does not run it. Please save it "
                                          "anew."_s);
                      });
}

void NightlyDialog::createControls()
{
    m_time = new QComboBox(this);
    m_time->setObjectName(u"nightlyTime"_s);
    m_time->setAccessibleName(u"Time of day"_s);
    m_folder = new QLineEdit(this);
    m_folder->setObjectName(u"nightlyFolder"_s);
    m_folder->setAccessibleName(u"Folder of the backups"_s);
    m_choose = new QPushButton(u"&Choose \u2026"_s, this);
    m_choose->setObjectName(u"chooseNightly"_s);
    connect(m_choose, &QPushButton::clicked, this, &NightlyDialog::chooseFolder);
    m_keep = new QComboBox(this);
    m_keep->setObjectName(u"nightlyKeep"_s);
    m_keep->setAccessibleName(u"How many backups stay"_s);
    m_save = new QPushButton(this);
    m_save->setObjectName(u"saveNightly"_s);
    makePrimary(*m_save);
    connect(m_save, &QPushButton::clicked, this, &NightlyDialog::save);
    m_off = new QPushButton(u"Switch It &Off"_s, this);
    m_off->setObjectName(u"nightlyOff"_s);
    connect(m_off, &QPushButton::clicked, this, &NightlyDialog::switchOff);
    m_outcome = makeOfficeText(this, {});
    m_outcome->setObjectName(u"nightlyOutcome"_s);
    m_outcome->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
}

void NightlyDialog::layOut()
{
    auto *folder = new QHBoxLayout;
    folder->setSpacing(12);
    folder->addWidget(m_folder, 1);
    folder->addWidget(m_choose);
    auto *form = new QFormLayout;
    form->setVerticalSpacing(12);
    form->addRow(u"&Time of day:"_s, m_time);
    auto *caption = new QLabel(u"&Folder:"_s, this);
    caption->setBuddy(m_folder);
    form->addRow(caption, folder);
    form->addRow(u"&How many stay:"_s, m_keep);
    centreCaptions(*form);
    auto *close = new QPushButton(u"Close"_s, this);
    close->setObjectName(u"closeNightly"_s);
    connect(close, &QPushButton::clicked, this, &QDialog::reject);
    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(12);
    buttons->addWidget(m_off);
    buttons->addStretch(1);
    buttons->addWidget(m_save);
    buttons->addWidget(close);
    auto *rows = new QVBoxLayout(this);
    rows->setContentsMargins(16, 16, 16, 12);
    rows->setSpacing(12);
    rows->addWidget(
        makeOfficeText(this, u"This computer makes a checked backup every day, also while nobody is logged in, and "
                             "removes the oldest of those it has made. A time that was missed, as the computer was "
                             "off, is made up for. The folder must be there then: one on another disk is best."_s));
    rows->addLayout(form);
    rows->addWidget(makeOutcomeArea(), 1);
    rows->addWidget(new WorkStrip(m_job, this));
    rows->addLayout(buttons);
    for (QPushButton *button : findChildren<QPushButton *>())
        button->setAutoDefault(false);
}

/// What there is to say may be long, with paths and a line for cron in it.
QWidget *NightlyDialog::makeOutcomeArea()
{
    auto *area = new QScrollArea(this);
    area->setObjectName(u"nightlyOutcomeArea"_s);
    area->setAccessibleName(u"Outcome"_s);
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setWidget(m_outcome);
    area->viewport()->setAutoFillBackground(false);
    m_outcome->setAutoFillBackground(false);
    m_outcome->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    return area;
}

void NightlyDialog::fill(const NightlyPlan &plan)
{
    fillTimes(*m_time, plan.time);
    fillNumbers(*m_keep, plan.keep);
    m_folder->setText(QDir::toNativeSeparators(plan.folder));
}

void NightlyDialog::chooseFolder()
{
    QFileDialog dialog(this, u"Folder of the Backups"_s);
    dialog.setFileMode(QFileDialog::Directory);
    dialog.setOption(QFileDialog::ShowDirsOnly);
    dialog.selectFile(m_folder->text());
    dressDialog(dialog);
    if (dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty())
        m_folder->setText(QDir::toNativeSeparators(dialog.selectedFiles().constFirst()));
}

NightlyPlan NightlyDialog::typed() const
{
    const QString folder = m_folder->text().trimmed().isEmpty() ? QString() : QDir::cleanPath(m_folder->text());
    return {m_time->currentData().toTime(), folder, m_keep->currentData().toInt()};
}

void NightlyDialog::save()
{
    const NightlyPlan plan = typed();
    run([timer = m_timer, plan](const WorkWatch &watch) { return timer.setUp(plan, watch); },
        u"The backup is made %1."_s.arg(planText(plan)), u"Backup "_s + planText(plan));
}

void NightlyDialog::switchOff()
{
    run([timer = m_timer](const WorkWatch &watch) { return timer.switchOff(watch); },
        u"No backup is made by itself any more."_s, u"No backup every day any more"_s);
}

void NightlyDialog::run(const std::function<NightlyEnd(const WorkWatch &)> &work, const QString &done,
                        const QString &change)
{
    if (m_job.isRunning())
        return;
    m_outcome->clear();
    m_job.start<NightlyEnd>(work, [this, done, change](const Result<NightlyEnd, QString> &ended) {
        const NightlyEnd end = ended ? *ended : NightlyEnd{ended.error(), {}};
        if (end.problem.isEmpty())
            m_changes << change;
        showWhatCounts();
        if (std::exchange(m_isLeaving, false) && end.problem.isEmpty() && end.warning.isEmpty())
            return QDialog::reject();
        if (!end.problem.isEmpty())
            return showOutcome(*m_outcome, u"\u26a0 "_s + end.problem);
        showOutcome(*m_outcome,
                    u"\u2713 "_s + done + (end.warning.isEmpty() ? QString() : u"\n\u26a0 "_s + end.warning));
    });
}

void NightlyDialog::showWhatCounts()
{
    const bool isOn = m_timer.read().has_value();
    m_off->setVisible(isOn);
    m_save->setText(isOn ? u"&Save"_s : u"&Switch It On"_s);
}

QString nightlyText(const NightlyTimer &timer, const QString &program)
{
    const auto read = timer.read();
    if (!read)
        return u"No backup is made by itself."_s;
    const QString text = u"A backup is made "_s + planText(read->plan) + u'.';
    if (read->program == program)
        return text;
    return text + u"\n\u26a0 It is made by another program: %1. Please save it anew."_s.arg(read->program);
}

} // namespace harrowby::app
