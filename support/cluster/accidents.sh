# Accidents under load, and whether what was promised for them holds. Sourced by cluster.sh.

accident_phones=${CLOCKWELL_CLUSTER_PHONES:-1500}
accident_seconds=60   # within which they arrive
kill_pause=14         # longer than a person takes to tap again, so that two kills never meet the same person
longest_outage=30000  # ms

cluster_accidents() {
    local accidents=("$@") accident
    [ $# -gt 0 ] || accidents=(server-killed rolling-restart primary-killed)
    for accident in "${accidents[@]}"; do
        case $accident in
            server-killed | rolling-restart | primary-killed) ;;
            *) cluster_usage >&2; return 2 ;;
        esac
    done
    cluster_start bench 2 clockwell_rush
    broken=0
    for accident in "${accidents[@]}"; do
        say "== $accident: $accident_phones phones in $accident_seconds s"
        "accident_${accident//-/_}"
    done
    [ "$broken" = 0 ] || say "a promise was broken; logs in $cluster"
    return "$broken"
}

# Returns when the phones are arriving: they are made first, and the first one arrives when the balancer is asked.
begin_rush() { # OPTION...
    acknowledged=$cluster/$accident.acknowledged
    start_rush --phones "$accident_phones" --seconds "$accident_seconds" --acknowledged "$acknowledged" "$@"
    wait_until --while rush "the first phones" 300 requests_beyond $(($(requests_so_far) + accident_phones / 2))
}

# Waits for the rush, and judges it.
end_rush() {
    kept "the phones' own verdict" rush_succeeds
    failed_taps=$(sed -n 's/^failed: \([0-9]*\) taps.*/\1/p' "$cluster/rush.log")
    sed 's/^/    /' "$cluster/rush.log"
    : >"$cluster/rush.log"
    judge_acknowledged
}

# Just before a kill the standby is held for a moment: commits wait for it, and so each kill meets punches that are being
# recorded.

# Three times, alternately. A person taps again at most once, and is told what the first tap did.
accident_server_killed() {
    local number
    begin_rush --interrupted --most-repeats 1
    for number in 1 2 1; do
        hold_commits
        sleep 0.5
        stop_process "server$number" KILL
        release_commits
        say "killed server $number; the other one goes on alone for 2 s"
        sleep 2
        start_server "$number"
        wait_until --while "server$number" "server $number" 60 server_is_ready "$number"
        sleep $((kill_pause - 2))
    done
    end_rush
    kept "punches were under way when the servers were killed ($failed_taps)" [ "$failed_taps" -gt 0 ]
    say "$(count_found_again) punches had been recorded without an answer, and were found by the other server"
}

accident_rolling_restart() {
    local number
    begin_rush --no-failures --most-repeats 0
    for number in 1 2; do
        stop_process "server$number" TERM
        kept "server $number ends by itself with status 0 ($ended_with)" [ "$ended_with" = 0 ]
        start_server "$number"
        wait_until --while "server$number" "server $number" 60 server_is_ready "$number"
        wait_until "server $number at the balancer" 30 balancer_sees "$number"
        say "server $number is replaced"
    done
    kept "the phones are still arriving" is_alive rush
    end_rush
}

accident_primary_killed() {
    local killed_at promoted_at outage
    begin_rush --interrupted
    hold_commits
    sleep 0.5
    killed_at=$(now_ms)
    kill_primary
    release_commits
    promote_standby
    promoted_at=$(now_ms)
    say "killed the primary, and promoted the standby, which took $((promoted_at - killed_at)) ms"
    end_rush
    kept "punches were under way when the primary was killed ($failed_taps)" [ "$failed_taps" -gt 0 ]
    say "$(count_found_again) punches had been recorded without an answer, and were found on the standby"
    outage=$(longest_pause_after "$killed_at")
    say "the longest time without an acknowledged punch after the kill: $outage ms"
    kept "writes go on within $((longest_outage / 1000)) s" [ "$outage" -le "$longest_outage" ]
    kept "the standby is the one that takes writes" [ "$(sql standby 'SELECT pg_is_in_recovery()')" = f ]
}

# longest_pause_after TIME: in milliseconds between acknowledged punches that follow each other; a very long one when
# none follows.
longest_pause_after() {
    cut -f 4 "$acknowledged" | sort -n | awk -v time="$1" '
        $1 > time { if (last && $1 - last > longest) longest = $1 - last; found = 1 }
        { last = $1 > time || $1 > last ? $1 : last }
        END { print found ? longest : 999999 }'
}
