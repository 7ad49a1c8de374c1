// SPDX-License-Identifier: MIT
#pragma once

#include "app/codes/code_finder.h"
#include "app/readers/code_readers.h"

#include <harrowby/counter.h>

#include <QObject>
#include <QString>

#include <functional>

namespace harrowby::app {

class Banner;

/// Sells what a code reader reads. What nobody can sell is said in the banner, with a sound, until the next code.
class CodeSeller final : public QObject
{
    Q_OBJECT

public:
    /// All must outlive it.
    CodeSeller(Counter &counter, Records &records, Banner &banner, std::function<void()> sound,
               QObject *parent = nullptr);

    void sell(const QString &code);
    void tellRefusal(Counter::CodeRefusal why);
    /// The same of readers that are named by their device.
    void tellDeviceRefusal(CodeReaders::Refusal why);

Q_SIGNALS:
    /// Is in the cart at a price that the code holds, and that nobody has chosen.
    void soldAtPriceOfCode(const QString &stockId, double units, double cost);

private:
    [[nodiscard]] QString refusalOf(const QString &code, const FoundCode &found) const;
    void sellItem(const QString &code, const FoundCode &item);
    [[nodiscard]] CounterAnswer sellPriced(const FoundCode &item, QString &misfit);
    void refuse(const QString &text);

    Counter &m_counter;
    CodeFinder m_finder;
    Banner &m_banner;
    std::function<void()> m_sound;
};

} // namespace harrowby::app
