// SPDX-License-Identifier: MIT
#include "postgres/action_server.h"

namespace harrowby::postgres {

QByteArray actionCall(const QByteArray &name, const ActionNumber &action)
{
    return "harrowby." + name + "('" + action.writer.toByteArray(QUuid::WithoutBraces) + "', " +
           QByteArray::number(static_cast<qlonglong>(action.number)) + ')';
}

} // namespace harrowby::postgres
