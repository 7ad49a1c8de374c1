# Compiles the headers that most files include once: Qt's core for targets without a window, and with windows for those
# that link Qt6::Widgets. So a room without a window cannot come to see one. Only what many files take is in the lists: each
# header more makes every single compilation slower (an empty file took twice the time with all of QtWidgets). What is
# compiled with other options, as the tests and the rooms without a window may be, needs headers that were precompiled with
# them.
set(harrowby_core_headers
    <QByteArray> <QCoreApplication> <QDateTime> <QDir> <QElapsedTimer> <QFile> <QFileInfo> <QHash> <QList> <QLocale>
    <QLoggingCategory> <QPointer> <QRegularExpression> <QStandardPaths> <QString> <QStringList> <QTimer> <QVariant>
    <algorithm> <array> <chrono> <cmath> <functional> <limits> <memory> <optional> <stdexcept> <string> <utility>
    <variant> <vector>)
set(harrowby_window_headers
    <QAbstractButton> <QApplication> <QBoxLayout> <QCheckBox> <QComboBox> <QDialog> <QFrame> <QGridLayout> <QKeyEvent>
    <QLabel> <QLineEdit> <QListWidget> <QMainWindow> <QMessageBox> <QPainter> <QPushButton> <QScreen> <QScrollArea>
    <QScrollBar> <QStyle> <QTabBar> <QTreeView> <QWidget>)

# harrowby_precompile(PREFIX OPTIONS CORE_OPTIONS)
function(harrowby_precompile prefix options core_options)
    set(window_options)
    foreach(kind core window)
        add_library(${prefix}_${kind}_pch OBJECT ${PROJECT_SOURCE_DIR}/cmake/precompiled.cpp)
        set_target_properties(${prefix}_${kind}_pch PROPERTIES AUTOMOC OFF)
        target_compile_options(${prefix}_${kind}_pch PRIVATE ${options} ${${kind}_options})
        target_precompile_headers(${prefix}_${kind}_pch PRIVATE ${harrowby_core_headers})
    endforeach()
    target_link_libraries(${prefix}_core_pch PRIVATE harrowby_build Qt6::Core)
    target_link_libraries(${prefix}_window_pch PRIVATE harrowby_build Qt6::Widgets)
    target_precompile_headers(${prefix}_window_pch PRIVATE ${harrowby_window_headers})
endfunction()
harrowby_precompile(harrowby "" "${HARROWBY_CORE_OPTIONS}")
if(HARROWBY_BUILD_TESTS AND HARROWBY_TEST_OPTIONS)
    set(WITHIN_HARROWBY_OF_TESTS ON)
    harrowby_precompile(harrowby_tests "${HARROWBY_TEST_OPTIONS}" "")
    unset(WITHIN_HARROWBY_OF_TESTS)
endif()

# Whether a target's sources may include windows: it links Qt6::Widgets, or a library of ours that hands it on. The word
# OWN asks for what the target links itself, privately too.
function(harrowby_sees_windows target result)
    if(target STREQUAL "Qt6::Widgets")
        set(${result} TRUE PARENT_SCOPE)
        return()
    endif()
    set(libraries)
    if(TARGET ${target} AND (target MATCHES "^[Hh]arrowby" OR ARGN))
        set(property INTERFACE_LINK_LIBRARIES)
        if(ARGN)
            set(property LINK_LIBRARIES)
        endif()
        get_target_property(libraries ${target} ${property})
    endif()
    foreach(library IN LISTS libraries)
        harrowby_sees_windows("${library}" sees)
        if(sees)
            set(${result} TRUE PARENT_SCOPE)
            return()
        endif()
    endforeach()
    set(${result} FALSE PARENT_SCOPE)
endfunction()

function(harrowby_reuse_precompiled directory prefix)
    if(directory STREQUAL ${PROJECT_SOURCE_DIR}/tests AND HARROWBY_TEST_OPTIONS)
        set(prefix harrowby_tests)
    endif()
    get_property(targets DIRECTORY ${directory} PROPERTY BUILDSYSTEM_TARGETS)
    foreach(target ${targets})
        get_target_property(type ${target} TYPE)
        if(NOT type MATCHES "^(STATIC_LIBRARY|SHARED_LIBRARY|EXECUTABLE)$")
            continue()
        endif()
        harrowby_sees_windows(${target} windows OWN)
        if(windows)
            target_precompile_headers(${target} REUSE_FROM ${prefix}_window_pch)
        else()
            target_precompile_headers(${target} REUSE_FROM ${prefix}_core_pch)
            if(prefix STREQUAL harrowby)
                target_compile_options(${target} PRIVATE ${HARROWBY_CORE_OPTIONS})
            endif()
        endif()
    endforeach()
    get_property(subdirectories DIRECTORY ${directory} PROPERTY SUBDIRECTORIES)
    foreach(subdirectory ${subdirectories})
        harrowby_reuse_precompiled(${subdirectory} ${prefix})
    endforeach()
endfunction()
harrowby_reuse_precompiled(${PROJECT_SOURCE_DIR} harrowby)
