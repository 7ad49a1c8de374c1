# Empties the folder below which the tests keep their homes.
if(NOT HOMES MATCHES "/tests/homes$")
    message(FATAL_ERROR "Not a folder of test homes: '${HOMES}'")
endif()
file(REMOVE_RECURSE ${HOMES})
file(MAKE_DIRECTORY ${HOMES} ${HOMES}/runtime)
file(CHMOD ${HOMES}/runtime PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)
