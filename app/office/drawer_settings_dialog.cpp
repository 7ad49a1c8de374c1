// SPDX-License-Identifier: MIT
#include "app/office/drawer_settings_dialog.h"

#include "app/boxes/office_box.h"
#include "app/cash/drawer.h"
#include "basic/helper_process.h"
#include "theme/dialogs.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <chrono>
#include <set>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace harrowby::app {

namespace {

QComboBox *makeList(QWidget *parent, const QString &objectName, const QString &accessibleName)
{
    auto *list = new QComboBox(parent);
    list->setObjectName(objectName);
    list->setAccessibleName(accessibleName);
    return list;
}

/// Also the one that is saved, which a person may have written into the file.
void fillTimes(QComboBox &list, std::set<int> times, int saved)
{
    times.insert(saved);
    for (const int ms : times)
        list.addItem(u"%1 ms"_s.arg(ms), ms);
    list.setCurrentIndex(list.findData(saved));
}

} // namespace

DrawerSettingsDialog::DrawerSettingsDialog(OfficeSettings settings, QWidget *parent) :
    QDialog(parent), m_settings(std::move(settings)), m_saved(readDrawerSettings(m_settings))
{
    setWindowTitle(u"Cash Drawer"_s);
    enlargeFont(*this);
    createEntries();
    auto *form = new QFormLayout;
    form->setVerticalSpacing(12);
    form->addRow(m_on);
    form->addRow(u"&Printer that it hangs on:"_s, m_queue);
    auto *times = new QLabel(u"P&in of its plug, pulse, rest:"_s, this);
    times->setBuddy(m_pin);
    form->addRow(times, makeTimes());
    centreCaptions(*form);
    auto *rows = new QVBoxLayout(this);
    rows->setContentsMargins(16, 16, 16, 12);
    rows->setSpacing(12);
    rows->addWidget(makeOfficeText(this,
                                   u"At this computer. The printer must pass on what it gets as it is, as receipt "
                                   "printers do."_s));
    rows->addLayout(form);
    rows->addWidget(m_outcome);
    rows->addLayout(makeButtons());
    dressDialog(*this);
    showWhatCounts();
}

QLayout *DrawerSettingsDialog::makeButtons()
{
    auto *save = new QPushButton(u"Sa&ve"_s, this);
    save->setObjectName(u"saveDrawer"_s);
    save->setDefault(true);
    makePrimary(*save);
    connect(save, &QPushButton::clicked, this, &QDialog::accept);
    auto *cancel = new QPushButton(u"Cancel"_s, this);
    cancel->setObjectName(u"cancelDrawer"_s);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    auto *row = new QHBoxLayout;
    row->setSpacing(12);
    row->addWidget(m_try);
    row->addStretch(1);
    row->addWidget(save);
    row->addWidget(cancel);
    for (QPushButton *button : {m_try, cancel})
        button->setAutoDefault(false);
    return row;
}

DrawerSettingsDialog::~DrawerSettingsDialog() = default;

void DrawerSettingsDialog::createEntries()
{
    m_on = new QCheckBox(u"Open it &after a sale in cash"_s, this);
    m_on->setObjectName(u"drawerOn"_s);
    m_on->setChecked(m_saved.isOn);
    m_queue = makeList(this, u"drawerQueue"_s, u"Printer that the drawer hangs on"_s);
    m_queue->setEditable(true);
    m_queue->setInsertPolicy(QComboBox::NoInsert);
    m_queue->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_queue->lineEdit()->setPlaceholderText(u"Name of a printer"_s);
    m_queue->setEditText(m_saved.queue);
    m_pin = makeList(this, u"drawerPin"_s, u"Pin of the drawer's plug"_s);
    for (const int pin : {2, 5})
        m_pin->addItem(u"Pin %1"_s.arg(pin), pin);
    m_pin->setCurrentIndex(m_pin->findData(m_saved.pin));
    m_pulse = makeList(this, u"drawerPulse"_s, u"How long the drawer gets its pulse"_s);
    fillTimes(*m_pulse, {20, DrawerSettings::usualPulseMs, 100, 150, 200, 300, DrawerSettings::longestMs},
              m_saved.pulseMs);
    m_pause = makeList(this, u"drawerPause"_s, u"How long it rests then"_s);
    fillTimes(*m_pause, {50, 100, 200, 300, DrawerSettings::usualPauseMs}, m_saved.pauseMs);
    m_try = new QPushButton(u"&Try It"_s, this);
    m_try->setObjectName(u"tryDrawer"_s);
    m_outcome = makeOfficeText(this, {});
    m_outcome->setObjectName(u"drawerOutcome"_s);
    m_outcome->setMinimumHeight(m_outcome->fontMetrics().height() * 2);
    connect(m_on, &QCheckBox::toggled, this, &DrawerSettingsDialog::showWhatCounts);
    connect(m_queue, &QComboBox::editTextChanged, this, &DrawerSettingsDialog::showWhatCounts);
    connect(m_try, &QPushButton::clicked, this, &DrawerSettingsDialog::tryIt);
}

QLayout *DrawerSettingsDialog::makeTimes()
{
    auto *times = new QHBoxLayout;
    for (QComboBox *list : {m_pin, m_pulse, m_pause})
        times->addWidget(list);
    times->addStretch(1);
    return times;
}

DrawerSettings DrawerSettingsDialog::entered() const
{
    return {m_on->isChecked(), m_queue->currentText().trimmed(), m_pin->currentData().toInt(),
            m_pulse->currentData().toInt(), m_pause->currentData().toInt()};
}

void DrawerSettingsDialog::accept()
{
    const DrawerSettings drawer = entered();
    if (drawer.isOn && drawer.queue.isEmpty())
        return showOutcome(*m_outcome, u"\u26a0 Choose the printer that the drawer hangs on."_s);
    if (readDrawerSettings(m_settings) != m_saved)
        return showOutcome(*m_outcome,
                           u"\u26a0 Somebody else has changed this meanwhile. Nothing was saved: close this "
                           "and open it again."_s);
    const bool saved = saveDrawerSettings(m_settings, m_saved, drawer);
    m_saved = readDrawerSettings(m_settings);
    if (saved)
        return QDialog::accept();
    tellInOffice(this, u"The choices could not be saved. Check the disk and the folder of the settings file, then save "
                       "again."_s);
}

void DrawerSettingsDialog::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    if (m_query != nullptr)
        return;
    constexpr auto deadline = 10s;
    m_query = new HelperProcess(this);
    m_query->start(u"lpstat"_s, {u"-e"_s}, deadline, [this](const HelperProcess::Outcome &outcome) {
        if (outcome.succeeded)
            addQueues(QString::fromUtf8(outcome.output).split(u'\n', Qt::SkipEmptyParts));
    });
}

/// What is typed stays.
void DrawerSettingsDialog::addQueues(const QStringList &queues)
{
    const QString typed = m_queue->currentText();
    m_queue->addItems(queues);
    m_queue->setEditText(typed);
}

void DrawerSettingsDialog::showWhatCounts()
{
    for (QWidget *entry : {static_cast<QWidget *>(m_queue), static_cast<QWidget *>(m_pin),
                           static_cast<QWidget *>(m_pulse), static_cast<QWidget *>(m_pause)})
        entry->setEnabled(m_on->isChecked());
    m_try->setEnabled(m_on->isChecked() && !m_queue->currentText().trimmed().isEmpty() && m_drawer == nullptr);
}

/// With what is entered, saved or not.
void DrawerSettingsDialog::tryIt()
{
    m_drawer = new Drawer(
        entered(), [this](const QString &reason) { tell(reason); }, {}, this);
    showWhatCounts();
    showOutcome(*m_outcome, u"Asking the printer \u2026"_s);
    m_drawer->open();
}

void DrawerSettingsDialog::tell(const QString &reason)
{
    std::exchange(m_drawer, nullptr)->deleteLater();
    showWhatCounts();
    showOutcome(*m_outcome, reason.isEmpty()
                                ? u"The printer has taken it. If the drawer stays shut, try the other pin or "
                                  "a longer pulse."_s
                                : u"\u26a0 Not opened: "_s + reason);
}

} // namespace harrowby::app
