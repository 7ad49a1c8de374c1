# Has moc read the file that it was given alone. With the include paths it reads Qt's headers, too, each time: that takes
# fifty times as long, and it writes the same but for what repeats the types of arguments that are known by then. No class
# of ours has its signals, slots or properties behind a macro of another header. Plugins do: what they implement is
# declared in one. The builds without HARROWBY_PCH know moc as it is.
get_target_property(HARROWBY_MOC Qt6::moc IMPORTED_LOCATION)
configure_file(cmake/moc_alone.sh.in moc_alone.sh @ONLY)

function(harrowby_quick_moc directory)
    get_property(targets DIRECTORY ${directory} PROPERTY BUILDSYSTEM_TARGETS)
    foreach(target ${targets})
        get_target_property(type ${target} TYPE)
        if(NOT type STREQUAL "MODULE_LIBRARY")
            set_target_properties(${target} PROPERTIES AUTOMOC_EXECUTABLE ${PROJECT_BINARY_DIR}/moc_alone.sh)
        endif()
    endforeach()
    get_property(subdirectories DIRECTORY ${directory} PROPERTY SUBDIRECTORIES)
    foreach(subdirectory ${subdirectories})
        harrowby_quick_moc(${subdirectory})
    endforeach()
endfunction()
harrowby_quick_moc(${PROJECT_SOURCE_DIR})
