# How a folder becomes a target. Sources and headers are listed by name in the folder's CMakeLists.txt.

# Without optimisation a folder compiles in about two thirds of the time: for tests, where it computes little.
set(ITMS_UNOPTIMISED_FOLDERS "" CACHE STRING "Folders of the toolkit that are compiled without optimisation")

# The flags of our own code; they are not passed on to users of the library.
function(itms_our_code target)
    target_compile_options(${target} PRIVATE
        -Wall -Wextra -Wpedantic -Wshadow -Wconversion $<$<BOOL:${ITMS_WERROR}>:-Werror>)
    # When optimising, g++ 12 mistakes the sum of a literal and a std::string for an overlapping copy,
    # or for one without an end, the more so with precompiled headers.
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
        target_compile_options(${target} PRIVATE
            -Wno-restrict -Wno-stringop-overflow -Wno-stringop-overread -Wno-array-bounds)
    endif()
    # It takes the unnamed namespace of a file that is compiled together with others for that of a header.
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_UNITY_BUILD)
        target_compile_options(${target} PRIVATE -Wno-subobject-linkage)
    endif()
endfunction()

# Adds a folder from the list of folders, which determines the order, as soon as it contains something to build.
# scripts/check-sources.sh finds a folder that has sources but no CMakeLists.txt.
function(itms_add_folder folder)
    if(EXISTS "${CMAKE_CURRENT_SOURCE_DIR}/${folder}/CMakeLists.txt")
        add_subdirectory(${folder})
    endif()
endfunction()

# itms_library_folder(model HEADERS keys.h ... SOURCES Atom.cpp ...)
#
# Makes the object library itms_model of the current folder and adds its objects to libitms. HEADERS are
# installed; PRIVATE_HEADERS are listed for tools that read the target, and are not installed.
function(itms_library_folder name)
    cmake_parse_arguments(PARSE_ARGV 1 folder "" "" "HEADERS;PRIVATE_HEADERS;SOURCES")
    if(folder_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR "itms_library_folder(${name}): what is ${folder_UNPARSED_ARGUMENTS}?")
    endif()
    target_sources(itms PUBLIC FILE_SET HEADERS FILES ${folder_HEADERS})
    if(folder_SOURCES)
        add_library(itms_${name} OBJECT ${folder_SOURCES} ${folder_PRIVATE_HEADERS})
        target_include_directories(itms_${name} PRIVATE "${PROJECT_SOURCE_DIR}")
        set_target_properties(itms_${name} PROPERTIES POSITION_INDEPENDENT_CODE ${BUILD_SHARED_LIBS})
        itms_our_code(itms_${name})
        target_sources(itms PRIVATE $<TARGET_OBJECTS:itms_${name}>)
    endif()
endfunction()

# The flags of a target of the toolkit, and its precompiled headers.
function(itms_toolkit_code target folder)
    itms_our_code(${target})
    if(folder IN_LIST ITMS_UNOPTIMISED_FOLDERS)
        target_compile_options(${target} PRIVATE -O0)
        itms_use_precompiled(${target} unoptimised_toolkit)
    else()
        itms_use_precompiled(${target} toolkit)
    endif()
endfunction()

# itms_toolkit_folder(language HEADERS ... SOURCES ... LINK PUBLIC ... PRIVATE ...)
#
# Makes the static library itms_language of the current folder. LINK is passed to target_link_libraries unchanged; fmt and
# JSON are linked into every folder's. Where it is installed (ItmsInstall.cmake) it is itms::language, with its headers.
function(itms_toolkit_folder name)
    cmake_parse_arguments(PARSE_ARGV 1 folder "" "" "HEADERS;SOURCES;LINK")
    if(folder_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR "itms_toolkit_folder(${name}): what is ${folder_UNPARSED_ARGUMENTS}?")
    endif()
    add_library(itms_${name} STATIC ${folder_SOURCES})
    set_target_properties(itms_${name} PROPERTIES EXPORT_NAME ${name})
    target_sources(itms_${name} PUBLIC FILE_SET HEADERS BASE_DIRS "${PROJECT_SOURCE_DIR}" FILES ${folder_HEADERS})
    target_link_libraries(itms_${name} ${folder_LINK})
    target_link_libraries(itms_${name} PRIVATE fmt::fmt nlohmann_json::nlohmann_json)
    itms_toolkit_code(itms_${name} ${name})
endfunction()

# itms_program_folder(SOURCES main.cpp ... LINK PRIVATE itms_report ...)
#
# Makes the program of the current folder: the target itms_program, whose file is named itms. Its sources may
# read the version from ITMS_VERSION.
function(itms_program_folder)
    cmake_parse_arguments(PARSE_ARGV 0 folder "" "" "SOURCES;LINK")
    if(folder_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR "itms_program_folder: what is ${folder_UNPARSED_ARGUMENTS}?")
    endif()
    add_executable(itms_program ${folder_SOURCES})
    target_include_directories(itms_program PRIVATE "${PROJECT_SOURCE_DIR}")
    target_compile_definitions(itms_program PRIVATE ITMS_VERSION="${PROJECT_VERSION}")
    target_link_libraries(itms_program ${folder_LINK} fmt::fmt nlohmann_json::nlohmann_json)
    set_target_properties(itms_program PROPERTIES OUTPUT_NAME itms)
    itms_toolkit_code(itms_program app)
endfunction()

# itms_bench(search SOURCES ... [LINK itms_netlist ...])
#
# Makes the program itms_bench_search of the current folder, which `make bench` runs along with all others.
function(itms_bench name)
    cmake_parse_arguments(PARSE_ARGV 1 bench "" "" "SOURCES;LINK")
    if(bench_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR "itms_bench(${name}): what is ${bench_UNPARSED_ARGUMENTS}?")
    endif()
    add_executable(itms_bench_${name} "${PROJECT_SOURCE_DIR}/bench/main.cpp" ${bench_SOURCES})
    target_include_directories(itms_bench_${name} PRIVATE "${PROJECT_SOURCE_DIR}")
    target_compile_definitions(itms_bench_${name} PRIVATE ITMS_ROOT="${PROJECT_SOURCE_DIR}")
    target_link_libraries(itms_bench_${name} PRIVATE
        ${bench_LINK} itms::itms benchmark::benchmark)
    itms_our_code(itms_bench_${name})
endfunction()
