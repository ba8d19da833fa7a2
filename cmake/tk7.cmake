# Compiler settings that every target of the project shares.
add_library(tk7_options INTERFACE)
target_compile_definitions(tk7_options INTERFACE
    QT_NO_CAST_FROM_BYTEARRAY QT_NO_URL_CAST_FROM_STRING
    QT_DEPRECATED_WARNINGS QT_USE_QSTRINGBUILDER)
if(NOT MSVC)
    target_compile_options(tk7_options INTERFACE
        -Wall -Wextra -Wpedantic -Wshadow -Wconversion $<$<BOOL:${TK7_WERROR}>:-Werror>)
endif()
if(TK7_SANITIZE)
    target_compile_options(tk7_options INTERFACE
        -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
    target_link_options(tk7_options INTERFACE -fsanitize=address,undefined)
endif()

# tk7_add_library(NAME sources... LINK libs...): a room of the house as a static library.
# Its headers are included by the room's name: #include "link/nmeaserialport.h".
function(tk7_add_library name)
    cmake_parse_arguments(arg "" "INCLUDE" "LINK" ${ARGN})
    add_library(${name} STATIC ${arg_UNPARSED_ARGUMENTS})
    if(NOT arg_INCLUDE)
        set(arg_INCLUDE ${PROJECT_SOURCE_DIR}/src)
    endif()
    target_include_directories(${name} PUBLIC ${arg_INCLUDE})
    target_link_libraries(${name} PUBLIC ${arg_LINK} PRIVATE tk7_options)
endfunction()

# tk7_windows_properties(NAME DESCRIPTION): icon and version in the properties of a program for Windows.
function(tk7_windows_properties name description)
    if(NOT WIN32)
        return()
    endif()
    enable_language(RC)
    configure_file(${PROJECT_SOURCE_DIR}/packaging/windows/program.rc.in ${name}.rc @ONLY)
    target_sources(${name} PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/${name}.rc)
endfunction()

# A runtime folder of the tests' own, as the desktop session has one.
set(TK7_TEST_RUNTIME ${CMAKE_BINARY_DIR}/test-runtime)
file(MAKE_DIRECTORY ${TK7_TEST_RUNTIME})
if(UNIX)
    execute_process(COMMAND chmod 700 ${TK7_TEST_RUNTIME})
endif()

# What every test is started with; a resolution belongs to it. The tool scales itself, and its main()
# tells Qt not to.
set(TK7_TEST_ENVIRONMENT
    QT_QPA_PLATFORM=offscreen QT_ENABLE_HIGHDPI_SCALING=0 XDG_RUNTIME_DIR=${TK7_TEST_RUNTIME})

# The places that a test takes which computes all the time: those of a processor, which script/test
# gives to as many tests that wait. The sanitizers let all of them compute.
set(TK7_BUSY_PLACES 5)
if(TK7_SANITIZE)
    set(TK7_BUSY_PLACES 2)
endif()

# tk7_add_test(NAME sources... LINK libs... TIMEOUT seconds COST seconds LABELS labels...): one QtTest
# program. The limit is for a hanging one on a crowded machine; by itself no test needs more than a
# minute. The cost is about the time that it takes, if that is long: the longest start first, so that
# none of them is left alone in the end.
# With APART each of its functions is a test of its own, so that they run side by side: those that
# the first source declares, one a line. BUSY is a test that computes all the time.
function(tk7_add_test name)
    cmake_parse_arguments(arg "APART;BUSY" "TIMEOUT;COST" "LINK;LABELS" ${ARGN})
    add_executable(${name} ${arg_UNPARSED_ARGUMENTS})
    target_link_libraries(${name} PRIVATE ${arg_LINK} Qt::Test tk7_options)
    if(TK7_SANITIZE)
        target_sources(${name} PRIVATE $<TARGET_OBJECTS:tk7_leak_check>)
    endif()
    set(tests ${name})
    if(arg_APART)
        list(GET arg_UNPARSED_ARGUMENTS 0 source)
        set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${source})
        file(STRINGS ${source} tests REGEX "^    void [A-Za-z0-9]+\\(\\);$")
        list(TRANSFORM tests REPLACE "^    void (.*)\\(\\);$" "${name}_\\1")
        foreach(test IN LISTS tests)
            string(REPLACE "${name}_" "" function ${test})
            add_test(NAME ${test} COMMAND ${name} ${function})
        endforeach()
    else()
        add_test(NAME ${name} COMMAND ${name})
    endif()
    if(NOT arg_TIMEOUT)
        set(arg_TIMEOUT 120)
    endif()
    if(TK7_SANITIZE)
        math(EXPR arg_TIMEOUT "3 * ${arg_TIMEOUT}")
    endif()
    set_tests_properties(${tests} PROPERTIES
        TIMEOUT ${arg_TIMEOUT}
        ENVIRONMENT "${TK7_TEST_ENVIRONMENT};QT_FONT_DPI=96"
        LABELS "${arg_LABELS}")
    if(arg_COST)
        set_tests_properties(${tests} PROPERTIES COST ${arg_COST})
    endif()
    if(arg_BUSY)
        set_tests_properties(${tests} PROPERTIES PROCESSORS ${TK7_BUSY_PLACES})
    endif()
endfunction()
