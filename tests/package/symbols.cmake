# A library's dynamic symbols are its public classes and functions, and all of them; and nothing but the server's
# connection links libpq.
execute_process(COMMAND ${NM} -DC --defined-only ${LIBRARY} OUTPUT_VARIABLE listing COMMAND_ERROR_IS_FATAL ANY)
string(REGEX REPLACE "\n$" "" listing "${listing}")
string(REPLACE ";" "," listing "${listing}")
string(REPLACE "\n" ";" symbols "${listing}")

set(inventory_public "harrowby::(Init|Counter|DbConnection|DbCursor|SqliteConnection|registerClass|setPluginFolders|savedSetting|saveSetting|setFileFailureHandler)")
set(inventory_needed
        "harrowby::Init::LoadInventory("
        "harrowby::Counter::instance("
        "harrowby::Counter::sell("
        "harrowby::Counter::purchased("
        "harrowby::Counter::staticMetaObject"
        "vtable for harrowby::Counter"
        "harrowby::DbConnection::setFailureHandler("
        "harrowby::DbConnection::reportFailure("
        "harrowby::DbConnection::~DbConnection("
        "harrowby::DbCursor::~DbCursor("
        "harrowby::SqliteConnection::SqliteConnection("
        "harrowby::SqliteConnection::Execute("
        "harrowby::registerClass("
        "harrowby::setPluginFolders("
        "harrowby::savedSetting("
        "harrowby::saveSetting("
        "harrowby::setFileFailureHandler("
        "vtable for harrowby::SqliteConnection"
        "typeinfo for harrowby::DbConnection")
set(postgres_public "harrowby::PostgresConnection")
set(postgres_needed
        "harrowby::PostgresConnection::PostgresConnection("
        "harrowby::PostgresConnection::query("
        "vtable for harrowby::PostgresConnection"
        "typeinfo for harrowby::PostgresConnection")

set(wrong)
foreach(symbol ${symbols})
    string(REGEX REPLACE "^[0-9a-f]* +[A-Za-z] " "" name "${symbol}")
    string(REGEX REPLACE "@@?HARROWBY_[A-Z0-9_]+$" "" name "${name}")
    if(NOT name MATCHES "^((vtable|typeinfo|typeinfo name) for )?${${NAME}_public}(::|\\(|$)" AND NOT name MATCHES "^HARROWBY_[A-Z0-9_]+$")
        list(APPEND wrong "${symbol}")
    endif()
endforeach()
if(wrong)
    list(JOIN wrong "\n  " text)
    message(FATAL_ERROR "Exported without being public:\n  ${text}")
endif()

foreach(needed IN LISTS ${NAME}_needed)
    string(FIND "${listing}" "${needed}" found)
    if(found EQUAL -1)
        message(FATAL_ERROR "Public, but not exported: ${needed}\n${listing}")
    endif()
endforeach()

execute_process(COMMAND ${READELF} -d ${LIBRARY} OUTPUT_VARIABLE dynamic COMMAND_ERROR_IS_FATAL ANY)
if(NOT dynamic MATCHES "\\[libharrowby-${NAME}\\.so\\.${MAJOR}\\]")
    message(FATAL_ERROR "The library's name lacks its major version:\n${dynamic}")
endif()
if(NAME STREQUAL "inventory" AND dynamic MATCHES "libpq")
    message(FATAL_ERROR "The library links libpq:\n${dynamic}")
endif()
