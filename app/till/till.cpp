// SPDX-License-Identifier: MIT
#include "app/till/till.h"

#include "app/codes/code_table.h"

#include <QWidget>

#include <memory>
#include <utility>

namespace harrowby::app {

Till::Till(Counter &counter, Records &records, std::function<void()> sound) :
    m_counter(counter), m_records(records), m_codes(counter, records, m_banner, std::move(sound)),
    m_firstSteps(counter, records, m_banner)
{
    m_records.setBeforeWriting([&counter] { counter.finishReading(); });
    connect(&m_counter, &Counter::windowOpened, this, &Till::furnish);
    connect(&m_counter, &Counter::stockSaved, this, &Till::keepCodes);
    if (m_counter.isOpen())
        furnish();
}

Till::~Till()
{
    m_records.setBeforeWriting({});
}

void Till::furnish()
{
    std::unique_ptr<QWidget> view(m_banner.createView());
    if (m_counter.setBanner(view.get()))
        view.release(); // the window's own now
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
