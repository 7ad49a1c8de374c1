# Installs the package to a prefix of its own, moves that prefix (a package must not depend on where it was built),
# then configures, builds and runs the consumer project against it.
set(first_prefix ${WORK_DIR}/prefix.new)
set(prefix ${WORK_DIR}/prefix)
set(consumer_build ${WORK_DIR}/consumer)
file(REMOVE_RECURSE ${first_prefix} ${prefix} ${consumer_build})

function(run)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
    if(NOT result EQUAL 0)
        list(JOIN ARGN " " command)
        message(FATAL_ERROR "Failed (${result}): ${command}\n${output}")
    endif()
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD_DIR} --config ${BUILD_TYPE} --prefix ${first_prefix})
file(RENAME ${first_prefix} ${prefix})

foreach(file
        include/harrowby/init.h include/harrowby/code_reader_settings.h include/harrowby/counter.h
        include/harrowby/db_connection.h include/harrowby/db_value.h
        include/harrowby/sqlite_connection.h include/harrowby/export.h include/harrowby/file_failure.h include/harrowby/objects.h
        include/harrowby/report_component.h include/harrowby/saved_settings.h
        include/harrowby/window_marks.h
        ${LIBDIR}/libharrowby-inventory.so ${LIBDIR}/libharrowby-inventory.so.${VERSION})
    if(NOT EXISTS ${prefix}/${file})
        message(FATAL_ERROR "Not installed: ${file}")
    endif()
endforeach()

if(EXISTS ${prefix}/${LIBDIR}/cmake/HarrowbyInventory/HarrowbyPostgresTargets.cmake)
    foreach(file include/harrowby/postgres_connection.h include/harrowby/postgres_export.h ${LIBDIR}/libharrowby-postgres.so
            ${LIBDIR}/libharrowby-postgres.so.${VERSION})
        if(NOT EXISTS ${prefix}/${file})
            message(FATAL_ERROR "Not installed: ${file}")
        endif()
    endforeach()
endif()

# The report lies where the library looks for it, and finds the library from there.
if(EXISTS ${prefix}/${LIBDIR}/harrowby/plugins/harrowby-report.so)
    if(NOT EXISTS ${prefix}/${LIBDIR}/harrowby/plugins/harrowby-report.README.md)
        message(FATAL_ERROR "The report is installed without the words on its licence")
    endif()
    execute_process(COMMAND ldd ${prefix}/${LIBDIR}/harrowby/plugins/harrowby-report.so
        OUTPUT_VARIABLE needed COMMAND_ERROR_IS_FATAL ANY)
    string(FIND "${needed}" "${prefix}/${LIBDIR}/harrowby/plugins/../../libharrowby-inventory.so" beside)
    if(beside EQUAL -1 OR needed MATCHES "not found")
        message(FATAL_ERROR "The report does not find the installed library:\n${needed}")
    endif()
endif()

file(GLOB package_files ${prefix}/${LIBDIR}/cmake/HarrowbyInventory/*.cmake)
foreach(file ${package_files})
    file(READ ${file} text)
    string(FIND "${text}" "${BUILD_DIR}" mentions_build)
    if(NOT mentions_build EQUAL -1 OR text MATCHES "harrowby_(basic|store|postgres_core|platform|ui|slot|build)")
        message(FATAL_ERROR "The installed package leans on the build tree: ${file}")
    endif()
endforeach()

run(${CMAKE_COMMAND} -S ${CONSUMER_DIR} -B ${consumer_build} -G ${GENERATOR}
    -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_COMPILER=${CXX_COMPILER} -DCMAKE_PREFIX_PATH=${prefix})
run(${CMAKE_COMMAND} --build ${consumer_build})
run(${consumer_build}/consumer)
if(EXISTS ${prefix}/include/harrowby/postgres_connection.h)
    run(${consumer_build}/server_consumer)
endif()

# The installed program finds the installed library.
if(EXISTS ${prefix}/bin/harrowby)
    execute_process(COMMAND ${prefix}/bin/harrowby --version OUTPUT_VARIABLE version COMMAND_ERROR_IS_FATAL ANY)
    if(NOT version STREQUAL "harrowby ${VERSION}\n")
        message(FATAL_ERROR "The program calls itself ${version}")
    endif()
endif()
