// SPDX-License-Identifier: MIT
#include "tables/output_bar.h"

#include "tables/csv.h"
#include "tables/files.h"
#include "theme/dialogs.h"

#include <QDir>
#include <QFileDialog>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QMessageBox>
#include <QPointer>
#include <QPrintDialog>
#include <QPrinter>
#include <QPushButton>
#include <QStandardPaths>

#include <limits>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::tables {

namespace {

class WaitCursor
{
public:
    WaitCursor() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
    ~WaitCursor() { QGuiApplication::restoreOverrideCursor(); }
    Q_DISABLE_COPY_MOVE(WaitCursor)
};

void tellFailure(QWidget *parent, const QString &text)
{
    const QPointer<QMessageBox> box(
        new QMessageBox(QMessageBox::Warning, parent->window()->windowTitle(), text, QMessageBox::Ok, parent));
    box->setTextFormat(Qt::PlainText);
    box->exec();
    delete box;
}

bool printPages(QPrinter &printer, const Table &table, const Figure &figure)
{
    const bool some = printer.printRange() == QPrinter::PageRange && printer.fromPage() > 0;
    const int first = some ? printer.fromPage() - 1 : 0;
    const int last = some ? printer.toPage() - 1 : std::numeric_limits<int>::max();
    const WaitCursor waiting;
    return drawPages(printer, table, figure, first, last) && printer.printerState() != QPrinter::Error;
}

} // namespace

QString askForFile(QWidget *parent, const QString &suggestion, const QString &suffix)
{
    const QString filter = u"%1 files (*.%2)"_s.arg(suffix.toUpper(), suffix);
    const QPointer<QFileDialog> dialog(new QFileDialog(parent, u"Save as %1"_s.arg(suffix.toUpper())));
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setNameFilter(filter);
    dialog->setDefaultSuffix(suffix);
    dialog->setDirectory(QFileInfo(suggestion).path());
    dialog->selectFile(QFileInfo(suggestion).fileName());
    dressDialog(*dialog);
    const bool chosen = dialog->exec() == QDialog::Accepted;
    const QString path = chosen && dialog ? dialog->selectedFiles().value(0) : QString();
    delete dialog;
    return path;
}

QString documentsFolder()
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    return QFileInfo(folder).isDir() ? folder : QDir::homePath();
}

OutputBar::OutputBar(OutputSource source, QWidget *parent) :
    QWidget(parent), m_source(std::move(source)), m_chooseFile(askForFile)
{
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(8);
    QPushButton *print = addButton(u"P&rint ..."_s, u"print"_s, &OutputBar::print);
    makePrimary(*print);
    row->addWidget(print);
    row->addWidget(addButton(u"Save as P&DF ..."_s, u"savePdf"_s, &OutputBar::savePdf));
    row->addWidget(addButton(u"Save as CS&V ..."_s, u"saveCsv"_s, &OutputBar::saveCsv));
}

QPushButton *OutputBar::addButton(const QString &caption, const QString &name, void (OutputBar::*act)())
{
    auto *button = new QPushButton(caption, this);
    button->setObjectName(name);
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, act);
    return button;
}

void OutputBar::setReady(bool ready)
{
    setEnabled(ready);
}

void OutputBar::print()
{
    QPrinter printer(QPrinter::HighResolution);
    printer.setDocName(m_source.fileWords());
    printer.setPageMargins(QMarginsF(15, 15, 15, 15), QPageLayout::Millimeter);
    const QPointer<OutputBar> self(this);
    const QPointer<QPrintDialog> dialog(new QPrintDialog(&printer, this));
    dialog->setOption(QAbstractPrintDialog::PrintPageRange);
    dressDialog(*dialog);
    const bool wanted = dialog->exec() == QDialog::Accepted;
    delete dialog;
    if (!wanted || !self)
        return;
    if (printPages(printer, m_source.table(), m_source.figure ? m_source.figure() : Figure()))
        Q_EMIT done(u"Handed to the printer."_s);
    else
        tellFailure(this, u"It could not be printed. Please check that the printer is ready, and try again."_s);
}

void OutputBar::savePdf()
{
    save(u"pdf"_s, [this] { return toPdf(m_source.table(), m_source.figure ? m_source.figure() : Figure()); });
}

void OutputBar::saveCsv()
{
    save(u"csv"_s, [this] { return toCsv(m_source.table()); });
}

void OutputBar::save(const QString &suffix, const std::function<QByteArray()> &contents)
{
    const QString name = fileNameFor(m_source.fileWords()) + u'.' + suffix;
    const QPointer<OutputBar> self(this);
    const FileChooser chooseFile = m_chooseFile; // outlives this bar, should that go while the question is open
    const QString path = chooseFile(this, documentsFolder() + u'/' + name, suffix);
    if (path.isEmpty() || !self)
        return;
    const auto saved = [&]() -> Result<void, QString> {
        const WaitCursor waiting;
        const QByteArray bytes = contents();
        if (bytes.isEmpty())
            return Unexpected(u"It could not be drawn."_s);
        return saveFile(path, bytes);
    }();
    if (saved)
        Q_EMIT done(u"Saved as %1"_s.arg(QDir::toNativeSeparators(path)));
    else
        tellFailure(this, u"It has not been saved as\n%1\n\n%2"_s.arg(QDir::toNativeSeparators(path), saved.error()));
}

} // namespace harrowby::tables
