# Formatting and static checks. Each linter must also report its canary, a file with a known defect: a linter that reports
# nothing may not have run. Sourced by ./dev.

cpp_sources() { git ls-files -co --exclude-standard '*.cpp' '*.h' | grep -v '^support/canaries/'; }

dev_format() {
    ensure_packages "${lint_packages[@]}"
    cpp_sources | xargs clang-format -i
}

# finds_canary WORDS COMMAND...: the command must fail with these words in its output, because a linter that is missing or
# broken fails, too, but with other words.
finds_canary() {
    local words=$1 said
    shift
    if said=$("$@" 2>&1) || ! grep -qF -- "$words" <<<"$said"; then
        echo "lint: this command does not report its canary, so its result means nothing: $*" >&2
        return 1
    fi
}

lint_format() {
    finds_canary clang-format-violations clang-format --dry-run --Werror support/canaries/Format.cpp || return
    cpp_sources | xargs clang-format --dry-run --Werror
}

# Any message of qmllint is a failure, also one that does not change the exit status.
qmllint_is_silent() {
    local said status=0
    said=$("$@" 2>&1) || status=$?
    said=$(grep -E '^(Warning|Error|Info)' -A 3 <<<"$said" || true)
    [ $status -eq 0 ] && [ -z "$said" ] || { printf '%s\n' "$said"; return 1; }
}

lint_qml() {
    build dev clockwell >build/.lint.log 2>&1 || { tail -n 40 build/.lint.log; return 1; }
    finds_canary "Unqualified access" qmllint_is_silent /usr/lib/qt6/bin/qmllint --bare -I build/dev/qml \
        -I "$(qtpaths6 --query QT_INSTALL_QML)" support/canaries/Unqualified.qml || return
    qmllint_is_silent cmake --build build/dev --target all_qmllint
}

# Checks the app and the server. The sources of a target are parsed together (unity build), which is several times faster.
lint_tidy() {
    finds_canary "use nullptr" clang-tidy-16 --quiet support/canaries/Tidy.cpp -- -std=c++20 || return
    cmake --preset tidy >build/.tidy.configure.log 2>&1 || { cat build/.tidy.configure.log; return 1; }
    local generated
    generated=$(ninja -C build/tidy -t targets all |
        sed -nE 's/^([^:]*(_autogen|_qmltyperegistration|_resources_[0-9]+)): phony$/\1/p' | grep -v /CMakeFiles/)
    # shellcheck disable=SC2086
    ninja -C build/tidy $generated >build/.tidy.generate.log 2>&1 || { tail -n 20 build/.tidy.generate.log; return 1; }
    # A g++ flag that clang does not know and does not need.
    sed -i 's/ -fcoroutines//g' build/tidy/compile_commands.json
    run-clang-tidy-16 -quiet -p build/tidy -j "$(nproc)" -extra-arg=-Wno-everything \
        "$root/((Clockwell|server)/(?!http/BoostImplementation).*\.cpp|build/tidy/(Clockwell|server)/(?!.*(_qmlcache|plugin|plugin_init)\.dir/).*/unity_[0-9]+_cxx\.cxx)$" \
        >build/tidy/tidy.log 2>build/tidy/tidy.err
    local status=$?
    if [ $status -ne 0 ] || grep -q 'error:' build/tidy/tidy.log; then
        grep -hE '(warning|error):' -A 4 build/tidy/tidy.log | head -200
        return 1
    fi
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
