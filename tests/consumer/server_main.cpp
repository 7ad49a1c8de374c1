// SPDX-License-Identifier: MIT
// The smallest host of a shop with several tills, before its server has been set up.
#include <harrowby/postgres_connection.h>

int main()
{
    harrowby::PostgresConnection connection(QStringLiteral("service=not-set-up-yet"));
    return connection.open() ? 0 : 1;
}
