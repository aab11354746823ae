# Formatting and static checks, each with a canary that it must find: a linter that finds nothing may simply not run.
# Sourced by ./dev.

cpp_sources() { git ls-files -co --exclude-standard '*.cpp' '*.h' | grep -v '^support/canaries/'; }

dev_format() {
    ensure_packages "${lint_packages[@]}"
    cpp_sources | xargs clang-format -i
}

# must_fail NAME COMMAND...: the canary's command has to fail
must_fail() {
    local name=$1
    shift
    if "$@" >/dev/null 2>&1; then
        echo "lint: $name did not find its canary, so its silence means nothing" >&2
        return 1
    fi
}

lint_format() {
    must_fail clang-format clang-format --dry-run --Werror support/canaries/Format.cpp
    cpp_sources | xargs clang-format --dry-run --Werror
}

# qmllint of this Qt exits with 0 after warnings: any output is a failure here.
qmllint_says_nothing() {
    local said
    said=$("$@" 2>&1 | grep -E '^(Warning|Error|Info|.*\.qml:[0-9]+)' || true)
    [ -z "$said" ] || { printf '%s\n' "$said"; return 1; }
}

lint_qml() {
    build dev clockwell >/dev/null
    must_fail qmllint qmllint_says_nothing /usr/lib/qt6/bin/qmllint --bare -I build/dev/qml \
        -I "$(qtpaths6 --query QT_INSTALL_QML)" support/canaries/Unqualified.qml
    qmllint_says_nothing cmake --build build/dev --target all_qmllint
}

# All sources of a target are parsed together (unity), which makes this several times as fast.
lint_tidy() {
    ensure_packages "${test_packages[@]}"
    cmake --preset tidy >/dev/null
    local generated
    generated=$(ninja -C build/tidy -t targets all | sed -n 's/^\([^/:]*_autogen\): phony$/\1/p')
    # shellcheck disable=SC2086
    ninja -C build/tidy $generated >/dev/null
    must_fail clang-tidy clang-tidy-16 --quiet support/canaries/Tidy.cpp -- -std=c++20
    run-clang-tidy-16 -quiet -p build/tidy -j "$(nproc)" 'unity_[0-9]*_cxx\.cxx$' >build/tidy/tidy.log 2>&1 || {
        grep -E 'warning:|error:|note:' -A 4 build/tidy/tidy.log | head -200
        return 1
    }
}

dev_lint() {
    ensure_packages "${build_packages[@]}" "${run_packages[@]}" "${lint_packages[@]}"
    local failed=0 check
    for check in lint_format lint_qml lint_tidy; do
        echo "== $check"
        "$check" || failed=1
    done
    return $failed
}
