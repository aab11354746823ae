# The processes of a cluster: each is a child of this shell, known by its id, and dies with it. Sourced by cluster.sh.

# start_process NAME COMMAND...: in the background, with its output in NAME.log; not in a subshell, whose end would be
# the process's end, too.
start_process() {
    local name=$1
    shift
    setpriv --pdeathsig KILL -- "$@" >>"$cluster/$name.log" 2>&1 </dev/null &
    cluster_pids[$name]=$!
}

# stop_process NAME [SIGNAL]: sends the signal (TERM) and waits for the end; sets `ended_with` to the exit status.
stop_process() {
    local pid=${cluster_pids[$1]:-}
    [ -n "$pid" ] || return 0
    kill "-${2:-TERM}" "$pid" 2>/dev/null || true
    ended_with=0
    wait "$pid" 2>/dev/null || ended_with=$?
    unset "cluster_pids[$1]"
}

# The servers first: without a database they would only fill the log.
cluster_stop() {
    local status=$? name
    trap - EXIT INT TERM
    for name in "${!cluster_pids[@]}"; do
        case $name in primary | standby) ;; *) stop_process "$name" KILL ;; esac
    done
    stop_process primary QUIT
    stop_process standby QUIT
    exit "$status"
}

# processor_time NAME: in hundredths of a second, of the process and its children, also of those that have ended.
processor_time() {
    local pid=${cluster_pids[$1]} child
    for child in "$pid" $(pgrep -P "$pid"); do cat "/proc/$child/stat" 2>/dev/null || true; done |
        sed 's/^.*) //' | awk '{ all += $12 + $13 + $14 + $15 } END { print all + 0 }'
}

is_alive() { kill -0 "${cluster_pids[$1]}" 2>/dev/null; } # NAME

# wait_until [--while NAME] WHAT SECONDS COMMAND...: until the command succeeds; no longer than the process runs.
wait_until() {
    local process=
    if [ "$1" = --while ]; then
        process=$2
        shift 2
    fi
    local what=$1 end=$((SECONDS + $2))
    shift 2
    until "$@" >/dev/null 2>&1; do
        if [ -n "$process" ] && ! is_alive "$process"; then
            echo "cluster: $process ended before this was there: $what; $cluster/$process.log ends with" >&2
            tail -n 60 "$cluster/$process.log" >&2
            return 1
        fi
        if [ "$SECONDS" -ge "$end" ]; then
            echo "cluster: not there in time: $what; see the logs in $cluster" >&2
            return 1
        fi
        sleep 0.1
    done
}

# free_ports COUNT: of loopback.
free_ports() {
    python3 - "$1" <<'PYTHON'
import socket, sys
sockets = [socket.socket() for _ in range(int(sys.argv[1]))]
for one in sockets:
    one.bind(("127.0.0.1", 0))
print(*(one.getsockname()[1] for one in sockets))
PYTHON
}

now_ms() { date +%s%3N; }
