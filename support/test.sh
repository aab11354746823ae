# Tests, screenshots, benchmarks and load. Sourced by ./dev.

dev_test() {
    local preset=dev
    if [ "${1:-}" = --asan ]; then
        preset=asan
        shift
    fi
    ensure_packages "${test_packages[@]}"
    ensure_packages "${postgres_packages[@]}" || echo "PostgreSQL cannot be installed; the tests go on without it."
    build "$preset"
    local filter=() status=0
    [ $# -gt 0 ] && filter=(-R "$1")
    # With sanitizers only what is PostgreSQL's own: all else takes the same way through the server as with SQLite.
    [ $preset = asan ] && filter+=(-LE AgainOnPostgreSQL)
    # A leak is a failure, too, unless it is listed in leaks.supp.
    export ASAN_OPTIONS=detect_leaks=1:detect_stack_use_after_return=1
    export LSAN_OPTIONS=suppressions=$root/support/leaks.supp:print_suppressions=0
    export UBSAN_OPTIONS=print_stacktrace=1
    # Tests often wait, so two for each processor are at work.
    ctest --preset "$preset" --parallel "$(($(nproc) * 2))" --no-tests=error "${filter[@]}" || status=1
    [ $status = 0 ] || show_failures "build/$preset/Testing/Temporary"
    say_what_was_left_out "$preset"
    return $status
}

# say_what_was_left_out PRESET: a line after all others when there was no PostgreSQL to test with.
say_what_was_left_out() {
    grep -q 'PostgreSQL\.Start' "build/$1/tests/server/CTestTestfile.cmake" ||
        echo "NOT TESTED: the server on PostgreSQL. Its tests ran with SQLite only, for no PostgreSQL is installed here."
}

# show_failures FOLDER: prints once more, after all others, what the failed tests of the last run wrote.
show_failures() {
    [ -f "$1/LastTestsFailed.log" ] || return 0
    awk 'NR == FNR { sub(/^[0-9]+:/, ""); failed[$0]; next }
        sub(/^[0-9]+\/[0-9]+ Test: /, "") { shown = $0 in failed }
        shown' "$1/LastTestsFailed.log" "$1/LastTest.log"
}

dev_screens() {
    ensure_packages "${test_packages[@]}"
    build dev clockwell_screens
    rm -rf out/screens
    export QT_QPA_PLATFORM=offscreen FONTCONFIG_FILE=$root/build/dev/fonts.conf
    # All formats at once: most of its time a process waits for motions to end.
    local screens=build/dev/bin/clockwell_screens
    "$screens" --formats | xargs --max-procs=0 --max-args=1 "$screens" out/screens
}

# --brief: a short run of the development build without limits; it only checks that every benchmark works.
dev_bench() {
    ensure_packages "${test_packages[@]}" "${bench_packages[@]}"
    local preset=bench failed=0 bench
    if [ "${1:-}" = --brief ]; then
        preset=dev
        export CLOCKWELL_BENCH_BRIEF=1
    fi
    local configure=(-DCLOCKWELL_BENCHMARKS=ON)
    build "$preset" benchmarks
    export FONTCONFIG_FILE=$root/build/$preset/fonts.conf
    for bench in build/$preset/bin/bench/*; do
        [ -x "$bench" ] && [ -f "$bench" ] || continue
        QT_QPA_PLATFORM=offscreen tests/support/with-secret-service "$bench" || failed=1
    done
    return $failed
}

# The load generator and the server, both optimised (preset bench). The database and the server's log stay in out/rush.
dev_rush() {
    build bench clockwell_rush
    local folder=(--folder out/rush)
    case " $* " in *" --server"* | *" --folder"*) folder=() ;; esac
    build/bench/bin/clockwell_rush "${folder[@]}" "$@"
}

dev_fuzz() {
    ensure_packages "${build_packages[@]}" "${test_packages[@]}" "${fuzz_packages[@]}"
    ensure_icons
    cmake -S . -B build/fuzz -G Ninja -DCMAKE_CXX_COMPILER=clang++-16 -DCMAKE_CXX_COMPILER_LAUNCHER=ccache \
        -DCLOCKWELL_FUZZ=ON -DCLOCKWELL_BUILD_SERVER=OFF -DCLOCKWELL_FUZZ_SECONDS="${1:-20}" >build/.fuzz.configure.log
    cmake --build build/fuzz --target clockwell_fuzz_decode
    ctest --test-dir build/fuzz --output-on-failure --no-tests=error -R FuzzDecode
}
