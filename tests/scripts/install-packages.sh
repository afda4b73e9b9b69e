#!/usr/bin/env bash
# The package tools are replaced by ones that know little and write down what they are asked.
source "$(dirname "$0")/expect.sh"
install="$1/install-packages.sh"

put bin/dpkg-query <<'END'
#!/bin/sh
# Answers as the real one does: with what is in the list, and status 1 when it does not know a package.
shift 2
status=0
for package in "$@"; do
    grep -F " $package" "$TREE/packages" || { echo "no packages found matching $package" >&2; status=1; }
done
exit $status
END
put bin/apt-get <<'END'
#!/bin/sh
echo "apt-get $*" >>"$TREE/asked"
END
put bin/sudo <<'END'
#!/bin/sh
echo "sudo $*" >>"$TREE/asked"
END
put bin/id <<'END'
#!/bin/sh
cat "$TREE/user"
END
chmod +x "$tree"/bin/*
export TREE="$tree" PATH="$tree/bin:$PATH"
echo 0 >"$tree/user"
everything='cmake g++ make ninja-build pkg-config libcli11-dev libfmt-dev nlohmann-json3-dev tao-pegtl-dev libtomlplusplus-dev zlib1g-dev libzstd-dev
libbenchmark-dev libgmock-dev libgtest-dev python3-jsonschema clang-format clang-tidy'
# shellcheck disable=SC2086
printf 'installed %s\n' $everything >"$tree/packages"

# Nothing is missing: nothing is asked.
expect 0 '' "$install"
expect 0 '' "$install" --all --check
expect 1 '' test -e "$tree/asked"

# A program that is there needs no package.
for program in node npm chromium dot; do
    printf '#!/bin/sh\n' >"$tree/bin/$program"
    chmod +x "$tree/bin/$program"
done
expect 0 '' "$install" --page --check

# One that was removed but left its configuration, one that was never there, and two that only checks need.
sed -i -e 's/installed libfmt-dev/config-files libfmt-dev/' -e '/g++/d' -e '/clang-/d' "$tree/packages"
expect 1 $'g++\nlibfmt-dev' "$install" --check
expect 1 $'g++\nlibfmt-dev\nclang-format\nclang-tidy' "$install" --all --check
expect 1 $'g++\nlibfmt-dev\nclang\nlibclang-rt-dev' "$install" --fuzz --check
expect 1 '' test -e "$tree/asked"
expect 0 'install-packages.sh: installing g++ libfmt-dev' "$install"
expect 0 'apt-get update -q
apt-get install -q -y --no-install-recommends g++ libfmt-dev' cat "$tree/asked"

# Another user asks by sudo.
echo 1000 >"$tree/user"
rm "$tree/asked"
expect 0 'install-packages.sh: installing g++ libfmt-dev' "$install"
expect 0 'sudo apt-get update -q
sudo apt-get install -q -y --no-install-recommends g++ libfmt-dev' cat "$tree/asked"

expect 2 'install-packages.sh: unknown option --chek (--all, --fuzz, --page, --check)' "$install" --chek
finish
