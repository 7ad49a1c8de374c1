# Debian packages of what is installed, one a component: `cpack -G DEB` (script/package).
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME harrowby)
set(CPACK_PACKAGE_VENDOR "The Harrowby Inventory developers")
set(CPACK_PACKAGE_CONTACT "The Harrowby Inventory developers <maintainers@harrowby.example>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL runtime development program report postgres server-connection server)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
if(NOT HARROWBY_BUILD_REPORT)
    list(REMOVE_ITEM CPACK_COMPONENTS_ALL report)
endif()
if(NOT TARGET harrowby_postgres)
    list(REMOVE_ITEM CPACK_COMPONENTS_ALL postgres server)
endif()
if(NOT TARGET harrowby_server_plugin)
    list(REMOVE_ITEM CPACK_COMPONENTS_ALL server-connection)
endif()

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON) # and has the loader's cache renewed
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY "=")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

# What no linker knows of: a face to write with, and the oldest engine.
set(needed "fonts-dejavu-core | fonts-liberation, libsqlite3-0 (>= 3.39)")

set(runtime libharrowby-inventory${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${runtime})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_DEPENDS ${needed})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_RECOMMENDS "cups-client, fonts-liberation")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SUGGESTS harrowby-report)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "This package holds the shared library: a window to sell at the counter and to keep the
stock, which a store-management program loads into its own process.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libharrowby-inventory-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "qt6-base-dev (>= 6.4)")
# Not recommended, which apt would follow: all four packages may be installed on a till.
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS "cmake (>= 3.25), g++, libsqlite3-dev")
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS runtime)
if(TARGET harrowby_postgres)
    list(APPEND CPACK_COMPONENT_DEVELOPMENT_DEPENDS postgres)
endif()
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "This package holds the public headers and the CMake package HarrowbyInventory for
programs that load the window into their own process.")

set(CPACK_DEBIAN_PROGRAM_PACKAGE_NAME harrowby)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SECTION misc)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_DEPENDS "${needed}, hicolor-icon-theme")
# All that is wanted of a till: printers, the report, the keyboard on the screen.
string(JOIN ", " CPACK_DEBIAN_PROGRAM_PACKAGE_RECOMMENDS
    cups-client harrowby-report qt6-virtualkeyboard-plugin qml6-module-qtquick-virtualkeyboard
    qml6-module-qtqml-workerscript qml6-module-qt-labs-folderlistmodel qml6-module-qtquick-window
    qml6-module-qtquick-layouts)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SUGGESTS "cups, harrowby-server-connection, qt6-wayland")
set(CPACK_COMPONENT_PROGRAM_DEPENDS runtime)
set(CPACK_COMPONENT_PROGRAM_DESCRIPTION "This package holds the program: a till with quick-sale buttons, cart and receipts, a
stock book, and an office for users and backups, over one SQLite file.")

set(CPACK_DEBIAN_REPORT_PACKAGE_NAME harrowby-report)
set(CPACK_DEBIAN_REPORT_PACKAGE_SECTION misc)
set(CPACK_COMPONENT_REPORT_DEPENDS runtime)
set(CPACK_COMPONENT_REPORT_DESCRIPTION "This package holds the sales report: by day, seller and item, as a table and a plot, to
print and to save. It draws with Qt Charts and is therefore passed on under the GNU
General Public License, version 3.")

set(CPACK_DEBIAN_POSTGRES_PACKAGE_NAME libharrowby-postgres${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_POSTGRES_PACKAGE_SECTION libs)
set(CPACK_COMPONENT_POSTGRES_DEPENDS runtime)
set(CPACK_COMPONENT_POSTGRES_DESCRIPTION "This package holds the connection to a PostgreSQL server, for a shop whose tills share one
store.")

# Nothing else brings libpq onto a till that works on a file.
set(CPACK_DEBIAN_SERVER-CONNECTION_PACKAGE_NAME harrowby-server-connection)
set(CPACK_DEBIAN_SERVER-CONNECTION_PACKAGE_SECTION misc)
set(CPACK_COMPONENT_SERVER-CONNECTION_DEPENDS runtime program)
set(CPACK_COMPONENT_SERVER-CONNECTION_DESCRIPTION "This package holds what the program needs on a till or in an office whose store is on a
PostgreSQL server.")

set(CPACK_DEBIAN_SERVER_PACKAGE_NAME harrowby-server)
set(CPACK_DEBIAN_SERVER_PACKAGE_SECTION admin)
set(CPACK_DEBIAN_SERVER_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_SERVER_PACKAGE_DEPENDS openssl)
# The command installs those of them that a machine needs. A till that has but a vote gets no PostgreSQL.
set(CPACK_DEBIAN_SERVER_PACKAGE_SUGGESTS "postgresql (>= 15), patroni, etcd-server, etcd-client, python3-idna")
set(CPACK_COMPONENT_SERVER_DESCRIPTION "This package holds harrowby-server, which sets the server of a shop with several tills up and
keeps it: standbys, backups, and machines that take over from each other.")

include(CPack)

# Where Debian looks for a package's licence. Installed with the packages' components alone.
set(doc ${CMAKE_INSTALL_DATAROOTDIR}/doc)
foreach(component ${CPACK_COMPONENTS_ALL})
    string(TOUPPER ${component} upper)
    set(text copyright)
    if(component STREQUAL "report")
        set(text copyright-report)
    endif()
    install(FILES packaging/${text} DESTINATION ${doc}/${CPACK_DEBIAN_${upper}_PACKAGE_NAME}
        RENAME copyright COMPONENT ${component} EXCLUDE_FROM_ALL)
    install(FILES CHANGELOG.md DESTINATION ${doc}/${CPACK_DEBIAN_${upper}_PACKAGE_NAME}
        COMPONENT ${component} EXCLUDE_FROM_ALL)
endforeach()
