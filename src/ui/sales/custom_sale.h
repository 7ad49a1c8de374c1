// SPDX-License-Identifier: MIT
#pragma once

namespace harrowby {

struct Controls;

// The panel of the custom sale.

/// Shows the figures as they stand while no item is chosen.
void resetCustomSale(const Controls &controls);

/// Shows what the chosen item costs in the quantity that is entered.
void showCustomSaleTotal(const Controls &controls);

} // namespace harrowby
