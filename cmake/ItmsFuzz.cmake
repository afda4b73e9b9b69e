# For fuzzers, all of our code is built with the sanitizers, and instrumented so that libFuzzer sees which branches
# are taken. Included before any target is made.
if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    message(FATAL_ERROR "ITMS_BUILD_FUZZ needs clang: configure with -DCMAKE_CXX_COMPILER=clang++")
endif()
add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
add_link_options(-fsanitize=address,undefined)

# itms_fuzzer(bench SOURCES bench_fuzzer.cpp LINK itms_netlist ...) makes the program itms_fuzz_bench.
function(itms_fuzzer name)
    cmake_parse_arguments(PARSE_ARGV 1 fuzzer "" "" "SOURCES;LINK")
    if(fuzzer_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR "itms_fuzzer(${name}): what is ${fuzzer_UNPARSED_ARGUMENTS}?")
    endif()
    add_executable(itms_fuzz_${name} ${fuzzer_SOURCES})
    target_include_directories(itms_fuzz_${name} PRIVATE "${PROJECT_SOURCE_DIR}")
    target_link_libraries(itms_fuzz_${name} PRIVATE ${fuzzer_LINK})
    target_link_options(itms_fuzz_${name} PRIVATE -fsanitize=fuzzer)
    itms_our_code(itms_fuzz_${name})
endfunction()
