// SPDX-License-Identifier: MIT
#include "app/labels/label_printing.h"

#include "basic/helper_process.h"
#include "basic/logging.h"

#include <QDir>
#include <QTemporaryFile>

#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace harrowby::app {

namespace {

/// For lp: nothing may be made larger or smaller on the way, or the bars would be blurred. A printer of labels is set
/// to its roll; one that does not know the size by its measures would keep the job for ever.
QStringList optionsFor(const LabelPaper &paper)
{
    const QStringList unscaled = {u"-o"_s, u"print-scaling=none"_s};
    return paper.isRoll ? unscaled : unscaled + QStringList{u"-o"_s, u"media=A4"_s};
}

} // namespace

LabelPrinting::LabelPrinting(QObject *parent, std::chrono::milliseconds deadline) :
    QObject(parent), m_deadline(deadline)
{
}

LabelPrinting::~LabelPrinting() = default;

void LabelPrinting::findPrinters(std::function<void(const QStringList &)> found)
{
    if (m_query != nullptr)
        return;
    m_query = new HelperProcess(this);
    m_query->start(u"lpstat"_s, {u"-e"_s}, 10s, [found = std::move(found)](const HelperProcess::Outcome &outcome) {
        if (outcome.succeeded)
            found(QString::fromUtf8(outcome.output).split(u'\n', Qt::SkipEmptyParts));
    });
}

void LabelPrinting::print(const QString &printer, const LabelPaper &paper, const QByteArray &pdf,
                          std::function<void(const Result<void, QString> &)> done)
{
    m_file = std::make_unique<QTemporaryFile>(QDir::tempPath() + u"/labels-XXXXXX.pdf"_s);
    if (!m_file->open() || m_file->write(pdf) != pdf.size() || !m_file->flush())
        return done(Unexpected(m_file->errorString()));
    m_handOver = new HelperProcess(this);
    m_handOver->start(u"lp"_s,
                      QStringList{u"-d"_s, printer, u"-t"_s, u"Labels"_s} + optionsFor(paper) +
                          QStringList{u"--"_s, m_file->fileName()},
                      m_deadline, [this, printer, done = std::move(done)](const HelperProcess::Outcome &outcome) {
                          std::exchange(m_handOver, nullptr)->deleteLater();
                          m_file.reset();
                          if (outcome.succeeded)
                              return done({});
                          qCWarning(lcPrint).noquote()
                              << "Labels not printed: printer" << printer << '-' << outcome.reason;
                          done(Unexpected(outcome.reason));
                      });
}

} // namespace harrowby::app
