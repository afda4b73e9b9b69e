#!/usr/bin/env bash
# Installs a build of itms into a new folder, moves that folder, and builds and runs the consumer against it:
# through the CMake package, and through pkg-config with the compiler alone.
#
#   run.sh CMAKE BUILD WORK CXX LIBDIR [FLAG...]
#
# BUILD is the build tree to install, WORK a folder that is emptied, LIBDIR the library folder below the
# prefix, FLAGs are the compiler's flags of the build (the sanitizers' among them).
set -euo pipefail
cmake="$1" build="$2" work="$3" cxx="$4" libdir="$5"
shift 5
here="$(cd "$(dirname "$0")" && pwd)"

rm -rf "$work"
mkdir -p "$work"
"$cmake" --install "$build" --prefix "$work/first" >"$work/install.log"
mv "$work/first" "$work/moved"
prefix="$work/moved"

# What is installed names neither the tree it came from nor the folder it was first put in.
source_root="$(cd "$here/../.." && pwd)"
if grep -rlF -e "$source_root/" -e "$work/first" "$prefix/$libdir/cmake" "$prefix/$libdir/pkgconfig"; then
    echo 'run.sh: these installed files name a path of the build' >&2
    exit 1
fi

same() { # EXPECTED GOT HOW
    if ! diff -u "$here/$1" "$2"; then
        echo "run.sh: the consumer built $3 printed something else" >&2
        exit 1
    fi
}
export LD_LIBRARY_PATH="$prefix/$libdir${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH}"

"$cmake" -S "$here" -B "$work/package" -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_CXX_COMPILER="$cxx" \
    -DCMAKE_CXX_FLAGS="$*" -DCMAKE_FIND_USE_PACKAGE_REGISTRY=OFF >"$work/package.log" 2>&1 ||
    { cat "$work/package.log"; exit 1; }
"$cmake" --build "$work/package" >>"$work/package.log" 2>&1 || { cat "$work/package.log"; exit 1; }
"$work/package/consumer" >"$work/package.out"
same expected.txt "$work/package.out" 'with find_package'
# The second program is there when the toolkit was installed, too.
if [ -e "$prefix/$libdir/cmake/itms/itms-session-targets.cmake" ]; then
    "$work/package/follower" >"$work/follower.out"
    same expected-follower.txt "$work/follower.out" 'on itms::session'
fi

export PKG_CONFIG_PATH="$prefix/$libdir/pkgconfig"
read -ra compile <<<"$(pkg-config --cflags itms)"
read -ra link <<<"$(pkg-config --libs itms)"
# An embedder's warnings reach our headers here, which find_package would have hidden as system headers.
"$cxx" -std=c++20 -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror "$@" "${compile[@]}" -o "$work/by-hand" "$here/main.cpp" "${link[@]}"
"$work/by-hand" >"$work/by-hand.out"
same expected.txt "$work/by-hand.out" 'with pkg-config'
