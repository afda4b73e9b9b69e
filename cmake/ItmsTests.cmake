# How a folder of tests becomes a test program.

# The presets share the work: each folder of tests is built and run where it tells most.
set(ITMS_TEST_FOLDERS all CACHE STRING "Folders of tests to build and run: a list of them, or all")

# Whether the folder of tests/ is one of those.
function(itms_wants_tests folder result)
    set(${result} OFF PARENT_SCOPE)
    if(ITMS_TEST_FOLDERS STREQUAL "all" OR folder IN_LIST ITMS_TEST_FOLDERS)
        set(${result} ON PARENT_SCOPE)
    endif()
endfunction()

# Adds the folder then.
function(itms_add_test_folder folder)
    itms_wants_tests(${folder} wanted)
    if(wanted)
        add_subdirectory(${folder})
    endif()
endfunction()

itms_precompiled_headers(tests
    HEADERS <gmock/gmock.h> <gtest/gtest.h> <nlohmann/json.hpp>
    LINK GTest::gmock GTest::gtest nlohmann_json::nlohmann_json
    OPTIONS $<$<CONFIG:Debug,Release>:-O0>)

# itms_tests(model SOURCES keys.cpp ... [LINK itms_language ...] [SHARDS 4] [TIMEOUT seconds] [PROGRAM] [OPTIMISED] [WHOLE_RUNS])
#
# Makes the program itms_tests_model of the current folder and registers it with CTest as model, or as that many SHARDS,
# which run side by side: model.1, model.2 ... Tests include from the root: "model/Atom.h", "tests/support/...".
# ITMS_ROOT is the root's path, and with PROGRAM, for tests that run the program, ITMS_PROGRAM is its path.
# OPTIMISED is for tests that compute much themselves, such as the answers of a reference. WHOLE_RUNS is for those that
# run again, and at length, what other folders test: a frame of the stack that is used after its return is looked for
# there, which would take these up to twice as long.
function(itms_tests name)
    cmake_parse_arguments(PARSE_ARGV 1 tests "PROGRAM;OPTIMISED;WHOLE_RUNS" "SHARDS;TIMEOUT" "SOURCES;LINK")
    if(tests_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR "itms_tests(${name}): what is ${tests_UNPARSED_ARGUMENTS}?")
    endif()
    if(NOT tests_TIMEOUT)
        set(tests_TIMEOUT 3000)
    endif()
    set(target itms_tests_${name})
    add_executable(${target} ${tests_SOURCES})
    target_include_directories(${target} PRIVATE "${PROJECT_SOURCE_DIR}")
    target_compile_definitions(${target} PRIVATE ITMS_ROOT="${PROJECT_SOURCE_DIR}")
    if(tests_PROGRAM)
        target_compile_definitions(${target} PRIVATE ITMS_PROGRAM="$<TARGET_FILE:itms_program>")
        add_dependencies(${target} itms_program)
    endif()
    target_link_libraries(${target} PRIVATE
        ${tests_LINK} itms_test_support itms::itms GTest::gmock GTest::gtest GTest::gtest_main)
    itms_our_code(${target})
    # What is tested is optimised as elsewhere; without optimisation the tests themselves compile in half the time.
    if(NOT tests_OPTIMISED)
        target_compile_options(${target} PRIVATE $<$<CONFIG:Debug,Release>:-O0>)
        itms_use_precompiled(${target} tests)
    endif()

    set(shards 1)
    if(tests_SHARDS)
        set(shards ${tests_SHARDS})
    endif()
    foreach(shard RANGE 1 ${shards})
        set(test ${name})
        if(shards GREATER 1)
            set(test ${name}.${shard})
        endif()
        math(EXPR index "${shard} - 1")
        add_test(NAME ${test} COMMAND ${target} --gtest_brief=1 WORKING_DIRECTORY "${PROJECT_SOURCE_DIR}")
        set_tests_properties(${test} PROPERTIES LABELS ${name} TIMEOUT ${tests_TIMEOUT}
            ENVIRONMENT "GTEST_TOTAL_SHARDS=${shards};GTEST_SHARD_INDEX=${index}")
        if(NOT tests_WHOLE_RUNS)
            set_tests_properties(${test} PROPERTIES
                ENVIRONMENT_MODIFICATION "ASAN_OPTIONS=string_append::detect_stack_use_after_return=1")
        endif()
    endforeach()
endfunction()
