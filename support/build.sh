# Configuring and building a preset. Sourced by ./dev.

# The compiler cache uses paths relative to the checkout, so that all clones of the project share it. It needs this
# sloppiness for precompiled headers; the time and date macros that it ignores are not used.
export CCACHE_BASEDIR=$root CCACHE_NOHASHDIR=1 CCACHE_SLOPPINESS=pch_defines,time_macros

build() { # PRESET [TARGET...]; the caller's array `configure` can hold more options for CMake
    local preset=$1
    shift
    ensure_packages "${build_packages[@]}" "${run_packages[@]}"
    ensure_icons
    cmake --preset "$preset" "${configure[@]}" >"build/.$preset.configure.log" 2>&1 || {
        cat "build/.$preset.configure.log"
        return 1
    }
    local targets=()
    [ $# -gt 0 ] && targets=(--target "$@")
    NINJA_STATUS='@%p ' cmake --build --preset "$preset" "${targets[@]}" 2>&1 | progress "Building ${*:-everything}"
}

# progress LABEL: shortens the progress lines of a build on standard input to a single line that is updated on a terminal,
# and to one line for each quarter elsewhere. Other lines (warnings, errors) are passed through.
progress() {
    local terminal=
    [ -t 1 ] && terminal=1
    awk -v label="$1" -v terminal="$terminal" '
        /^@ *[0-9]+% / {
            percent = substr($0, 2) + 0
            if (terminal) { printf "\r%s: %d %%", label, percent; fflush(); open = 1 }
            else if (percent >= next_line) { print label ": " percent " %"; fflush(); next_line = (int(percent / 25) + 1) * 25 }
            next
        }
        /^ninja: (no work to do|Entering directory)/ { next }
        { if (open) { print ""; open = 0 } print; fflush() }
        END { if (open) print "" }'
}
mkdir -p build
