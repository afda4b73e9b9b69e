# How a folder of tests becomes a test program.
include(GoogleTest)

# itms_tests(model SOURCES keys.cpp ... [LINK itms_language ...] [TIMEOUT seconds] [PROGRAM] [OPTIMISED])
#
# Makes the program itms_tests_model of the current folder and registers each of its tests with CTest, as
# model.Suite.name, each in a process of its own. Tests include from the root: "model/Atom.h",
# "tests/support/...". ITMS_ROOT is the root's path; with PROGRAM, for tests that run the program, ITMS_PROGRAM is
# its path. OPTIMISED is for tests that compute much themselves, such as the answers of a reference.
# The tests are listed when CTest starts, not when the program is built, so that a program that cannot start is
# a failed test run and not a failed build.
function(itms_tests name)
    cmake_parse_arguments(PARSE_ARGV 1 tests "PROGRAM;OPTIMISED" "TIMEOUT" "SOURCES;LINK")
    if(tests_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR "itms_tests(${name}): what is ${tests_UNPARSED_ARGUMENTS}?")
    endif()
    if(NOT tests_TIMEOUT)
        set(tests_TIMEOUT 120)
    endif()
    add_executable(itms_tests_${name} ${tests_SOURCES})
    target_include_directories(itms_tests_${name} PRIVATE "${PROJECT_SOURCE_DIR}")
    target_compile_definitions(itms_tests_${name} PRIVATE ITMS_ROOT="${PROJECT_SOURCE_DIR}")
    if(tests_PROGRAM)
        target_compile_definitions(itms_tests_${name} PRIVATE ITMS_PROGRAM="$<TARGET_FILE:itms_program>")
        add_dependencies(itms_tests_${name} itms_program)
    endif()
    target_link_libraries(itms_tests_${name} PRIVATE
        ${tests_LINK} itms_test_support itms::itms GTest::gmock GTest::gtest GTest::gtest_main)
    itms_our_code(itms_tests_${name})
    # What is tested is optimised as elsewhere; without optimisation the tests themselves compile in half the time.
    if(NOT tests_OPTIMISED)
        target_compile_options(itms_tests_${name} PRIVATE $<$<CONFIG:Debug>:-O0> $<$<CONFIG:Release>:-O1>)
    endif()
    gtest_discover_tests(itms_tests_${name}
        TEST_PREFIX "${name}."
        WORKING_DIRECTORY "${PROJECT_SOURCE_DIR}"
        DISCOVERY_MODE PRE_TEST
        DISCOVERY_TIMEOUT 60
        PROPERTIES TIMEOUT ${tests_TIMEOUT} LABELS ${name})
endfunction()
