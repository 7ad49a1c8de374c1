// SPDX-License-Identifier: MIT
#include "app/search/finding_function.h"

#include "app/search/sought_text.h"

#include <sqlite3.h>

#include <memory>
#include <new>

namespace harrowby::app {

namespace {

/// Text first: asking for it may convert, and the length is that of the converted text.
QByteArrayView textOf(sqlite3_value *value)
{
    const auto *text = reinterpret_cast<const char *>(sqlite3_value_text(value));
    return {text, text != nullptr ? sqlite3_value_bytes(value) : 0};
}

void forget(void *sought)
{
    delete static_cast<SoughtText *>(sought);
}

/// What is looked for is prepared once a statement and kept with it.
void find(sqlite3_context *context, sqlite3_value *text, sqlite3_value *value)
{
    if (sqlite3_value_type(value) == SQLITE_NULL)
        return;
    const auto *sought = static_cast<const SoughtText *>(sqlite3_get_auxdata(context, 0));
    std::unique_ptr<SoughtText> made;
    if (sought == nullptr) {
        made = std::make_unique<SoughtText>(QString::fromUtf8(textOf(text)));
        sought = made.get();
    }
    sqlite3_result_int(context, sought->isIn(textOf(value)) ? 1 : 0);
    if (made)
        sqlite3_set_auxdata(context, 0, made.release(), forget);
}

void carryOut(sqlite3_context *context, int, sqlite3_value **arguments) noexcept
{
    try {
        find(context, arguments[0], arguments[1]);
    } catch (const std::bad_alloc &) {
        sqlite3_result_error_nomem(context);
    }
}

} // namespace

bool addFindingFunction(sqlite3 *database)
{
    constexpr int traits = SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_DIRECTONLY;
    return database != nullptr && sqlite3_create_function_v2(database, "harrowby_finds", 2, traits, nullptr, carryOut,
                                                             nullptr, nullptr, nullptr) == SQLITE_OK;
}

} // namespace harrowby::app
