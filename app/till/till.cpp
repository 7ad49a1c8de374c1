// SPDX-License-Identifier: MIT
#include "app/till/till.h"

#include "app/codes/code_table.h"

#include <QWidget>

#include <memory>
#include <utility>

namespace harrowby::app {

Till::Till(Counter &counter, Records &records, const OfficeSettings &settings, std::function<void()> sound,
           CashStation cash) :
    m_counter(counter),
    m_records(records), m_payments(counter, records, std::move(cash)),
    m_drawer(counter, records, m_payments, readDrawerSettings(settings)),
    m_codes(counter, records, m_banner, std::move(sound)), m_deeds(counter, records, m_payments.drawer()),
    m_missedStock(counter, records, m_payments.drawer(),
                  {[this](const QString &text) { sayOfCart(text, true); },
                   [this](const QString &text) { m_banner.say(BannerTopic::Renamed, text); }}),
    m_firstSteps(counter, records, m_banner),
    m_cash(counter, records, m_payments,
           {[this](const QString &text) { sayOfCart(text, true); },
            [this](const QString &text) { m_banner.say(BannerTopic::Change, text, BannerTone::Large); }}),
    m_hold(counter, records, [this](const QString &text, bool isRefusal) { sayOfCart(text, isRefusal); })
{
    m_records.setBeforeWriting([&counter] { counter.finishReading(); });
    connect(&m_counter, &Counter::windowOpened, this, &Till::furnish);
    connect(&m_counter, &Counter::stockSaved, this, &Till::keepCodes);
    connect(&m_counter, &Counter::cartChanged, this, &Till::followCart);
    connect(&m_codes, &CodeSeller::soldAtPriceOfCode, &m_deeds, &TillDeeds::notePriceOfCode);
    takeCodes(settings);
    if (m_counter.isOpen())
        furnish();
}

Till::~Till()
{
    m_counter.takeCodes({});
    m_records.setBeforeWriting({});
}

/// Of readers that type, and of those that are named by their device.
void Till::takeCodes(const OfficeSettings &settings)
{
    const ReaderSettings readers = readReaderSettings(settings);
    if (readers.typing)
        m_counter.takeCodes(CodeReaderSettings{.longestGapMs = readers.gapMs, .prefix = readers.prefix});
    m_readers = std::make_unique<CodeReaders>(readers.devices);
    connect(m_readers.get(), &CodeReaders::codeRead, &m_codes, &CodeSeller::sell);
    connect(m_readers.get(), &CodeReaders::codeRefused, &m_codes, &CodeSeller::tellDeviceRefusal);
    connect(m_readers.get(), &CodeReaders::readerLost, this, [this](const QString &, const QString &text) {
        m_banner.say(BannerTopic::Reader, text, BannerTone::Refused);
    });
    connect(m_readers.get(), &CodeReaders::readerFound, this,
            [this](const QString &, const QString &text) { m_banner.say(BannerTopic::Reader, text); });
}

void Till::furnish()
{
    std::unique_ptr<QWidget> view(m_banner.createView());
    if (m_counter.setBanner(view.get()))
        static_cast<void>(view.release()); // the window's own now
    m_cash.furnish();
    m_hold.furnish();
    m_drawer.furnish();
}

/// Stands there until the cart changes again. What was said of a code before it is over.
void Till::sayOfCart(const QString &text, bool isRefusal)
{
    m_banner.clear(BannerTopic::Code);
    m_banner.say(BannerTopic::Cart, text, isRefusal ? BannerTone::Refused : BannerTone::Plain);
    m_sayingOfCart = !isRefusal;
}

void Till::followCart()
{
    if (!std::exchange(m_sayingOfCart, false))
        m_banner.clear(BannerTopic::Cart);
}

/// What cannot be kept is told by the records; nothing else depends on it.
void Till::keepCodes(const QString &oldId, const QString &newId)
{
    CodeTable codes(m_records);
    if (oldId.isEmpty())
        (void)codes.itemAdded(newId);
    else
        (void)codes.itemRenamed(oldId, newId);
}

} // namespace harrowby::app
