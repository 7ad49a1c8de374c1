// SPDX-License-Identifier: MIT
#include "ui/counter/code_taker.h"

#include "ui/counter/host_link.h"

namespace harrowby {

namespace {

Counter::CodeRefusal refusalOf(CodeKeys::Refusal why)
{
    switch (why) {
    case CodeKeys::Refusal::BoxOpen:
        return Counter::CodeRefusal::BoxOpen;
    case CodeKeys::Refusal::TooLong:
        return Counter::CodeRefusal::TooLong;
    case CodeKeys::Refusal::Mixed:
        break;
    }
    return Counter::CodeRefusal::Mixed;
}

} // namespace

CodeTaker::CodeTaker(HostLink &host, QObject &application) : QObject(&application), m_host(host)
{
    connect(&m_keys, &CodeKeys::codeRead, this, [this](const QString &code, bool joined) {
        m_host.tell(event::CodeRead{code, joined});
    });
    connect(&m_keys, &CodeKeys::codeRefused, this,
            [this](CodeKeys::Refusal why) { m_host.tell(event::CodeRefused{refusalOf(why)}); });
}

void CodeTaker::setSettings(const std::optional<CodeReaderSettings> &settings)
{
    m_keys.setSettings(settings);
}

} // namespace harrowby
