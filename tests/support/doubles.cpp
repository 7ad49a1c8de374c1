// SPDX-License-Identifier: MIT
#include "tests/support/doubles.h"

using namespace Qt::StringLiterals;

namespace harrowby::test {

namespace {

QString address(const QString &section, const QString &key)
{
    return (section + u"/"_s + key).toLower();
}

} // namespace

QString MemorySettings::get(const QString &section, const QString &key, const QString &defaultValue)
{
    return values.value(address(section, key), defaultValue);
}

void MemorySettings::save(const QString &section, const QString &key, const QString &value)
{
    values.insert(address(section, key), value);
}

QStringList PaperPrinter::texts() const
{
    QStringList all;
    for (const PrintedLine &line : lines)
        all << line.text;
    return all;
}

QStringList PaperPrinters::deviceNames()
{
    QStringList names;
    for (const std::shared_ptr<PaperPrinter> &printer : installed)
        names << printer->deviceName();
    return names;
}

std::shared_ptr<Printer> PaperPrinters::printer(const QString &deviceName)
{
    for (const std::shared_ptr<PaperPrinter> &printer : installed) {
        if (printer->deviceName() == deviceName)
            return printer;
    }
    return nullptr;
}

std::shared_ptr<Printer> PaperPrinters::current()
{
    return m_current ? m_current : installed.back();
}

void PaperPrinters::setCurrent(std::shared_ptr<Printer> printer)
{
    m_current = std::move(printer);
}

PaperPrinter &PaperPrinters::paper()
{
    return static_cast<PaperPrinter &>(*current());
}

} // namespace harrowby::test
