# Headers of other people's libraries that most units include, parsed once a build instead of once a unit. Our own headers
# are not among them: a change to one of those would compile everything anew. A unit still includes what it uses; the
# lint preset compiles without this and sees to it.
option(ITMS_PRECOMPILE "Precompile the headers of other libraries" ON)

# itms_precompiled_headers(toolkit HEADERS <string> ... LINK fmt::fmt ... [OPTIONS -O0])
#
# Makes the target itms_precompiled_toolkit. What reuses it has to be compiled with the same options and definitions, as
# far as these headers see them.
function(itms_precompiled_headers name)
    cmake_parse_arguments(PARSE_ARGV 1 precompiled "" "" "HEADERS;LINK;OPTIONS")
    if(NOT ITMS_PRECOMPILE)
        return()
    endif()
    file(CONFIGURE OUTPUT "${PROJECT_BINARY_DIR}/precompiled.cpp" CONTENT "")
    add_library(itms_precompiled_${name} OBJECT "${PROJECT_BINARY_DIR}/precompiled.cpp")
    target_precompile_headers(itms_precompiled_${name} PRIVATE ${precompiled_HEADERS})
    target_link_libraries(itms_precompiled_${name} PRIVATE ${precompiled_LINK})
    itms_our_code(itms_precompiled_${name})
    target_compile_options(itms_precompiled_${name} PRIVATE ${precompiled_OPTIONS})
endfunction()

# Lets a target use them.
function(itms_use_precompiled target name)
    if(ITMS_PRECOMPILE)
        target_precompile_headers(${target} REUSE_FROM itms_precompiled_${name})
    endif()
endfunction()
