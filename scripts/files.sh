# Sourced by the checks. files ROOT [PATTERN...] prints the files below ROOT that match one of the patterns, one
# per line, relative to ROOT: in a git work tree the tracked ones, otherwise all outside build/.
files() {
    local root="$1"
    shift
    if [ -e "$root/.git" ]; then
        # A file that is deleted but still in the index is skipped.
        git -C "$root" ls-files -- "$@" | while IFS= read -r file; do
            if [ -f "$root/$file" ]; then printf '%s\n' "$file"; fi
        done
    else
        local file
        (cd "$root" && find . -type f -not -path './build/*' -printf '%P\n' | LC_ALL=C sort) |
            while IFS= read -r file; do
                local pattern
                if [ $# -eq 0 ]; then printf '%s\n' "$file"; fi
                for pattern in "$@"; do
                    # shellcheck disable=SC2053
                    if [[ $file == $pattern ]]; then
                        printf '%s\n' "$file"
                        break
                    fi
                done
            done
    fi
}
