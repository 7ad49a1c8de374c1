// SPDX-License-Identifier: MIT
#pragma once

#include "input/code_keys.h"

#include <harrowby/counter.h>

namespace harrowby {

class HostLink;

/// Tells the host of the codes that are typed in the windows of the process. Lives as long as the application.
class CodeTaker final : public QObject
{
    Q_OBJECT

public:
    CodeTaker(HostLink &host, QObject &application);

    void setSettings(const std::optional<CodeReaderSettings> &settings);

private:
    HostLink &m_host;
    CodeKeys m_keys;
};

} // namespace harrowby
