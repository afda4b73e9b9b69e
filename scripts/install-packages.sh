#!/usr/bin/env bash
# Installs the Debian packages that the build, the tests and the checks need, if they are missing.
#
#   scripts/install-packages.sh          what a build with its tests needs
#   scripts/install-packages.sh --all    the same, and what the checks of the source need
#   scripts/install-packages.sh --fuzz   the same, and what the fuzzers need
#   scripts/install-packages.sh --page   the same, and what makes and tests the page of itms report; Graphviz
#   ... --check                          installs nothing: lists what is missing; status 1 if anything is
set -euo pipefail

build=(
    cmake g++ make ninja-build pkg-config
    libcli11-dev libfmt-dev nlohmann-json3-dev tao-pegtl-dev libtomlplusplus-dev zlib1g-dev libzstd-dev
    libbenchmark-dev libgmock-dev libgtest-dev
    python3-jsonschema
)
checks=(clang-format clang-tidy)
fuzz=(clang libclang-rt-dev)
# Programs, whoever installed them, and the packages that have them.
page=(node:nodejs npm:npm chromium:chromium dot:graphviz)

wanted=("${build[@]}")
only_check=no
for argument in "$@"; do
    case "$argument" in
    --all) wanted+=("${checks[@]}") ;;
    --fuzz) wanted+=("${fuzz[@]}") ;;
    --page)
        for pair in "${page[@]}"; do
            command -v "${pair%%:*}" >/dev/null || wanted+=("${pair#*:}")
        done
        ;;
    --check) only_check=yes ;;
    *)
        echo "install-packages.sh: unknown option $argument (--all, --fuzz, --page, --check)" >&2
        exit 2
        ;;
    esac
done

if ! command -v dpkg-query >/dev/null; then
    echo "install-packages.sh: not a Debian system; these are needed: ${wanted[*]}" >&2
    exit 0
fi

# One call for all packages: dpkg-query prints those that it knows and complains about the rest.
installed="$(dpkg-query -W -f='${db:Status-Status} ${Package}\n' "${wanted[@]}" 2>/dev/null || true)"
missing=()
for package in "${wanted[@]}"; do
    grep -qxF "installed $package" <<<"$installed" || missing+=("$package")
done

if [ ${#missing[@]} -eq 0 ]; then exit 0; fi
if [ "$only_check" = yes ]; then
    printf '%s\n' "${missing[@]}"
    exit 1
fi

as_root=()
if [ "$(id -u)" -ne 0 ]; then as_root=(sudo); fi
echo "install-packages.sh: installing ${missing[*]}" >&2
export DEBIAN_FRONTEND=noninteractive
"${as_root[@]}" apt-get update -q >&2
"${as_root[@]}" apt-get install -q -y --no-install-recommends "${missing[@]}" >&2
