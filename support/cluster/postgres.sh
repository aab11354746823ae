# PostgreSQL: a primary whose commits are on the disk of two, and its standby. Sourced by cluster.sh.

# PostgreSQL refuses to run as root.
as_postgres=()
[ "$(id -u)" != 0 ] || as_postgres=(setpriv --reuid=postgres --regid=postgres --init-groups --)

# Anyone who reaches the sockets may connect: the folder is closed to all but PostgreSQL's user, and root.
cluster_prepare_folder() {
    local owner= lock
    mkdir -p "$root/out"
    exec {lock}>"$root/out/.cluster.lock"
    flock --nonblock "$lock" || { echo "cluster: another one runs in this checkout" >&2; return 1; }
    [ "$(id -u)" != 0 ] || owner=postgres
    rm -rf "$cluster"
    mkdir -p "$cluster"
    install -d -m 700 ${owner:+-o $owner -g $owner} "$cluster/postgres"
    install -d -m 700 "$cluster/outbox"
    local socket=$cluster/postgres/standby/.s.PGSQL.5432
    if [ ${#socket} -gt 107 ]; then
        echo "cluster: the path $cluster is too long for Unix sockets; use a checkout with a shorter one" >&2
        return 1
    fi
    if ! "${as_postgres[@]}" test -w "$cluster/postgres"; then
        echo "cluster: the user postgres cannot get into $cluster; use a checkout that others may enter" >&2
        return 1
    fi
}

# sql HOST STATEMENT: on the primary or the standby; the rows without decoration.
sql() { psql -h "$cluster/postgres/$1" -U postgres -d "${3:-clockwell}" -XAtq -v ON_ERROR_STOP=1 -c "$2"; }

# The wish to die with this shell is lost with a change of the user, so it is said again after that.
start_database() { # NAME
    start_process "$1" "${as_postgres[@]}" setpriv --pdeathsig KILL -- "$postgres_programs/postgres" \
        -D "$cluster/postgres/$1/data" -c unix_socket_directories="$cluster/postgres/$1"
    wait_until --while "$1" "PostgreSQL's $1" 60 sql "$1" "SELECT 1" postgres
}

start_postgres() {
    local folder=$cluster/postgres
    "${as_postgres[@]}" mkdir -m 700 "$folder/primary" "$folder/standby"
    "${as_postgres[@]}" "$postgres_programs/initdb" -D "$folder/primary/data" -U postgres --auth=trust --encoding=UTF8 \
        --locale=C.UTF-8 >"$cluster/initdb.log"
    printf '%s\n' "listen_addresses = ''" 'fsync = on' 'synchronous_commit = on' 'max_connections = 200' |
        "${as_postgres[@]}" tee -a "$folder/primary/data/postgresql.conf" >/dev/null
    start_database primary
    sql primary 'CREATE DATABASE clockwell' postgres
    "${as_postgres[@]}" "$postgres_programs/pg_basebackup" -h "$folder/primary" -U postgres -D "$folder/standby/data" \
        --write-recovery-conf --checkpoint=fast >"$cluster/basebackup.log"
    start_database standby
    # Only the primary has this setting: the standby, once promoted, has nobody to wait for.
    sql primary "ALTER SYSTEM SET synchronous_standby_names = '*'"
    sql primary 'SELECT pg_reload_conf()' >/dev/null
    wait_until "the synchronous standby" 60 standby_is_synchronous
    database_url="postgresql://postgres@/clockwell?host=$folder/primary,$folder/standby&target_session_attrs=read-write"
}

standby_is_synchronous() { [ "$(sql primary "SELECT count(*) FROM pg_stat_replication WHERE sync_state = 'sync'")" = 1 ]; }

# kill_primary: the postmaster and each of its processes at once. Unlike those of a machine that loses power, its
# connections end with it.
kill_primary() {
    local pid=${cluster_pids[primary]} children
    mapfile -t children < <(pgrep -P "$pid")
    kill -KILL "$pid" "${children[@]}" 2>/dev/null || true
    stop_process primary KILL
    wait_until "the end of the primary" 10 none_is_alive "${children[@]}"
}

# While the standby takes nothing, commits are on the primary's disk and wait.
hold_commits() {
    receiver=$(pgrep -f walreceiver -P "${cluster_pids[standby]}")
    kill -STOP "$receiver"
}
release_commits() { kill -CONT "$receiver"; }

none_is_alive() {
    local pid
    for pid in "$@"; do ! kill -0 "$pid" 2>/dev/null || return 1; done
}

promote_standby() {
    "${as_postgres[@]}" "$postgres_programs/pg_ctl" promote -D "$cluster/postgres/standby/data" --wait --timeout=30 --silent
}
