// SPDX-License-Identifier: MIT
#include "app/backup/lost_store_box.h"

#include "app/backup/backup.h"
#include "app/backup/backup_names.h"
#include "app/boxes/office_box.h"
#include "app/shop/notice_place.h"
#include "app/shop/store_guard.h"
#include "theme/dialogs.h"

#include <QAccessible>
#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>
#include <chrono>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr int usualWidth = 620;
constexpr int upperGap = 8;
constexpr std::chrono::milliseconds answerInterval(100);

/// The window that is closed last: the outermost parent of the modal box, or the sales window.
QWidget *lastingWindow()
{
    QWidget *window = QApplication::activeModalWidget();
    if (window == nullptr)
        return salesWindow();
    while (window->parentWidget() != nullptr)
        window = window->parentWidget()->window();
    return window;
}

/// Whether a box has come while it lives.
class BoxSpotter final : public QObject
{
public:
    BoxSpotter() { qApp->installEventFilter(this); }
    [[nodiscard]] bool sawBox() const { return m_sawBox; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Show && qobject_cast<QDialog *>(watched) != nullptr)
            m_sawBox = true;
        return false;
    }

private:
    bool m_sawBox = false;
};

} // namespace

LostStoreBox::LostStoreBox(StoreGuard &guard, const QString &place, std::function<bool()> close, QWidget *parent) :
    QDialog(parent), m_guard(guard), m_place(place), m_close(std::move(close))
{
    setObjectName(u"lostStoreBox"_s);
    setWindowTitle(u"Nothing Is Being Saved"_s);
    setWindowModality(Qt::ApplicationModal);
    enlargeFont(*this);
    createControls();
    layOut();
    dressDialog(*this);
    makePrimary(*m_make);
    connect(&m_job, &BackupJob::progressed, this, &LostStoreBox::showProgress);
    connect(&m_job, &BackupJob::finished, this, &LostStoreBox::finish);
    setRunning(false);
    // No default button: Enter may be meant for the till or come from a code reader.
    setFocusPolicy(Qt::StrongFocus);
    for (QPushButton *button : findChildren<QPushButton *>())
        button->setAutoDefault(false);
}

void LostStoreBox::createControls()
{
    m_what = makeOfficeText(this, {});
    m_what->setObjectName(u"lostStoreWhat"_s);
    m_advice = makeOfficeText(this, {});
    m_advice->setObjectName(u"lostStoreAdvice"_s);
    m_file = new QLineEdit(this);
    m_file->setObjectName(u"rescuePlace"_s);
    m_file->setAccessibleName(u"Place of the rescue copy"_s);
    m_choose = new QPushButton(u"C&hoose \u2026"_s, this);
    connect(m_choose, &QPushButton::clicked, this, &LostStoreBox::choosePlace);
    m_make = new QPushButton(u"&Make a Rescue Copy"_s, this);
    m_make->setObjectName(u"makeRescueCopy"_s);
    connect(m_make, &QPushButton::clicked, this, &LostStoreBox::rescue);
    m_progress = new QProgressBar(this);
    m_progress->setAccessibleName(u"Progress of the rescue copy"_s);
    m_progress->setMinimumHeight(32);
    m_outcome = makeOfficeText(this, {});
    m_outcome->setObjectName(u"rescueOutcome"_s);
    m_leave = new QPushButton(u"&Close the %1"_s.arg(m_place == u"till"_s ? u"Till"_s : u"Office"_s), this);
    m_leave->setObjectName(u"closeLostStore"_s);
    connect(m_leave, &QPushButton::clicked, this, &LostStoreBox::reject);
}

void LostStoreBox::layOut()
{
    auto *heading = makeOfficeText(this, u"\u26a0 Nothing is being saved any more."_s);
    QFont large = heading->font();
    large.setBold(true);
    large.setPointSizeF(large.pointSizeF() * 1.3);
    heading->setFont(large);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(m_leave);
    m_rescue = makeRescue();
    auto *rows = new QVBoxLayout(this);
    rows->setContentsMargins(20, 20, 20, 20);
    rows->setSpacing(14);
    rows->addWidget(heading);
    rows->addWidget(m_what);
    rows->addWidget(m_advice);
    rows->addWidget(m_rescue);
    rows->addStretch(1);
    rows->addLayout(buttons);
    setFixedWidth(usualWidth);
}

QWidget *LostStoreBox::makeRescue()
{
    auto *panel = new QWidget(this);
    auto *place = new QHBoxLayout;
    place->setSpacing(12);
    place->addWidget(m_file, 1);
    place->addWidget(m_choose);
    auto *rows = new QVBoxLayout(panel);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(12);
    rows->addLayout(place);
    rows->addWidget(m_make);
    rows->addWidget(m_progress);
    rows->addWidget(m_outcome);
    return panel;
}

void LostStoreBox::tell()
{
    const StoreLoss &loss = m_guard.loss();
    m_what->setText(lossHeadline(loss));
    m_advice->setText(lossAdvice(loss, m_place));
    m_rescue->setVisible(loss.needsRescue());
    if (m_file->text().isEmpty())
        offerPlace();
    if (m_closing)
        return;
    fitText();
    show();
    raise();
    activateWindow();
    setFocus();
    QAccessibleEvent alert(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

/// Fits the height to the text, and places the box at the upper edge of its window: on a small screen the notice is
/// below.
void LostStoreBox::fitText()
{
    m_outcome->setVisible(!m_outcome->text().isEmpty());
    layout()->activate();
    setFixedHeight(layout()->totalHeightForWidth(usualWidth));
    if (isVisible())
        return;
    const QRect area = (parentWidget() != nullptr ? parentWidget()->window() : this)->screen()->availableGeometry();
    const QRect over = parentWidget() != nullptr ? parentWidget()->window()->geometry().intersected(area) : area;
    move(std::max(area.left(), over.center().x() - usualWidth / 2), over.top() + upperGap);
}

void LostStoreBox::choosePlace()
{
    QFileDialog dialog(this, u"Place of the Rescue Copy"_s);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setOption(QFileDialog::DontConfirmOverwrite); // a file that is there is refused
    dialog.selectFile(m_file->text());
    dressDialog(dialog);
    if (dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty())
        m_file->setText(QDir::toNativeSeparators(dialog.selectedFiles().constFirst()));
}

void LostStoreBox::offerPlace()
{
    m_offered = QDir::toNativeSeparators(usualRescuePlace(m_guard.loss().path, QDateTime::currentDateTime()));
    m_file->setText(m_offered);
}

void LostStoreBox::rescue()
{
    // Another till or the office, which lost the same file in the same second, has made its own copy there.
    if (!m_rescued && m_file->text() == m_offered && QFileInfo::exists(m_offered))
        offerPlace();
    m_target = m_file->text().isEmpty() ? QString() : QDir::cleanPath(m_file->text());
    m_outcome->clear();
    setRunning(true);
    fitText();
    m_job.start([&guard = m_guard, path = m_guard.loss().path, target = m_target](const BackupWatch &watch) {
        const StoreGuard::Pass pass(guard);
        return rescueStore(guard.database(), path, target, watch);
    });
}

void LostStoreBox::showProgress(const BackupProgress &progress)
{
    const bool checking = progress.stage == BackupProgress::Stage::Checking;
    m_progress->setRange(0, checking ? 0 : 100);
    m_progress->setValue(progress.percent);
}

void LostStoreBox::finish(const BackupResult &result)
{
    setRunning(false);
    if (result.outcome != BackupResult::Outcome::Done) {
        showOutcome(*m_outcome, u"\u26a0 "_s + result.problem);
    } else {
        m_rescued = true;
        showOutcome(*m_outcome, u"\u2713 The copy is made and checked: \"%1\"."_s.arg(m_target));
    }
    fitText();
}

void LostStoreBox::setRunning(bool running)
{
    for (QWidget *control : {static_cast<QWidget *>(m_file), static_cast<QWidget *>(m_choose),
                             static_cast<QWidget *>(m_make), static_cast<QWidget *>(m_leave)})
        control->setEnabled(!running);
    m_progress->setRange(0, 100);
    m_progress->setValue(0);
    m_progress->setVisible(running);
}

bool LostStoreBox::mayClose()
{
    if (m_job.isRunning())
        return false;
    return m_rescued || !m_guard.loss().needsRescue() ||
           askInOffice(
               this,
               u"No rescue copy has been made. With the %1 the store is gone. Close it all the same?"_s.arg(m_place),
               u"&Close It"_s);
}

void LostStoreBox::reject()
{
    if (m_closing || !mayClose())
        return;
    m_closing = true;
    hide();
    const QPointer<LostStoreBox> alive(this);
    BoxSpotter spotter;
    if (m_close() || !alive)
        return;
    if (spotter.sawBox())
        comeBack();
    else
        comeBackLater();
}

void LostStoreBox::comeBack()
{
    m_closing = false;
    tell();
}

/// The same question was open before this box came, so close() asked nothing: wait until it is answered.
void LostStoreBox::comeBackLater()
{
    if (QApplication::activeModalWidget() == nullptr)
        comeBack();
    else
        QTimer::singleShot(answerInterval, this, &LostStoreBox::comeBackLater);
}

LostStoreAlarm::LostStoreAlarm(StoreGuard &guard, QString place, std::function<bool()> close) :
    m_guard(guard), m_place(std::move(place)), m_close(std::move(close))
{
    connect(&guard, &StoreGuard::lossChanged, this, &LostStoreAlarm::raise);
}

LostStoreAlarm::~LostStoreAlarm()
{
    delete m_box;
}

void LostStoreAlarm::raise()
{
    m_told = true;
    if (!m_box) {
        const auto close = [this] { return m_left = m_close(); };
        m_box = new LostStoreBox(m_guard, m_place, close, lastingWindow());
    }
    m_box->tell();
}

void LostStoreAlarm::checkOnceMore()
{
    disconnect(&m_guard, &StoreGuard::lossChanged, this, &LostStoreAlarm::raise);
    m_guard.tick();
    if (!m_guard.isLost() || m_left || (m_told && !m_guard.loss().needsRescue()))
        return;
    LostStoreBox box(
        m_guard, m_place, [] { return true; }, nullptr);
    box.tell();
    box.exec();
}

bool closeTill()
{
    const QPointer<QWidget> window = salesWindow();
    // While its question is open, a second QWidget::close() returns true at once, and the window stays visible.
    if (window && (!window->close() || (window && window->isVisible())))
        return false;
    QCoreApplication::exit(0);
    return true;
}

bool closeOffice()
{
    while (QWidget *front = QApplication::activeModalWidget()) {
        if (!front->close() || front->isVisible())
            return false;
    }
    return true;
}

} // namespace harrowby::app
