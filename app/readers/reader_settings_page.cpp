// SPDX-License-Identifier: MIT
#include "app/readers/reader_settings_page.h"

#include "app/boxes/office_box.h"
#include "app/readers/device_reader.h"
#include "theme/dialogs.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

#include <set>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr int longestPrefix = 8;

template <typename Widget>
Widget *named(Widget *widget, const QString &objectName, const QString &accessibleName)
{
    widget->setObjectName(objectName);
    widget->setAccessibleName(accessibleName);
    return widget;
}

QString shown(const ReaderDevice &device)
{
    return device.kind == ReaderDevice::Kind::Keyboard ? device.path
                                                       : u"%1, %2 baud"_s.arg(device.path).arg(device.baud);
}

/// Also the one that is saved, which a person may have written into the file.
std::set<int> gapsToChoose(int saved)
{
    using Bounds = CodeReaderSettings;
    return {Bounds::LeastGapMs, 30, 40, Bounds::UsualGapMs, 75, 100, 150, 200, 250, Bounds::GreatestGapMs, saved};
}

QString settingsWords(const ReaderSettings &settings)
{
    QStringList words;
    if (settings.typing)
        words << u"readers that type, %1 ms%2"_s.arg(settings.gapMs)
                     .arg(settings.prefix.isEmpty() ? QString() : u", prefix %1"_s.arg(settings.prefix));
    for (const ReaderDevice &device : settings.devices)
        words << shown(device);
    return u"The code readers of this computer: %1."_s.arg(words.isEmpty() ? u"none"_s : words.join(u"; "_s));
}

} // namespace

ReaderSettingsPage::ReaderSettingsPage(OfficeSettings settings, const QStringList &found, QWidget *parent) :
    OfficePage(parent), m_settings(std::move(settings)), m_saved(readReaderSettings(m_settings)),
    m_devices(m_saved.devices)
{
    createEntries();
    createDeviceEntries(found);
    auto *rows = new QVBoxLayout(this);
    rows->setContentsMargins(16, 16, 16, 16);
    rows->setSpacing(12);
    rows->addLayout(makeTypingForm());
    rows->addLayout(makeDeviceForm(), 1);
    QPushButton *save = makeButton(u"saveReaders"_s, u"Sa&ve"_s, &ReaderSettingsPage::save);
    makePrimary(*save);
    auto *end = new QHBoxLayout;
    end->addWidget(m_outcome, 1);
    end->addWidget(save);
    rows->addLayout(end);
    showDevices();
    showWhatCounts();
}

void ReaderSettingsPage::createEntries()
{
    m_typing = named(new QCheckBox(u"Recognise readers that &type like a keyboard"_s, this), u"readersType"_s, {});
    m_typing->setChecked(m_saved.typing);
    m_gap = named(new QComboBox(this), u"readerGap"_s, u"Longest time between two keys"_s);
    for (const int ms : gapsToChoose(m_saved.gapMs))
        m_gap->addItem(u"%1 ms"_s.arg(ms), ms);
    m_gap->setCurrentIndex(m_gap->findData(m_saved.gapMs));
    m_prefix = named(new QLineEdit(m_saved.prefix, this), u"readerPrefix"_s, u"Prefix"_s);
    m_prefix->setMaxLength(longestPrefix);
    m_prefix->setPlaceholderText(u"none"_s);
    m_outcome = makeOfficeText(this, {});
    m_outcome->setObjectName(u"readersOutcome"_s);
    m_outcome->setMinimumHeight(m_outcome->fontMetrics().height() * 2);
    connect(m_typing, &QCheckBox::toggled, this, &ReaderSettingsPage::showWhatCounts);
}

void ReaderSettingsPage::createDeviceEntries(const QStringList &found)
{
    m_list = named(new QListWidget(this), u"readerDevices"_s, u"Readers held for the till alone"_s);
    m_path = named(new QComboBox(this), u"readerPath"_s, u"Device"_s);
    m_path->setEditable(true);
    m_path->setInsertPolicy(QComboBox::NoInsert);
    m_path->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_path->lineEdit()->setPlaceholderText(u"Device, such as /dev/ttyACM0"_s);
    m_path->addItems(found);
    m_speed = named(new QComboBox(this), u"readerSpeed"_s, u"Speed of a serial reader"_s);
    for (const int speed : readerSpeeds())
        m_speed->addItem(u"%1 baud"_s.arg(speed), speed);
    m_speed->setCurrentIndex(m_speed->findData(ReaderDevice::usualBaud));
    m_add = makeButton(u"addReader"_s, u"&Add"_s, &ReaderSettingsPage::addDevice);
    m_remove = makeButton(u"removeReader"_s, u"Re&move"_s, &ReaderSettingsPage::removeDevice);
    connect(m_path, &QComboBox::editTextChanged, this, &ReaderSettingsPage::showWhatCounts);
    connect(m_list, &QListWidget::currentRowChanged, this, &ReaderSettingsPage::showWhatCounts);
}

QPushButton *ReaderSettingsPage::makeButton(const QString &objectName, const QString &caption,
                                            void (ReaderSettingsPage::*pressed)())
{
    auto *button = new QPushButton(caption, this);
    button->setObjectName(objectName);
    connect(button, &QPushButton::clicked, this, pressed);
    return button;
}

QLayout *ReaderSettingsPage::makeTypingForm()
{
    auto *form = new QFormLayout;
    form->setVerticalSpacing(12);
    form->addRow(m_typing);
    form->addRow(u"Longest time between t&wo keys:"_s, m_gap);
    form->addRow(u"&Prefix that they type before each code:"_s, m_prefix);
    centreCaptions(*form);
    return form;
}

QLayout *ReaderSettingsPage::makeDeviceForm()
{
    auto *rows = new QVBoxLayout;
    rows->setSpacing(12);
    rows->addWidget(makeOfficeText(
        this,
        u"A reader that is named here is held for the till alone, and needs no guess. A serial one sends 8 bits and "
        "no parity; one that types is set to a US keyboard. Each ends a code with Enter or Tab."_s));
    auto *chosen = new QHBoxLayout;
    chosen->addWidget(m_list, 1);
    chosen->addWidget(m_remove, 0, Qt::AlignTop);
    rows->addLayout(chosen, 1);
    auto *next = new QHBoxLayout;
    next->addWidget(m_path, 1);
    next->addWidget(m_speed);
    next->addWidget(m_add);
    rows->addLayout(next);
    return rows;
}

std::optional<LeavingQuestion> ReaderSettingsPage::leaving() const
{
    if (entered() == m_saved)
        return {};
    return LeavingQuestion{u"What you have changed about the code readers is not saved. Discard it?"_s,
                           u"&Discard It"_s};
}

ReaderSettings ReaderSettingsPage::entered() const
{
    return {m_typing->isChecked(), m_gap->currentData().toInt(), m_prefix->text(), m_devices};
}

void ReaderSettingsPage::addDevice()
{
    const QString path = m_path->currentText().trimmed();
    if (!path.startsWith(u'/'))
        return showOutcome(*m_outcome, u"\u26a0 A device is a path, such as /dev/ttyACM0."_s);
    for (const ReaderDevice &device : m_devices) {
        if (device.path == path)
            return showOutcome(*m_outcome, u"\u26a0 This device is in the list already."_s);
    }
    m_devices.append({kindOfPath(path), path, m_speed->currentData().toInt()});
    showDevices();
    showOutcome(*m_outcome, {});
}

void ReaderSettingsPage::removeDevice()
{
    if (m_list->currentRow() < 0)
        return;
    m_devices.removeAt(m_list->currentRow());
    showDevices();
}

void ReaderSettingsPage::showDevices()
{
    m_list->clear();
    for (const ReaderDevice &device : m_devices) {
        m_list->addItem(shown(device));
        m_list->item(m_list->count() - 1)->setToolTip(shown(device).toHtmlEscaped());
    }
    showWhatCounts();
}

void ReaderSettingsPage::showWhatCounts()
{
    m_gap->setEnabled(m_typing->isChecked());
    m_prefix->setEnabled(m_typing->isChecked());
    m_speed->setEnabled(kindOfPath(m_path->currentText()) == ReaderDevice::Kind::Serial);
    m_add->setEnabled(m_devices.size() < ReaderSettings::mostDevices && !m_path->currentText().isEmpty());
    m_remove->setEnabled(m_list->currentRow() >= 0);
}

void ReaderSettingsPage::save()
{
    const ReaderSettings now = readReaderSettings(m_settings);
    if (now != m_saved) {
        showSaved(now);
        return showOutcome(*m_outcome, u"\u26a0 Somebody else has changed this meanwhile. What is saved now is shown; "
                                       "nothing of yours was saved."_s);
    }
    const bool isSaved = saveReaderSettings(m_settings, m_saved, entered());
    m_saved = readReaderSettings(m_settings);
    if (isSaved && m_saved != now)
        Q_EMIT saved(settingsWords(m_saved));
    if (isSaved)
        return showOutcome(*m_outcome, u"Saved. It counts when the till is started the next time."_s);
    tellInOffice(this,
                 u"The settings could not be saved. Check the disk and the folder of the settings file, then save "
                 "again."_s);
}

void ReaderSettingsPage::showSaved(const ReaderSettings &settings)
{
    m_saved = settings;
    m_typing->setChecked(settings.typing);
    if (m_gap->findData(settings.gapMs) < 0)
        m_gap->addItem(u"%1 ms"_s.arg(settings.gapMs), settings.gapMs);
    m_gap->setCurrentIndex(m_gap->findData(settings.gapMs));
    m_prefix->setText(settings.prefix);
    m_devices = settings.devices;
    showDevices();
}

} // namespace harrowby::app
