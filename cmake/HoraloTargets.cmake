# Warnings are errors for our own code only; system headers (Qt, ICU) are included as such.
function(horalo_warnings target)
    target_compile_options(${target} PRIVATE
        -Wall -Wextra -Wpedantic -Werror -Wshadow -Wimplicit-fallthrough
        $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor -Woverloaded-virtual>)
    target_compile_definitions(${target} PRIVATE
        QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_KEYWORDS QT_NO_FOREACH)
endfunction()

# One static library per subsystem, linked by the application, the tests and the benchmarks.
function(horalo_library name)
    cmake_parse_arguments(ARG "" "" "SOURCES;PUBLIC;PRIVATE" ${ARGN})
    add_library(${name} STATIC ${ARG_SOURCES})
    target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(${name} PUBLIC ${ARG_PUBLIC} PRIVATE ${ARG_PRIVATE})
    horalo_warnings(${name})
endfunction()

# A test executable registered with CTest. Every test runs with a pinned locale and zone, its own
# empty configuration directory and no session bus unless it asks for one, so nothing leaks in
# from the developer's desktop.
function(horalo_test name)
    cmake_parse_arguments(ARG "DBUS" "" "SOURCES;LIBS;ENV" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    target_link_libraries(${name} PRIVATE ${ARG_LIBS} GTest::gtest GTest::gtest_main GTest::gmock)
    target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
    horalo_warnings(${name})
    set(env
        "LANG=en_US.UTF-8" "LC_ALL=" "LC_TIME=" "TZ=America/New_York"
        "QT_QPA_PLATFORM=offscreen"
        "HORALO_TEST_TMP=${CMAKE_CURRENT_BINARY_DIR}/${name}.tmp"
        ${ARG_ENV})
    if(ARG_DBUS)
        add_test(NAME ${name} COMMAND dbus-run-session -- $<TARGET_FILE:${name}>)
    else()
        list(APPEND env "DBUS_SESSION_BUS_ADDRESS=disabled:")
        add_test(NAME ${name} COMMAND ${name})
    endif()
    set_tests_properties(${name} PROPERTIES ENVIRONMENT "${env}" TIMEOUT 300)
endfunction()
