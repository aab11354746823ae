# Runs the app against the real server on this machine. Sourced by ./dev.

run_dir=$root/out/run

# The port to which the development build of the app sends requests.
demo_port() { sed -n 's|^CLOCKWELL_BASE_URL:[A-Z]*=.*:\([0-9]*\)/api$|\1|p' build/dev/CMakeCache.txt; }

# A position inside the demo office with an accuracy of 8 metres.
demo_fix() { sed -n 's/^  coordinates *//p' "$run_dir/demo.txt" | sed 's/$/,8/'; }

has_display() { [ -n "${WAYLAND_DISPLAY:-}" ] || [ -n "${DISPLAY:-}" ]; }

start_server() { # sets server_pid; the demo data is kept between runs
    mkdir -p "$run_dir"
    local server=build/dev/bin/clockwell-server port
    port=$(demo_port)
    "$server" demo --database "$run_dir/demo.db" | tee "$run_dir/demo.txt"
    rm -f "$run_dir/port"
    "$server" serve --database "$run_dir/demo.db" --listen "127.0.0.1:$port" --port-file "$run_dir/port" \
        --outbox "$run_dir/outbox" >"$run_dir/server.log" 2>&1 &
    server_pid=$!
    trap 'kill "$server_pid" 2>/dev/null; wait "$server_pid" 2>/dev/null || true' EXIT
    local tries
    for tries in $(seq 100); do
        [ -s "$run_dir/port" ] && return
        if ! kill -0 "$server_pid" 2>/dev/null; then
            echo "The server did not start (is port $port in use?):" >&2
            tail -n 5 "$run_dir/server.log" >&2
            return 1
        fi
        sleep 0.1
    done
    echo "The server did not start within 10 seconds; its log is $run_dir/server.log" >&2
    return 1
}

dev_run() {
    local vnc=
    while [ $# -gt 0 ]; do
        case $1 in
            --vnc) vnc=1 ;;
            --fresh) rm -rf "$run_dir" ;;
            *) usage >&2; return 2 ;;
        esac
        shift
    done
    if [ -z "$vnc" ] && ! has_display; then
        echo "There is no display, so the tour runs instead: the real app offscreen, driven by real input events."
        echo "(--vnc serves the app's window to a VNC viewer.)"
        dev_tour
        return
    fi
    [ -z "$vnc" ] || ensure_packages qt6-qpa-plugins
    build dev clockwell clockwell-server
    start_server
    local platform=()
    [ -n "$vnc" ] && platform=(QT_QPA_PLATFORM=vnc:port=5900) &&
        echo "The app's window is served to VNC viewers on port 5900, without a password, to anyone who can reach the port."
    echo "E-mails with the codes for sign-up and password reset: $run_dir/outbox"
    echo "Approve a new account: ./dev admin employees approve ADDRESS"
    echo "Server log: $run_dir/server.log. Close the window to stop."
    export CLOCKWELL_SIMULATED_LOCATION=${CLOCKWELL_SIMULATED_LOCATION:-$(demo_fix)}
    with_any_secret_service env "${platform[@]}" build/dev/bin/clockwell
}

# Administers the demo data, also while ./dev run is running.
dev_admin() {
    [ -x build/dev/bin/clockwell-server ] || build dev clockwell-server
    build/dev/bin/clockwell-server admin --database "$run_dir/demo.db" "$@"
}

# Runs a command with the session's Secret Service or, if it has none, with one whose keyring is kept next to the demo data.
with_any_secret_service() {
    if { [ -n "${DBUS_SESSION_BUS_ADDRESS:-}" ] || [ -S "${XDG_RUNTIME_DIR:-/nonexistent}/bus" ]; } &&
        gdbus call --session --dest org.freedesktop.DBus --object-path /org/freedesktop/DBus \
        --method org.freedesktop.DBus.StartServiceByName org.freedesktop.secrets 0 >/dev/null 2>&1; then
        "$@"
    else
        echo "This session has no Secret Service, so one is started; its keyring is in $run_dir/keyring."
        tests/support/with-secret-service --keep "$run_dir/keyring" "$@"
    fi
}

dev_tour() {
    build dev clockwell-server clockwell_tour
    rm -rf out/tour
    mkdir -p out/tour
    QT_QPA_PLATFORM=offscreen QT_FORCE_STDERR_LOGGING=1 FONTCONFIG_FILE=$root/build/dev/fonts.conf \
        tests/support/with-secret-service build/dev/bin/clockwell_tour build/dev/bin/clockwell-server out/tour
}
