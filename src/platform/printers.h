// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

#include <memory>

namespace harrowby {

/// One printer, as the receipt code drives it: set the font, print line after line, end the job. A failing step
/// is logged ("harrowby.print") and otherwise silent. Nothing here waits for a print service.
class Printer
{
public:
    virtual ~Printer();
    [[nodiscard]] virtual QString deviceName() const = 0;
    virtual void setFontSize(int points) = 0;
    virtual void setFontBold(bool bold) = 0;
    /// Prints the text and moves to the next line. Long lines wrap; CR LF within the text breaks the line.
    virtual void printLine(const QString &text) = 0;
    /// Sends the job off. The font settings stay for the next one.
    virtual void endDocument() = 0;
};

/// The installed printers and the one that is current. Every operation returns within a second, also when the
/// print service is dead or hangs.
class Printers
{
public:
    virtual ~Printers();
    /// Device names in the platform's order.
    [[nodiscard]] virtual QStringList deviceNames() = 0;
    /// The printer with exactly this device name; null when it is not installed.
    [[nodiscard]] virtual std::shared_ptr<Printer> printer(const QString &deviceName) = 0;
    /// The platform's default printer until another one is made current. Never null.
    [[nodiscard]] virtual std::shared_ptr<Printer> current() = 0;
    virtual void setCurrent(std::shared_ptr<Printer> printer) = 0;
};

} // namespace harrowby
