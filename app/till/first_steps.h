// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

namespace harrowby {
class Counter;
} // namespace harrowby

namespace harrowby::app {

class Banner;
class Records;

/// Says in the banner what to do first, until the shop has an item.
class FirstSteps final : public QObject
{
    Q_OBJECT

public:
    /// All must outlive it.
    FirstSteps(Counter &counter, Records &records, Banner &banner, QObject *parent = nullptr);

    void look();

private:
    Records &m_records;
    Banner &m_banner;
};

} // namespace harrowby::app
