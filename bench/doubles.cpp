// SPDX-License-Identifier: MIT
#include "bench/doubles.h"

using namespace Qt::StringLiterals;

namespace harrowby::bench {

Answer YesBoxes::message(QWidget * /*parent*/, const QString & /*text*/, int style, const QString & /*title*/)
{
    if ((style & box::YesNo) == 0)
        return Answer::Ok;
    m_sinceYes.emplace();
    return Answer::Yes;
}

QString YesBoxes::input(QWidget * /*parent*/, const QString & /*prompt*/, const QString & /*title*/,
                        const QString & /*initial*/)
{
    return m_input;
}

QString FixedSettings::get(const QString & /*section*/, const QString &key, const QString &defaultValue)
{
    return key.compare(saved::PrintReceipt.key, Qt::CaseInsensitive) == 0 ? u"0"_s : defaultValue;
}

void FixedSettings::save(const QString & /*section*/, const QString & /*key*/, const QString & /*value*/) {}

QString NoPrinter::deviceName() const
{
    return u"None"_s;
}

void NoPrinter::setFontSize(int /*points*/) {}

void NoPrinter::setFontBold(bool /*bold*/) {}

void NoPrinter::printLine(const QString & /*text*/) {}

void NoPrinter::endDocument() {}

QStringList NoPrinters::deviceNames()
{
    return {u"None"_s};
}

std::shared_ptr<Printer> NoPrinters::printer(const QString & /*deviceName*/)
{
    return std::make_shared<NoPrinter>();
}

std::shared_ptr<Printer> NoPrinters::current()
{
    return std::make_shared<NoPrinter>();
}

void NoPrinters::setCurrent(std::shared_ptr<Printer> /*printer*/) {}

} // namespace harrowby::bench
