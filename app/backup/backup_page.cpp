// SPDX-License-Identifier: MIT
#include "app/backup/backup_page.h"

#include "app/backup/backup_names.h"
#include "app/backup/backup_place.h"
#include "app/backup/good_backups.h"
#include "app/backup/nightly_dialog.h"
#include "app/backup/restore_dialog.h"
#include "app/boxes/office_box.h"
#include "app/copy/server_copy.h"
#include "app/shop/failure_text.h"
#include "app/shop/workshop.h"
#include "basic/store_address.h"
#include "theme/dialogs.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

const auto lastSection = u"Office"_s;
const auto lastKey = u"LastBackup"_s;

QString usualPlace()
{
    return QDir(usualBackupFolder()).filePath(usualBackupName(QDate::currentDate()));
}

QString sizeText(qint64 bytes)
{
    return QLocale::c().formattedDataSize(bytes);
}

} // namespace

BackupPage::BackupPage(const SignedDeeds &deeds, const QString &store, OfficeSettings settings, QWidget *parent) :
    OfficePage(parent), m_deeds(deeds), m_store(store), m_settings(std::move(settings))
{
    createControls();
    layOut();
    removeLeftWorkshops(usualBackupFolder());
    if (const QString last = m_settings.get(lastSection, lastKey, {}); !last.isEmpty())
        removeLeftWorkshops(QFileInfo(last).absolutePath());
    connect(&m_job, &BackupJob::progressed, this, &BackupPage::showProgress);
    connect(&m_job, &BackupJob::finished, this, &BackupPage::finish);
    setRunning(false);
    showLast();
    m_nightlyState->setText(nightlyText(nightly(), QCoreApplication::applicationFilePath()));
}

void BackupPage::createControls()
{
    m_place = new QLineEdit(QDir::toNativeSeparators(usualPlace()), this);
    m_place->setObjectName(u"backupPlace"_s);
    m_place->setAccessibleName(u"Place of the backup"_s);
    m_choose = new QPushButton(u"&Choose \u2026"_s, this);
    connect(m_choose, &QPushButton::clicked, this, &BackupPage::choosePlace);
    m_start = new QPushButton(u"&Back Up Now"_s, this);
    m_start->setObjectName(u"startBackup"_s);
    makePrimary(*m_start);
    connect(m_start, &QPushButton::clicked, this, &BackupPage::start);
    m_stop = new QPushButton(u"S&top"_s, this);
    m_stop->setObjectName(u"stopBackup"_s);
    connect(m_stop, &QPushButton::clicked, this, [this] { m_job.stop(); });
    m_progress = new QProgressBar(this);
    m_progress->setAccessibleName(u"Progress of the backup"_s);
    m_progress->setMinimumHeight(32);
    m_outcome = makeOfficeText(this, {});
    m_outcome->setObjectName(u"backupOutcome"_s);
    m_nightly = new QPushButton(u"Every &Day \u2026"_s, this);
    m_nightly->setObjectName(u"nightlyBackup"_s);
    connect(m_nightly, &QPushButton::clicked, this, &BackupPage::keepNightly);
    m_nightlyState = makeOfficeText(this, {});
    m_nightlyState->setObjectName(u"nightlyState"_s);
    m_restore = new QPushButton(u"Restore &a Backup \u2026"_s, this);
    m_restore->setObjectName(u"restoreBackup"_s);
    connect(m_restore, &QPushButton::clicked, this, &BackupPage::chooseRestore);
    m_last = makeOfficeText(this, {});
    m_last->setObjectName(u"lastBackup"_s);
}

void BackupPage::layOut()
{
    auto *place = new QHBoxLayout;
    place->setSpacing(12);
    auto *caption = new QLabel(u"&Place:"_s, this);
    caption->setBuddy(m_place);
    place->addWidget(caption);
    place->addWidget(m_place, 1);
    place->addWidget(m_choose);
    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(12);
    buttons->addWidget(m_start, 1);
    buttons->addWidget(m_stop);

    auto *rows = new QVBoxLayout(this);
    rows->setContentsMargins(16, 16, 16, 16);
    rows->setSpacing(16);
    rows->addWidget(m_last);
    rows->addWidget(makeOfficeText(this,
                                   u"The tills can go on selling meanwhile. The backup is one file with everything "
                                   "that the store holds, and it is checked before it counts. Keep it away from "
                                   "this computer, for example on a stick."_s));
    rows->addLayout(place);
    rows->addLayout(buttons);
    rows->addWidget(m_progress);
    rows->addWidget(m_outcome);
    rows->addStretch(1);
    auto *more = new QHBoxLayout;
    more->setSpacing(12);
    more->addWidget(m_nightly);
    more->addStretch(1);
    more->addWidget(m_restore);
    rows->addWidget(m_nightlyState);
    rows->addLayout(more);
}

void BackupPage::choosePlace()
{
    QFileDialog dialog(this, u"Place of the Backup"_s);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setOption(QFileDialog::DontConfirmOverwrite); // asked before the backup starts
    dialog.setDefaultSuffix(copySuffix.toString());
    dialog.selectFile(m_place->text());
    dressDialog(dialog);
    if (dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty())
        m_place->setText(QDir::toNativeSeparators(dialog.selectedFiles().constFirst()));
}

std::optional<LeavingQuestion> BackupPage::leaving() const
{
    if (!m_job.isRunning())
        return {};
    return LeavingQuestion{u"A backup is being made. Stop it?"_s, u"&Stop It"_s};
}

QString BackupPage::loss() const
{
    return m_loss ? m_loss() : QString();
}

void BackupPage::start()
{
    if (const QString lost = loss(); !lost.isEmpty())
        return showOutcome(*m_outcome, u"\u26a0 "_s + lost);
    const QString target = m_place->text().isEmpty() ? QString() : QDir::cleanPath(m_place->text());
    if (const auto place = checkBackupPlace(m_store, target); !place)
        return showOutcome(*m_outcome, u"\u26a0 "_s + place.error());
    const bool replace = backupWouldReplace(target);
    if (replace && !askInOffice(this, u"There is a file \"%1\" already. Replace it with the new backup?"_s.arg(target),
                                u"&Replace"_s))
        return;
    m_outcome->clear();
    setRunning(true);
    m_job.start(m_store, target, replace);
}

void BackupPage::showProgress(const BackupProgress &progress)
{
    const bool checking = progress.stage == BackupProgress::Stage::Checking;
    m_progress->setRange(0, checking ? 0 : 100);
    m_progress->setValue(progress.percent);
    showOutcome(*m_outcome, checking ? u"The copy is being checked \u2026"_s : u"The store is being copied \u2026"_s);
}

void BackupPage::finish(const BackupResult &result)
{
    setRunning(false);
    if (result.outcome == BackupResult::Outcome::Stopped)
        return showOutcome(*m_outcome, u"Stopped. Nothing was left behind."_s);
    if (result.outcome == BackupResult::Outcome::Failed)
        return showOutcome(*m_outcome, u"\u26a0 "_s + result.problem);
    if (const QString lost = loss(); !lost.isEmpty())
        return showOutcome(*m_outcome, u"\u26a0 "_s + lost + u"\nDo not count on the copy that was being made."_s);
    (void)m_settings.save(lastSection, lastKey, realTarget(m_place->text())); // only for what a killed one leaves
    noteGood(result);
    Q_EMIT warningChanged();
    showOutcome(*m_outcome, u"\u2713 The backup is made and checked: %1."_s.arg(sizeText(result.bytes)));
    showLast();
}

/// Moves the focus before a button is disabled, and makes the entry read-only instead of disabling it: Qt passes the
/// focus of a disabled control on, in the end to the button that closes the window.
void BackupPage::setRunning(bool running)
{
    const QWidget *focus = window()->focusWidget();
    QPushButton *next = running ? m_stop : m_start;
    next->setEnabled(true);
    if (focus == m_start || focus == m_choose || focus == m_stop)
        next->setFocus();
    m_place->setReadOnly(running);
    m_choose->setEnabled(!running);
    m_restore->setEnabled(!running);
    m_start->setEnabled(!running);
    m_stop->setEnabled(running);
    m_progress->setRange(0, 100);
    m_progress->setValue(0);
    m_progress->setVisible(running);
}

/// The backup is good without it.
void BackupPage::noteGood(const BackupResult &result)
{
    (void)noteGoodBackup(m_deeds.records(), result.file, result.bytes, QDateTime::currentDateTimeUtc());
    (void)m_deeds.add(deed::backedUp, result.file);
}

void BackupPage::readAnew()
{
    if (!m_isLastRead)
        showLast();
}

void BackupPage::showLast()
{
    const auto noted = readGoodBackups(m_deeds.records());
    m_isLastRead = noted.has_value();
    if (!noted)
        return m_last->setText(u"\u26a0 "_s + failureWords(u"The last backup could not be read."_s, noted.error()));
    const QDateTime now = QDateTime::currentDateTimeUtc();
    const BackupState state = backupState(*noted, now);
    m_last->setText((state.isOverdue ? u"\u26a0 "_s : u"\u2713 "_s) + backupStateText(state, now));
}

NightlyTimer BackupPage::nightly() const
{
    return NightlyTimer({QCoreApplication::applicationFilePath(), storePlace(m_store)});
}

void BackupPage::keepNightly()
{
    if (m_job.isRunning())
        return;
    NightlyDialog dialog(nightly(), this);
    dialog.exec();
    for (const QString &change : dialog.changes())
        (void)m_deeds.add(deed::settingChanged, change);
    m_nightlyState->setText(nightlyText(nightly(), QCoreApplication::applicationFilePath()));
}

void BackupPage::chooseRestore()
{
    if (m_job.isRunning())
        return;
    if (const QString lost = loss(); !lost.isEmpty())
        return showOutcome(*m_outcome, u"\u26a0 "_s + lost);
    const auto noted = readGoodBackups(m_deeds.records());
    if (!noted)
        return showOutcome(*m_outcome, u"\u26a0 "_s + failureWords(u"The store could not be read."_s, noted.error()));
    const BackupState state = backupState(*noted, QDateTime::currentDateTimeUtc());
    const bool isThere = state.last && state.sight == BackupSight::There;
    RestoreDialog dialog(m_store, contentsOf(m_deeds.records()), isThere ? state.last->file : QString(), this);
    if (isServer(m_store))
        dialog.setObstacleFinder([this] { return serverObstacle(); });
    if (dialog.exec() == QDialog::Accepted)
        Q_EMIT restoreAsked(dialog.backup());
}

/// This machine's rights, or who has the server's store open beside who is logged in here. The restore itself looks
/// more closely.
QString BackupPage::serverObstacle() const
{
    if (const auto refusal = unlessAllowed(m_deeds.records(), ServerRows::Replace))
        return u"Nothing was restored: %1.\n%2"_s.arg(refusal->problem, refusal->advice);
    const auto users = serverUsers(m_deeds.records(), OwnName::PassedOver);
    if (!users)
        return users.error().problem;
    return users->isEmpty() ? QString() : serverInUse(*users, u"a restore"_s);
}

} // namespace harrowby::app
