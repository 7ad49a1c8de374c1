# Breaks each rule of layers.cmake once, in a small tree, and expects it to say so.
cmake_minimum_required(VERSION 3.25)

set(table [=[
| room | what is in it | rooms it may use | public headers | modules of Qt | libraries |
|---|---|---|---|---|---|
| `src/low` | texts | - | value | Core | - |
| `src/window` | the window | low | value | Core, Widgets | system |
| `app/shop` | the program | low | all | Core | sqlite3 |
| `app` | what puts it together | low, app/shop | - | all | - |
| `include/harrowby` | what a host sees | - | all | Core | - |
]=])
set(drawing "    window --> low\n    app --> app_shop\n    app_shop --> low\n")

# Writes the tree anew; further arguments are pairs of a file and its text, which replace what stands there.
function(make_tree)
    file(REMOVE_RECURSE ${WORK_DIR})
    foreach(room src/low src/window app/shop app include/harrowby)
        file(WRITE ${WORK_DIR}/${room}/README.md "A room.\n")
    endforeach()
    file(WRITE ${WORK_DIR}/ARCHITECTURE.md "${table}\n${drawing}")
    file(WRITE ${WORK_DIR}/include/harrowby/value.h "#include <QString>\n")
    file(WRITE ${WORK_DIR}/include/harrowby/other.h "#include <harrowby/value.h>\n#include <harrowby/export.h>\n")
    file(WRITE ${WORK_DIR}/src/low/text.h "#include <harrowby/value.h>\n#include <QString>\n#include <memory>\n")
    file(WRITE ${WORK_DIR}/src/low/text.cpp "#include \"low/text.h\"\n")
    file(WRITE ${WORK_DIR}/src/window/parts/button.cpp
        "#include \"low/text.h\"\n  # include <QWidget>\n#include <unistd.h>\n#include \"button.moc\"\n")
    file(WRITE ${WORK_DIR}/app/shop/shop.h "#include \"low/text.h\"\n#include <sqlite3.h>\n#include <QtMath>\n")
    file(WRITE ${WORK_DIR}/app/main.cpp "#include \"app/shop/shop.h\"\n#include <QWidget>\n")
    while(ARGV)
        list(POP_FRONT ARGV path text)
        file(WRITE ${WORK_DIR}/${path} "${text}")
    endwhile()
endfunction()

function(run_check result output)
    execute_process(
        COMMAND ${CMAKE_COMMAND} -DSOURCE_DIR=${WORK_DIR} -DQT_HEADERS=${QT_HEADERS}
            -P ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/layers.cmake
        RESULT_VARIABLE code OUTPUT_VARIABLE text ERROR_VARIABLE text)
    set(${result} "${code}" PARENT_SCOPE)
    set(${output} "${text}" PARENT_SCOPE)
endfunction()

# The tree with this file must be refused with these words.
function(expect_refusal words path text)
    make_tree("${path}" "${text}")
    run_check(code output)
    string(REGEX REPLACE "[ \n]+" " " output "${output}") # messages are wrapped
    string(FIND "${output}" "${words}" place)
    if(code EQUAL 0 OR place EQUAL -1)
        message(SEND_ERROR "${path} with\n${text}\nought to be refused with \"${words}\", but:\n${output}")
    endif()
endfunction()

make_tree()
file(APPEND ${WORK_DIR}/ARCHITECTURE.md "\n| `src/last` | what a [list] stumbles over; and more | - | - | - | - |\n")
file(WRITE ${WORK_DIR}/src/last/README.md "A room.\n")
run_check(code output)
if(NOT code EQUAL 0)
    message(SEND_ERROR "The sound tree is refused:\n${output}")
endif()

expect_refusal("low may not use window" src/low/text.cpp "#include \"window/parts/button.h\"\n")
expect_refusal("app/shop may not use app" app/shop/shop.h "#include \"app/main.h\"\n")
expect_refusal("an include carries its room's name" src/low/text.cpp "#include \"text.h\"\n")
expect_refusal("an include carries its room's name" src/low/text.cpp "#include \"../window/x.h\"\n")
expect_refusal("an include carries its room's name" src/low/text.cpp "#include \"harrowby/value.h\"\n")
expect_refusal("our own code is included in quotes" src/window/a.h "#include <low/text.h>\n")
expect_refusal("only headers are included" src/window/a.h "#include \"low/text.cpp\"\n")
expect_refusal("only headers are included" src/low/text.cpp "#include \"other.moc\"\n")
expect_refusal("low may not use this public header" src/low/text.cpp "#include <harrowby/other.h>\n")
expect_refusal("there is no such public header" src/low/text.cpp "#include <harrowby/gone.h>\n")
expect_refusal("include/harrowby may not use low" include/harrowby/value.h "#include \"low/text.h\"\n")
expect_refusal("low may not use Qt Widgets" src/low/text.cpp "#include <QWidget>\n")
expect_refusal("low may not use Qt Gui" src/low/text.cpp "#include <QtGui/QPainter>\n")
expect_refusal("no known module of Qt has it" src/low/text.cpp "#include <QNowhere>\n")
expect_refusal("low may not use sqlite3" src/low/text.cpp "#include <sqlite3.h>\n")
expect_refusal("low may not use libpq" src/low/text.cpp "#include <libpq-fe.h>\n")
expect_refusal("window may not use xcb" src/window/a.h "#include <xcb/xcb.h>\n")
expect_refusal("low may not use system" src/low/text.cpp "#include <sys/stat.h>\n")
expect_refusal("neither" src/low/text.cpp "#include HEADER\n")
expect_refusal("stands in no room of the table" app/attic/a.h "#include <QString>\n")

string(REPLACE "| `src/low` | texts | - |" "| `src/low` | texts | window |" upward "${table}")
expect_refusal("low uses window, which does not stand above it" ARCHITECTURE.md "${upward}\n${drawing}")
expect_refusal("window --> app/shop is drawn, but not in the table"
    ARCHITECTURE.md "${table}\n${drawing}    window --> app_shop\n")
expect_refusal("no arrow leads from window to low" ARCHITECTURE.md "${table}\n    app --> app_shop\n    app_shop --> low\n")
make_tree()
file(REMOVE ${WORK_DIR}/app/shop/README.md)
run_check(code output)
if(NOT output MATCHES "app/shop: no README.md")
    message(SEND_ERROR "A room without a README is not noticed:\n${output}")
endif()
