// SPDX-License-Identifier: MIT
#include "app/exchange/export_pane.h"

#include "app/backup/backup_names.h"
#include "app/boxes/office_box.h"
#include "app/exchange/kind_words.h"
#include "app/exchange/save_place.h"
#include "app/export/list_form.h"
#include "app/records/deeds.h"
#include "app/shop/failure_text.h"
#include "theme/dialogs.h"

#include <QCalendarWidget>
#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QDir>
#include <QFileInfo>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr QSize calendarSize(364, 372); // a day of it suits a thumb

} // namespace

ExportPane::ExportPane(Records &records, const ImportDesk &desk, WorkJob &job, bool isAdministrator,
                       std::function<QString()> loss, QWidget *parent) :
    QWidget(parent),
    m_records(records), m_desk(desk), m_job(job), m_loss(std::move(loss))
{
    createParts(isAdministrator);
    layOut();
    connect(m_kind, &QComboBox::currentIndexChanged, this, &ExportPane::followChoices);
    connect(m_allDays, &QCheckBox::toggled, this, &ExportPane::followChoices);
    for (const QDateEdit *day : {m_from, m_to})
        connect(day, &QDateEdit::dateChanged, this, &ExportPane::followChoices);
    connect(m_choose, &QPushButton::clicked, this, &ExportPane::choosePlace);
    connect(m_export, &QPushButton::clicked, this, &ExportPane::carryOut);
    connect(m_back, &QPushButton::clicked, this, [this] {
        if (!m_job.isRunning())
            Q_EMIT left();
    });
}

QDateEdit *ExportPane::makeDay(const QString &name, const QString &spoken)
{
    auto *day = new QDateEdit(this);
    day->setObjectName(name);
    day->setAccessibleName(spoken);
    day->setLocale(QLocale(QLocale::English));
    day->setDisplayFormat(u"dd MMM yyyy"_s);
    day->setDateRange(QDate(2000, 1, 1), QDate(2099, 12, 31));
    day->setCalendarPopup(true);
    day->calendarWidget()->setFirstDayOfWeek(Qt::Monday);
    day->calendarWidget()->setMinimumSize(calendarSize);
    return day;
}

void ExportPane::createParts(bool isAdministrator)
{
    m_kind = new QComboBox(this);
    m_kind->setObjectName(u"exportKind"_s);
    m_kind->addItem(u"Items"_s, static_cast<int>(ExportKind::Items));
    m_kind->addItem(u"Categories"_s, static_cast<int>(ExportKind::Categories));
    m_kind->addItem(u"Codes of items"_s, static_cast<int>(ExportKind::Codes));
    if (isAdministrator)
        m_kind->addItem(u"Purchases"_s, static_cast<int>(ExportKind::Purchases));
    m_separator = new QComboBox(this);
    m_separator->setObjectName(u"exportSeparator"_s);
    for (const QChar separator : csvSeparators())
        m_separator->addItem(separatorWords(separator), separator);
    m_decimalSign = new QComboBox(this);
    m_decimalSign->setObjectName(u"exportDecimalSign"_s);
    for (const QChar sign : {u'.', u','})
        m_decimalSign->addItem(decimalSignWords(sign), sign);
    m_allDays = new QCheckBox(u"&All"_s, this);
    m_allDays->setObjectName(u"exportAllDays"_s);
    m_allDays->setAccessibleName(u"Purchases of all days"_s);
    m_from = makeDay(u"exportFrom"_s, u"First day"_s);
    m_to = makeDay(u"exportTo"_s, u"Last day"_s);
    m_place = new QLineEdit(this);
    m_place->setObjectName(u"exportPlace"_s);
    m_choose = new QPushButton(u"&Choose \u2026"_s, this);
    m_choose->setObjectName(u"chooseExportPlace"_s);
    m_back = new QPushButton(u"&Back"_s, this);
    m_back->setObjectName(u"exportBack"_s);
    m_export = new QPushButton(u"E&xport"_s, this);
    m_export->setObjectName(u"exportNow"_s);
    m_export->setMinimumWidth(180);
    makePrimary(*m_export);
    m_outcome = makeOfficeText(this, {});
    m_outcome->setObjectName(u"exportOutcome"_s);
}

QWidget *ExportPane::makeDays()
{
    m_days = new QWidget(this);
    auto *days = new QHBoxLayout(m_days);
    days->setContentsMargins({});
    days->setSpacing(12);
    days->addWidget(m_allDays);
    days->addWidget(new QLabel(u"from"_s, m_days));
    days->addWidget(m_from, 1);
    days->addWidget(new QLabel(u"to"_s, m_days));
    days->addWidget(m_to, 1);
    return m_days;
}

QGridLayout *ExportPane::makeForm()
{
    auto *form = new QGridLayout;
    form->setHorizontalSpacing(12);
    form->setVerticalSpacing(8);
    form->setColumnStretch(1, 1);
    const auto addRow = [&](const QString &text, QWidget *field, QWidget *buddy) {
        const int row = form->rowCount();
        auto *caption = new QLabel(text, this);
        caption->setBuddy(buddy);
        form->addWidget(caption, row, 0);
        form->addWidget(field, row, 1);
        return caption;
    };
    addRow(u"&What"_s, m_kind, m_kind);
    m_daysCaption = addRow(u"&Days"_s, makeDays(), m_from);
    addRow(u"Se&parator"_s, m_separator, m_separator);
    addRow(u"Deci&mal sign"_s, m_decimalSign, m_decimalSign);
    addRow(u"&File"_s, m_place, m_place);
    form->addWidget(m_choose, form->rowCount() - 1, 2);
    return form;
}

void ExportPane::layOut()
{
    auto *heading = makeOfficeText(this, u"Export"_s);
    heading->setProperty("styleWord", u"totals"_s);
    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(12);
    buttons->addStretch(1);
    buttons->addWidget(m_back);
    buttons->addWidget(m_export);
    auto *rows = new QVBoxLayout(this);
    rows->setContentsMargins({});
    rows->setSpacing(10);
    rows->addWidget(heading);
    rows->addWidget(makeOfficeText(
        this,
        u"The list is a CSV file, which every spreadsheet opens. Change it there, save it as CSV, and import it: what "
        "you left as it is stays as it is."_s));
    rows->addLayout(makeForm());
    rows->addStretch(1);
    rows->addWidget(m_outcome);
    rows->addLayout(buttons);
}

void ExportPane::begin()
{
    const QDate today = m_desk.now().date();
    m_from->setDate(QDate(today.year(), today.month(), 1));
    m_to->setDate(today);
    m_place->clear();
    m_outcome->clear();
    readForm();
    followChoices();
    m_kind->setFocus();
}

void ExportPane::readForm()
{
    m_form = savedListForm(m_records);
    m_separator->setCurrentIndex(m_separator->findData(m_form.separator));
    m_decimalSign->setCurrentIndex(m_decimalSign->findData(m_form.decimalSign));
}

void ExportPane::followChoices()
{
    const bool isOfDays = request().kind == ExportKind::Purchases;
    m_days->setVisible(isOfDays);
    m_daysCaption->setVisible(isOfDays);
    m_from->setDisabled(m_allDays->isChecked());
    m_to->setDisabled(m_allDays->isChecked());
    // A place that a person chose stays.
    if (!m_place->text().isEmpty() && m_place->text() != m_offered)
        return;
    const QString name = proposedExportName(request(), m_desk.now().date());
    m_offered = QDir::toNativeSeparators(QDir(usualBackupFolder()).filePath(name));
    m_place->setText(m_offered);
}

ExportRequest ExportPane::request() const
{
    ExportRequest request;
    request.kind = static_cast<ExportKind>(m_kind->currentData().toInt());
    request.form = m_form;
    request.form.separator = m_separator->currentData().toChar();
    request.form.decimalSign = m_decimalSign->currentData().toChar();
    if (request.kind == ExportKind::Purchases && !m_allDays->isChecked()) {
        request.from = std::min(m_from->date(), m_to->date());
        request.to = std::max(m_from->date(), m_to->date());
    }
    return request;
}

void ExportPane::choosePlace()
{
    const QString path = chooseSavePlace(this, u"Place of the List"_s, m_place->text());
    if (!path.isEmpty())
        m_place->setText(QDir::toNativeSeparators(path));
}

void ExportPane::tell(const QString &words)
{
    showOutcome(*m_outcome, u"\u26a0 "_s + words);
}

void ExportPane::carryOut()
{
    if (m_job.isRunning())
        return;
    if (const QString lost = m_loss ? m_loss() : QString(); !lost.isEmpty())
        return tell(lost);
    const QString path = m_place->text().trimmed().isEmpty() ? QString() : QDir::cleanPath(m_place->text().trimmed());
    if (const auto place = checkExportPlace(m_desk.store, path); !place)
        return tell(place.error());
    if (QFileInfo(path).isFile() &&
        !askInOffice(this, u"There is a file \"%1\" already. Replace it with the new list?"_s.arg(path), u"&Replace"_s))
        return;
    m_outcome->clear();
    keepListForm(m_records, request().form);
    m_job.start<ExportEnd>([store = m_desk.store, path, wanted = request()](
                               const WorkWatch &watch) { return exportList(store, path, wanted, watch); },
                           [this, path, wanted = request()](const Result<ExportEnd, QString> &end) {
                               if (end)
                                   finish(path, wanted, *end);
                               else
                                   tell(end.error());
                           });
}

void ExportPane::finish(const QString &path, const ExportRequest &request, const ExportEnd &end)
{
    if (end.outcome == ExportEnd::Outcome::Stopped)
        return showOutcome(*m_outcome, u"Stopped. Nothing was left behind."_s);
    if (end.outcome == ExportEnd::Outcome::Failed)
        return tell(end.problem);
    (void)Deeds(m_records, m_desk.place)
        .add({QString(deed::exported), m_desk.who, exportDeedWords(request, end, path)}); // told when it fails
    const QString rows = end.rows == 1 ? u"1 row"_s : u"%1 rows"_s.arg(groupedCount(end.rows));
    showOutcome(*m_outcome, u"\u2713 %1 saved: %2"_s.arg(rows, wrappingPath(path)));
}

} // namespace harrowby::app
