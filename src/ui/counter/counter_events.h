// SPDX-License-Identifier: MIT
#pragma once

#include <harrowby/counter.h>

#include <variant>

namespace harrowby {

/// What the host is told of: the signals of Counter, each with its arguments.
namespace event {

struct WindowOpened
{
};
struct WindowClosed
{
};
struct LoggedIn
{
    CounterUser user;
};
struct LoggedOut
{
    QString name;
};
struct LoginRefused
{
    QString name;
};
struct CartChanged
{
};
struct Purchased
{
    CounterPurchase purchase;
};
struct PurchaseUndone
{
    QString id;
};
struct PurchaseDeleted
{
    QString id;
};
struct StockSaved
{
    QString oldId;
    QString newId;
};
struct StockDeleted
{
    QString id;
};
struct CodeRead
{
    QString code;
    bool joined = false; ///< typed right behind the one before: see CodeBurst
};
struct CodeRefused
{
    Counter::CodeRefusal why;
};

} // namespace event

using CounterEvent =
    std::variant<event::WindowOpened, event::WindowClosed, event::LoggedIn, event::LoggedOut, event::LoginRefused,
                 event::CartChanged, event::Purchased, event::PurchaseUndone, event::PurchaseDeleted, event::StockSaved,
                 event::StockDeleted, event::CodeRead, event::CodeRefused>;

} // namespace harrowby
