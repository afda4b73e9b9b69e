#!/usr/bin/env bash
source "$(dirname "$0")/expect.sh"
check="$1/check-sources.sh"

put model/Atom.h <<<''
put model/Atom.cpp <<<''
put model/CMakeLists.txt <<<'itms_library_folder(model HEADERS Atom.h
    SOURCES Atom.cpp)'
put language/syntax/Parser.h <<<'// headers of the toolkit are not installed, and need not be listed'
put monitor/step/Judge.cpp <<<''
put monitor/CMakeLists.txt <<<'itms_toolkit_folder(monitor SOURCES step/Judge.cpp)'
put tests/model/AtomTest.cpp <<<''
put tests/model/CMakeLists.txt <<<'itms_tests(model SOURCES "AtomTest.cpp")'
put examples/lamp.cpp <<<''
put tests/docs/CMakeLists.txt <<<'add_executable(lamp "${PROJECT_SOURCE_DIR}/examples/lamp.cpp")'
expect 0 '' "$check" "$tree"

put model/keys.h <<<''
put model/tom.cpp <<<''
put model/State.cpp <<<''
echo '# State.cpp comes later' >>"$tree/model/CMakeLists.txt"
put tests/engine/SearchTest.cpp <<<''
put examples/amp.cpp <<<''
put monitor/track/Judge.cpp <<<''
expect 1 'examples/amp.cpp: no CMakeLists.txt in its folder
model/State.cpp: not in model/CMakeLists.txt
model/keys.h: not in model/CMakeLists.txt
model/tom.cpp: not in model/CMakeLists.txt
monitor/track/Judge.cpp: not in monitor/CMakeLists.txt
tests/engine/SearchTest.cpp: no CMakeLists.txt in its folder' "$check" "$tree"
finish
