// SPDX-License-Identifier: MIT
#pragma once

#include "bench/stopwatch.h"
#include "platform/platform.h"

#include <map>
#include <optional>
#include <utility>

namespace harrowby::bench {

/// Answers every box at once: Yes to a question, the set text to a request for one, Ok otherwise. Notes when the last
/// Yes was said.
class YesBoxes final : public Boxes
{
public:
    Answer message(QWidget *parent, const QString &text, int style, const QString &title) override;
    QString input(QWidget *parent, const QString &prompt, const QString &title, const QString &initial) override;

    /// What every input box is answered with from now on; nothing at first.
    void setInput(const QString &text) { m_input = text; }
    [[nodiscard]] const std::optional<Stopwatch> &sinceYes() const { return m_sinceYes; }

private:
    QString m_input;
    std::optional<Stopwatch> m_sinceYes;
};

/// Settings that stand still: no receipts.
class FixedSettings final : public SavedSettings
{
public:
    [[nodiscard]] QString get(const QString &section, const QString &key, const QString &defaultValue) override;
    void save(const QString &section, const QString &key, const QString &value) override;
};

class NoPrinter final : public Printer
{
public:
    [[nodiscard]] QString deviceName() const override;
    void setFontSize(int points) override;
    void setFontBold(bool bold) override;
    void printLine(const QString &text) override;
    void endDocument() override;
};

class NoPrinters final : public Printers
{
public:
    [[nodiscard]] QStringList deviceNames() override;
    [[nodiscard]] std::shared_ptr<Printer> printer(const QString &deviceName) override;
    [[nodiscard]] std::shared_ptr<Printer> current() override;
    void setCurrent(std::shared_ptr<Printer> printer) override;
};

/// Stands still until it is moved.
class SteppedClock final : public Clock
{
public:
    explicit SteppedClock(QDateTime now) : m_now(std::move(now)) {}
    [[nodiscard]] QDateTime now() const override { return m_now; }
    void nextSecond() { m_now = m_now.addSecs(1); }

private:
    QDateTime m_now;
};

} // namespace harrowby::bench
