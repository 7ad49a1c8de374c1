# Builds the Debian packages and looks at what they hold and ask for. Nothing is installed.
file(REMOVE_RECURSE ${WORK_DIR}/debian)

function(run output)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE text ERROR_VARIABLE errors)
    if(NOT result EQUAL 0)
        list(JOIN ARGN " " command)
        message(FATAL_ERROR "Failed (${result}): ${command}\n${text}${errors}")
    endif()
    set(${output} "${text}" PARENT_SCOPE)
endfunction()

run(ignored ${CPACK} --config ${BUILD_DIR}/CPackConfig.cmake -G DEB -C ${BUILD_TYPE} -B ${WORK_DIR}/debian)

# look(PACKAGE HOLDS file... DEPENDS regular-expression... RECOMMENDS ... LACKS regular-expression...)
function(look package)
    cmake_parse_arguments(ARG "" "" "HOLDS;DEPENDS;RECOMMENDS;LACKS" ${ARGN})
    file(GLOB archive ${WORK_DIR}/debian/${package}_${VERSION}_*.deb)
    if(NOT archive)
        message(FATAL_ERROR "No package ${package} ${VERSION}")
    endif()
    run(contents dpkg-deb --contents ${archive})
    foreach(file ${ARG_HOLDS} usr/share/doc/${package}/copyright)
        string(FIND "${contents}" " ./${file}" found)
        if(found EQUAL -1)
            message(FATAL_ERROR "${package} lacks ${file}:\n${contents}")
        endif()
    endforeach()
    foreach(strange ${ARG_LACKS} " \\./usr/local" " \\./src" "\\.a\n")
        if(contents MATCHES "${strange}")
            message(FATAL_ERROR "${package} holds ${strange}:\n${contents}")
        endif()
    endforeach()
    string(REGEX MATCHALL "[^\n]+ \\./" lines "${contents}")
    foreach(line ${lines})
        if(NOT line MATCHES "^[-dl]rw.r.[-x]r.[-x] root/root|^lrwxrwxrwx root/root")
            message(FATAL_ERROR "${package}: whose, and for whom? ${line}")
        endif()
    endforeach()
    foreach(field DEPENDS RECOMMENDS)
        run(value dpkg-deb --field ${archive} ${field})
        foreach(wanted ${ARG_${field}})
            if(NOT "${value}" MATCHES "(^|, )${wanted}( |,|\n|$)")
                message(FATAL_ERROR "${package} does not ask for ${wanted} (${field}): ${value}")
            endif()
        endforeach()
        # Whoever installs all four does not want a compiler.
        if("${value}" MATCHES "g\\+\\+|cmake|build-essential")
            message(FATAL_ERROR "${package} brings a compiler (${field}): ${value}")
        endif()
    endforeach()
endfunction()

set(runtime libharrowby-inventory${MAJOR})
set(same "${runtime} \\(= ${VERSION}\\)")
look(${runtime}
    HOLDS usr/${LIBDIR}/libharrowby-inventory.so.${VERSION} usr/${LIBDIR}/libharrowby-inventory.so.${MAJOR}
    DEPENDS libqt6widgets6 libqt6svg6 libsqlite3-0 fonts-dejavu-core
    RECOMMENDS cups-client
    LACKS "/include/" "libharrowby-inventory\\.so ")
look(libharrowby-inventory-dev
    HOLDS usr/include/harrowby/init.h usr/include/harrowby/export.h usr/${LIBDIR}/libharrowby-inventory.so
        usr/${LIBDIR}/cmake/HarrowbyInventory/HarrowbyInventoryConfig.cmake
    DEPENDS ${same} qt6-base-dev)
look(harrowby
    HOLDS usr/bin/harrowby usr/share/applications/harrowby.desktop
        usr/share/icons/hicolor/scalable/apps/harrowby.svg
    DEPENDS ${same} libsqlite3-0
    RECOMMENDS cups-client harrowby-report qt6-virtualkeyboard-plugin qml6-module-qtquick-virtualkeyboard
    LACKS "\\.so" "/include/")
if(POSTGRES)
    look(libharrowby-postgres${MAJOR}
        HOLDS usr/${LIBDIR}/libharrowby-postgres.so.${VERSION} usr/${LIBDIR}/libharrowby-postgres.so.${MAJOR}
        DEPENDS ${same} libpq5
        LACKS "/include/" "libharrowby-postgres\\.so ")
    look(libharrowby-inventory-dev HOLDS usr/include/harrowby/postgres_connection.h usr/${LIBDIR}/libharrowby-postgres.so
        DEPENDS "libharrowby-postgres${MAJOR} \\(= ${VERSION}\\)")
endif()
if(CONNECTION)
    look(harrowby-server-connection
        HOLDS usr/${LIBDIR}/harrowby/plugins/harrowby-server.so
        DEPENDS ${same} "harrowby \\(= ${VERSION}\\)" libpq5
        LACKS "/include/")
endif()
if(POSTGRES)
    look(harrowby-server
        HOLDS usr/sbin/harrowby-server usr/share/harrowby-server/parts/automatic.sh usr/share/harrowby-server/rights.sql
            usr/share/harrowby-server/sql/10_tables.sql usr/share/harrowby-server/sql/50_own_tables.sql
        DEPENDS openssl
        LACKS "\\.so")
    # The command finds what is its own, and not in this machine's place.
    run(ignored sh -c "dpkg-deb --extract ${WORK_DIR}/debian/harrowby-server_*.deb ${WORK_DIR}/debian/there")
    run(usage ${WORK_DIR}/debian/there/usr/sbin/harrowby-server --help)
    if(NOT usage MATCHES "automatic NAME=ADDRESS")
        message(FATAL_ERROR "harrowby-server from its package says: ${usage}")
    endif()
endif()
# libpq is for whoever works on a server.
foreach(package ${runtime} harrowby harrowby-report)
    file(GLOB archives ${WORK_DIR}/debian/${package}_*.deb)
    foreach(archive ${archives})
        foreach(field Depends Recommends)
            run(value dpkg-deb --field ${archive} ${field})
            if("${value}" MATCHES "libpq|postgres|server")
                message(FATAL_ERROR "${package} brings libpq (${field}): ${value}")
            endif()
        endforeach()
    endforeach()
endforeach()
if(REPORT)
    look(harrowby-report
        HOLDS usr/${LIBDIR}/harrowby/plugins/harrowby-report.so
        DEPENDS ${same} libqt6charts6)
    run(licence sh -c "dpkg-deb --fsys-tarfile ${WORK_DIR}/debian/harrowby-report_*.deb | tar -xO ./usr/share/doc/harrowby-report/copyright")
    if(NOT licence MATCHES "GNU General Public License, version 3")
        message(FATAL_ERROR "The report's package does not say its licence")
    endif()
endif()
