// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QStringList>

namespace harrowby::test {

/// Which of its sales a till on a server has given up, in words. `told` is what it has said: its statements (see
/// Till::reportStatements()), "L" before each press that looks for an item, "S" when it is in the cart, and "P" before
/// each press that commits the cart.
///
/// A person counts as given up what she has to see to herself: a sale that was cut in two (a press has written some of
/// it and not the rest, which is told, to be written down), one that is gone from the cart with nothing of it written,
/// one that is in the cart still when all is over, and a write of which the till cannot say whether it was done. It may
/// say so only after a minute of trying, which is longer than any server takes to take over.
///
/// Not given up is what no server was there for when it was to begin: an item that could not be looked up has never
/// been in the cart, and a cart of which nothing was written comes back and is committed by a later press.
[[nodiscard]] QStringList givenUp(const QByteArray &told);

} // namespace harrowby::test
