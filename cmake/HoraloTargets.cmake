# Warnings are errors for our own code only; system headers (Qt, ICU) are included as such.
function(horalo_warnings target)
    target_compile_options(${target} PRIVATE
        -Wall -Wextra -Wpedantic -Werror -Wshadow -Wimplicit-fallthrough
        $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor -Woverloaded-virtual>)
    target_compile_definitions(${target} PRIVATE
        QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_KEYWORDS QT_NO_FOREACH)
endfunction()

# One static library per subsystem, linked by the application, the tests and the benchmarks.
#
# A library's include directory holds links to its own headers only, under their paths below
# src/ ("datetext/DateText.h"). Code therefore sees the headers of the libraries it links and
# no others: a lower room that includes a higher one, or a header left out of every source
# list, fails to compile instead of coupling the rooms quietly.
function(horalo_library name)
    cmake_parse_arguments(ARG "" "" "SOURCES;PUBLIC;PRIVATE" ${ARGN})
    add_library(${name} STATIC ${ARG_SOURCES})
    set(include_root ${PROJECT_BINARY_DIR}/include/${name})
    file(REMOVE_RECURSE ${include_root})
    foreach(source IN LISTS ARG_SOURCES)
        get_filename_component(path ${source} ABSOLUTE BASE_DIR ${CMAKE_CURRENT_SOURCE_DIR})
        if(path MATCHES "\\.h$" AND path MATCHES "^${PROJECT_SOURCE_DIR}/src/")
            file(RELATIVE_PATH relative ${PROJECT_SOURCE_DIR}/src ${path})
            get_filename_component(directory ${include_root}/${relative} DIRECTORY)
            file(MAKE_DIRECTORY ${directory})
            file(CREATE_LINK ${path} ${include_root}/${relative} SYMBOLIC)
        endif()
    endforeach()
    target_include_directories(${name} PUBLIC ${include_root})
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
