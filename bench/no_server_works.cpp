// SPDX-License-Identifier: MIT
#include "bench/server_works.h"

#include <stdexcept>

namespace harrowby::bench {

std::vector<Line> measureServer(const ShopFile &, const WorksOptions &)
{
    throw std::runtime_error("This benchmark was built without libpq.");
}

std::unique_ptr<MeasuredStore> serverShop(const QString &)
{
    throw std::runtime_error("This benchmark was built without libpq.");
}

} // namespace harrowby::bench
