# script/build works on after a clone with a build folder was moved, and after a preset has got another compiler. The project
# that is built is a small one.
file(REMOVE_RECURSE ${WORK_DIR})
foreach(place first second)
    set(clone ${WORK_DIR}/${place})
    if(place STREQUAL "first")
        file(COPY ${SOURCE_DIR}/script/build DESTINATION ${clone}/script)
        file(WRITE ${clone}/CMakePresets.json
            [[{"version": 6, "configurePresets": [{"name": "small", "generator": "Ninja", "binaryDir": "${sourceDir}/build/small"}]}]])
        file(WRITE ${clone}/CMakeLists.txt [[
cmake_minimum_required(VERSION 3.25)
project(Small LANGUAGES NONE)
add_custom_command(OUTPUT made DEPENDS ${PROJECT_SOURCE_DIR}/source
    COMMAND ${CMAKE_COMMAND} -E copy ${PROJECT_SOURCE_DIR}/source made)
add_custom_target(small ALL DEPENDS made)
]])
    else()
        file(RENAME ${WORK_DIR}/first ${clone})
    endif()
    file(WRITE ${clone}/source ${place})
    execute_process(COMMAND ${clone}/script/build small RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
    if(result EQUAL 0)
        file(READ ${clone}/build/small/made made)
    endif()
    if(NOT made STREQUAL place)
        message(FATAL_ERROR "Not built at the ${place} place (${result}):\n${output}")
    endif()
endforeach()

# A compiler that is only a name for the one that there is.
file(CREATE_LINK ${CXX} ${clone}/another SYMBOLIC)
file(WRITE ${clone}/CMakeLists.txt "cmake_minimum_required(VERSION 3.25)\nproject(Small LANGUAGES CXX)\nadd_custom_target(small ALL)\n")
foreach(compiler ${CXX} ${clone}/another)
    file(WRITE ${clone}/CMakePresets.json "{\"version\": 6, \"configurePresets\": [{\"name\": \"small\", \"generator\": \"Ninja\",
        \"binaryDir\": \"\${sourceDir}/build/small\", \"cacheVariables\": {\"CMAKE_CXX_COMPILER\": \"${compiler}\", \"KEPT\": \"ON\"}}]}")
    execute_process(COMMAND touch -d "1 minute" ${clone}/CMakePresets.json)
    execute_process(COMMAND ${clone}/script/build small RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
    unset(KEPT)
    load_cache(${clone}/build/small READ_WITH_PREFIX "" KEPT CMAKE_CXX_COMPILER)
    if(NOT result EQUAL 0 OR NOT KEPT OR NOT CMAKE_CXX_COMPILER STREQUAL compiler)
        message(FATAL_ERROR "Of the preset with ${compiler} (${result}) only: '${KEPT}' '${CMAKE_CXX_COMPILER}'\n${output}")
    endif()
endforeach()
