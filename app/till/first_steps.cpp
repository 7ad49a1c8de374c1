// SPDX-License-Identifier: MIT
#include "app/till/first_steps.h"

#include "app/banner/banner.h"
#include "app/records/records.h"

#include <harrowby/counter.h>

using namespace Qt::StringLiterals;

namespace harrowby::app {

FirstSteps::FirstSteps(Counter &counter, Records &records, Banner &banner, QObject *parent) :
    QObject(parent), m_records(records), m_banner(banner)
{
    connect(&counter, &Counter::windowOpened, this, &FirstSteps::look);
    connect(&counter, &Counter::loggedIn, this, &FirstSteps::look);
    connect(&counter, &Counter::stockSaved, this, &FirstSteps::look);
    connect(&counter, &Counter::stockDeleted, this, &FirstSteps::look);
}

void FirstSteps::look()
{
    const auto any = m_records.read({u"select StockID from StockList limit 1"_s, {}});
    if (any && any->isEmpty())
        m_banner.say(BannerTopic::FirstSteps,
                     u"1. Office, Catalogue: a list of items; or Settings, Add/Edit Stock. 2. Users."_s);
    else
        m_banner.clear(BannerTopic::FirstSteps);
}

} // namespace harrowby::app
