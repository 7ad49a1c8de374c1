// SPDX-License-Identifier: MIT
#include "app/backup/restore_dialog.h"

#include "app/backup/backup_place.h"
#include "app/backup/store_locked.h"
#include "app/backup/store_users.h"
#include "app/boxes/office_box.h"
#include "app/work/work_strip.h"
#include "theme/dialogs.h"

#include <QDir>
#include <QFileDialog>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QVBoxLayout>

#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr QSize restoreSize(720, 540);
constexpr qsizetype mostUsers = 12;

QString timeText(const QDateTime &time, const QString &none)
{
    return time.isValid() ? QLocale::c().toString(time, u"d MMMM yyyy, HH:mm"_s) : none;
}

QString usersText(const StoreContents &contents)
{
    const QStringList some = contents.users.mid(0, mostUsers);
    const qsizetype more = contents.users.size() - some.size();
    return some.join(u", "_s) + (more > 0 ? u" and %1 more"_s.arg(more) : QString());
}

/// In the order of the rows.
QStringList figuresOf(const StoreContents &contents)
{
    const QLocale locale = QLocale::c();
    return {timeText(contents.written, u"\u2013"_s), locale.toString(contents.items),
            locale.toString(contents.purchases), timeText(contents.lastPurchase, u"none"_s), usersText(contents)};
}

} // namespace

RestoreDialog::RestoreDialog(QString store, const StoreContents &now, const QString &file, QWidget *parent) :
    QDialog(parent), m_store(std::move(store)), m_findObstacle([this] {
        const StoreUsers users = findStoreUsers(m_store);
        return users.isEmpty() ? QString() : storeInUse(users);
    }),
    m_now(now)
{
    setWindowTitle(u"Restore a Backup"_s);
    setObjectName(u"restoreDialog"_s);
    enlargeFont(*this);
    createControls();
    layOut();
    dressDialog(*this);
    resize(restoreSize.boundedTo(roomFor(*this)));
    fill(0, nullptr);
    fill(1, &m_now);
    m_file->setText(QDir::toNativeSeparators(file));
    if (!file.isEmpty())
        QMetaObject::invokeMethod(this, &RestoreDialog::look, Qt::QueuedConnection);
}

void RestoreDialog::createControls()
{
    m_file = new QLineEdit(this);
    m_file->setObjectName(u"restoreFile"_s);
    m_file->setAccessibleName(u"Backup"_s);
    m_choose = new QPushButton(u"&Choose \u2026"_s, this);
    m_choose->setObjectName(u"chooseRestore"_s);
    connect(m_choose, &QPushButton::clicked, this, &RestoreDialog::choose);
    m_look = new QPushButton(u"&Look Into It"_s, this);
    m_look->setObjectName(u"lookRestore"_s);
    connect(m_look, &QPushButton::clicked, this, &RestoreDialog::look);
    connect(m_file, &QLineEdit::returnPressed, this, &RestoreDialog::look);
    connect(m_file, &QLineEdit::textEdited, this, [this] {
        m_backup.clear();
        m_restore->setEnabled(false);
        fill(0, nullptr);
        m_outcome->clear();
    });
    m_restore = new QPushButton(u"&Restore It"_s, this);
    m_restore->setObjectName(u"startRestore"_s);
    m_restore->setEnabled(false);
    makePrimary(*m_restore);
    connect(m_restore, &QPushButton::clicked, this, &RestoreDialog::accept);
    m_outcome = makeOfficeText(this, {});
    m_outcome->setObjectName(u"restoreOutcome"_s);
}

void RestoreDialog::layOut()
{
    auto *file = new QHBoxLayout;
    file->setSpacing(12);
    auto *caption = new QLabel(u"&Backup:"_s, this);
    caption->setBuddy(m_file);
    file->addWidget(caption);
    file->addWidget(m_file, 1);
    file->addWidget(m_choose);
    file->addWidget(m_look);
    auto *cancel = new QPushButton(u"Cancel"_s, this);
    cancel->setObjectName(u"cancelRestore"_s);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(12);
    buttons->addStretch(1);
    buttons->addWidget(m_restore);
    buttons->addWidget(cancel);

    auto *rows = new QVBoxLayout(this);
    rows->setContentsMargins(16, 16, 16, 12);
    rows->setSpacing(12);
    rows->addWidget(makeOfficeText(this,
                                   u"The store will hold what the backup holds. What it holds now is kept as a backup, "
                                   "too. All tills must be closed; the office closes for it and opens again."_s));
    rows->addLayout(file);
    rows->addLayout(makeTable());
    rows->addWidget(m_outcome);
    rows->addWidget(new WorkStrip(m_job, this));
    rows->addStretch(1);
    rows->addLayout(buttons);
    for (QPushButton *button : findChildren<QPushButton *>())
        button->setAutoDefault(false);
}

QGridLayout *RestoreDialog::makeTable()
{
    auto *table = new QGridLayout;
    table->setHorizontalSpacing(24);
    table->setVerticalSpacing(6);
    const QStringList captions = {u"Written"_s, u"Items"_s, u"Purchases"_s, u"Last purchase"_s, u"Users"_s};
    const QStringList columns = {u"In the backup"_s, u"In the store now"_s};
    for (int row = 0; row < captions.size(); ++row)
        table->addWidget(new QLabel(captions.at(row), this), row + 1, 0, Qt::AlignTop);
    for (int column = 0; column < columns.size(); ++column) {
        auto *head = new QLabel(columns.at(column), this);
        QFont bold = head->font();
        bold.setBold(true);
        head->setFont(bold);
        table->addWidget(head, 0, column + 1);
        m_cells.append(QList<QLabel *>());
        for (int row = 0; row < captions.size(); ++row) {
            auto *cell = makeOfficeText(this, {});
            cell->setObjectName(u"restoreCell%1%2"_s.arg(column).arg(row));
            cell->setAccessibleName(columns.at(column) + u", "_s + captions.at(row));
            table->addWidget(cell, row + 1, column + 1, Qt::AlignTop);
            m_cells.last() << cell;
        }
        table->setColumnStretch(column + 1, 1);
    }
    return table;
}

void RestoreDialog::fill(int column, const StoreContents *contents)
{
    const QStringList figures = contents != nullptr ? figuresOf(*contents) : QStringList(m_cells.at(column).size());
    for (int row = 0; row < m_cells.at(column).size(); ++row)
        m_cells.at(column).at(row)->setText(figures.at(row));
}

void RestoreDialog::choose()
{
    if (m_job.isRunning())
        return;
    QFileDialog dialog(this, u"Backup"_s);
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.selectFile(m_file->text());
    dressDialog(dialog);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return;
    m_file->setText(QDir::toNativeSeparators(dialog.selectedFiles().constFirst()));
    look();
}

void RestoreDialog::look()
{
    if (m_job.isRunning())
        return;
    m_backup.clear();
    m_restore->setEnabled(false);
    fill(0, nullptr);
    const QString file = m_file->text().isEmpty() ? QString() : QDir::cleanPath(m_file->text());
    if (file.isEmpty())
        return showOutcome(*m_outcome, u"Please choose a backup."_s);
    if (const auto words = noBackupWords(m_store, file))
        return showOutcome(*m_outcome, u"\u26a0 "_s + *words);
    m_outcome->clear();
    using Found = Result<StoreContents, QString>;
    m_job.start<Found>(
        [file](const WorkWatch &watch) {
            (void)watch({u"The backup is being looked into \u2026"_s, WorkStep::unknown});
            return lookIntoBackup(file);
        },
        [this, file](const Result<Found, QString> &ended) {
            if (m_job.isCancelled() || m_file->text().isEmpty() || QDir::cleanPath(m_file->text()) != file)
                return showOutcome(*m_outcome, u"Cancelled."_s);
            const Found found = ended ? *ended : Found(Unexpected(ended.error()));
            m_backup = found ? file : QString();
            show(found);
        });
}

void RestoreDialog::show(const Result<StoreContents, QString> &found)
{
    m_restore->setEnabled(found.has_value());
    if (!found)
        return showOutcome(*m_outcome, u"\u26a0 "_s + found.error());
    m_inside = *found;
    fill(0, &m_inside);
    const QString last = timeText(m_inside.lastPurchase, u"none"_s);
    showOutcome(*m_outcome,
                u"\u2713 This backup can be restored: %1 items, %2 purchases, the last one: %3."_s.arg(
                    QLocale::c().toString(m_inside.items), QLocale::c().toString(m_inside.purchases), last));
}

QString RestoreDialog::question() const
{
    QString text =
        u"Put this backup in the store's place?\n\nUsers, passwords, items and purchases will be those of the "
        "backup."_s;
    if (m_now.lastPurchase.isValid() &&
        (!m_inside.lastPurchase.isValid() || m_now.lastPurchase > m_inside.lastPurchase))
        text += u" Purchases after %1 will not be in the store any more; they stay in the copy that is kept."_s.arg(
            timeText(m_inside.lastPurchase, u"its making"_s));
    return text;
}

void RestoreDialog::accept()
{
    if (m_job.isRunning() || m_backup.isEmpty())
        return;
    if (const QString obstacle = m_findObstacle(); !obstacle.isEmpty())
        return showOutcome(*m_outcome, u"\u26a0 "_s + obstacle);
    if (askInOffice(this, question(), u"&Restore It"_s))
        QDialog::accept();
}

} // namespace harrowby::app
