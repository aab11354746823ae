# Several servers on one machine: PostgreSQL with a synchronous standby, servers, and a balancer in front of them, all of it
# on loopback and in Unix sockets below out/cluster/, for as long as the command runs. Sourced by ./dev.

cluster_packages=(postgresql-15 haproxy curl python3 util-linux procps)
cluster=$root/out/cluster
postgres_programs=/usr/lib/postgresql/15/bin
drain_seconds=5
declare -A cluster_pids=()

source support/cluster/processes.sh
source support/cluster/postgres.sh
source support/cluster/servers.sh
source support/cluster/verdict.sh
source support/cluster/accidents.sh

cluster_usage() {
    cat <<'TEXT'
./dev cluster [COMMAND]

  (none)                start everything, run the tour against the balancer, and stop
  run                   start everything, and stop on Ctrl-C
  accidents [NAME...]   server-killed, rolling-restart, primary-killed (default: all): under load, each with its counts;
                        exit status 1 when a promise is broken
  throughput            punches and "today" a second through 1, 2 and 4 servers, beside SQLite and bare commits
  rush N [OPTION...]    the phones of ./dev rush against N servers behind the balancer
TEXT
}

dev_cluster() {
    local command=${1:-tour}
    [ $# -gt 0 ] && shift
    case $command in
        tour | run | accidents | throughput | rush) "cluster_$command" "$@" ;;
        help | -h | --help) cluster_usage ;;
        *) cluster_usage >&2; return 2 ;;
    esac
}

# cluster_start PRESET SERVERS TARGET...: builds, and starts PostgreSQL, so many servers and the balancer.
cluster_start() {
    local preset=$1 count=$2 number
    shift 2
    ensure_packages "${cluster_packages[@]}"
    build "$preset" clockwell-server "$@"
    server_program=$root/build/$preset/bin/clockwell-server
    cluster_prepare_folder
    trap cluster_stop EXIT
    trap 'exit 130' INT
    trap 'exit 143' TERM
    start_postgres
    "$server_program" demo --database "$database_url" >"$cluster/demo.txt"
    for number in $(seq "$count"); do start_server "$number"; done
    for number in $(seq "$count"); do wait_until --while "server$number" "server $number" 60 server_is_ready "$number"; done
    start_balancer "$count"
    say "balancer http://127.0.0.1:$balancer_port, $count servers, PostgreSQL with a synchronous standby"
}

cluster_tour() {
    cluster_start dev 2 clockwell_tour
    rm -rf out/tour
    mkdir -p out/tour
    QT_QPA_PLATFORM=offscreen QT_FORCE_STDERR_LOGGING=1 FONTCONFIG_FILE=$root/build/dev/fonts.conf \
        tests/support/with-secret-service build/dev/bin/clockwell_tour "$server_program" out/tour \
        "http://127.0.0.1:$balancer_port/api" "$database_url" "$cluster/outbox"
    balancer_shares
    say "logs in $cluster, pictures in $root/out/tour"
}

cluster_run() {
    cluster_start dev 2
    cat "$cluster/demo.txt"
    cat <<TEXT
The balancer       http://127.0.0.1:$balancer_port/api  (its state: http://127.0.0.1:$state_port/)
The database       $database_url
E-mails, logs      $cluster
Ctrl-C stops everything.
TEXT
    local status=0
    while [ "$status" != 127 ]; do # there is still one to wait for
        status=0
        wait -n || status=$?
        say "a process ended; see the logs"
    done
}

cluster_rush() {
    local count=${1:-2}
    [ $# -gt 0 ] && shift
    cluster_start bench "$count" clockwell_rush
    start_rush "$@"
    local name status=0
    local -A before=() after=()
    wait_until --while rush "the first phone" 600 requests_beyond 0
    for name in "${!cluster_pids[@]}"; do before[$name]=$(processor_time "$name"); done
    while is_alive rush; do
        for name in "${!before[@]}"; do after[$name]=$(processor_time "$name"); done
        sleep 1
    done
    rush_succeeds || status=$?
    cat "$cluster/rush.log"
    for name in "${!before[@]}"; do
        say "processor time of $name: $((after[$name] - before[$name]))0 ms"
    done
    balancer_shares
    return "$status"
}

# The servers are reached directly, and once through the balancer: what the balancer takes shows as well.
cluster_throughput() {
    server_options=(--account-requests 0) # a connection stands for many people
    cluster_start bench 4 clockwell_throughput
    start_process sqlite "$server_program" serve --database "$cluster/sqlite.db" --listen 127.0.0.1:0 \
        --port-file "$cluster/sqlite.port" --account-requests 0
    wait_until --while sqlite "the server on SQLite" 60 test -s "$cluster/sqlite.port"
    build/bench/bin/clockwell_throughput "$@" \
        --sqlite "$cluster/bare.db" --postgres "$database_url" \
        --target "SQLite, 1 server" "$cluster/sqlite.db" "$(<"$cluster/sqlite.port")" \
        --target "PostgreSQL, 1 server" "$database_url" "${server_ports[1]}" \
        --target "PostgreSQL, 2 servers" "$database_url" "${server_ports[1]},${server_ports[2]}" \
        --target "PostgreSQL, 4 servers" "$database_url" "${server_ports[1]},${server_ports[2]},${server_ports[3]},${server_ports[4]}" \
        --target "PostgreSQL, 4 servers behind the balancer" "$database_url" "$balancer_port"
    local table
    for table in attendance punches; do
        say "$(sql primary "SELECT count(*) || ' rows of $table, ' || pg_total_relation_size('$table') / count(*) || ' bytes each with their indexes' FROM $table")"
    done
}
