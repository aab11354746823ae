# Configuring and building a preset. Sourced by ./dev.

# Paths relative to the checkout in the compiler cache, so that every clone of the project shares it.
export CCACHE_BASEDIR=$root CCACHE_NOHASHDIR=1

build() { # preset, targets...
    local preset=$1
    shift
    ensure_packages "${build_packages[@]}" "${run_packages[@]}"
    ensure_icons
    cmake --preset "$preset" >"build/.$preset.configure.log" 2>&1 || {
        cat "build/.$preset.configure.log"
        return 1
    }
    if [ $# -gt 0 ]; then
        cmake --build --preset "$preset" --target "$@"
    else
        cmake --build --preset "$preset"
    fi
}
mkdir -p build
