// SPDX-License-Identifier: MIT
#pragma once

#include "platform/clock.h"
#include "platform/printers.h"
#include "platform/saved_settings.h"

#include <QMap>
#include <QStringList>

#include <memory>
#include <utility>
#include <vector>

namespace harrowby::test {

/// Stands still until it is told otherwise.
class FrozenClock final : public Clock
{
public:
    QDateTime time = QDateTime(QDate(2018, 3, 5), QTime(14, 7, 9));
    [[nodiscard]] QDateTime now() const override { return time; }
};

/// Saved settings in memory; section and key without regard to case.
class MemorySettings final : public SavedSettings
{
public:
    QMap<QString, QString> values; ///< by "section/key" in lower case
    [[nodiscard]] QString get(const QString &section, const QString &key, const QString &defaultValue) override;
    void save(const QString &section, const QString &key, const QString &value) override;
};

/// One printed line, with the font it was printed in.
struct PrintedLine
{
    int fontSize = 0;
    bool bold = false;
    QString text;
};

/// A printer that keeps what it is given.
class PaperPrinter final : public Printer
{
public:
    explicit PaperPrinter(QString deviceName) : m_deviceName(std::move(deviceName)) {}
    [[nodiscard]] QString deviceName() const override { return m_deviceName; }
    void setFontSize(int points) override { m_size = points; }
    void setFontBold(bool bold) override { m_bold = bold; }
    void printLine(const QString &text) override { lines.push_back({m_size, m_bold, text}); }
    void endDocument() override { ++documents; }
    [[nodiscard]] QStringList texts() const;

    std::vector<PrintedLine> lines;
    int documents = 0;

private:
    QString m_deviceName;
    int m_size = 0;
    bool m_bold = false;
};

class PaperPrinters final : public Printers
{
public:
    std::vector<std::shared_ptr<PaperPrinter>> installed{std::make_shared<PaperPrinter>(QStringLiteral("Till")),
                                                         std::make_shared<PaperPrinter>(QStringLiteral("Back office"))};
    [[nodiscard]] QStringList deviceNames() override;
    [[nodiscard]] std::shared_ptr<Printer> printer(const QString &deviceName) override;
    [[nodiscard]] std::shared_ptr<Printer> current() override;
    void setCurrent(std::shared_ptr<Printer> printer) override;
    /// The current printer with its own type; the platform's default (the last one) when none was chosen.
    [[nodiscard]] PaperPrinter &paper();

private:
    std::shared_ptr<Printer> m_current;
};

} // namespace harrowby::test
