# Whether promises are kept: what phones were told, held against what is recorded. Sourced by cluster.sh.

say() { printf 'cluster: %s\n' "$*"; }

kept() { # PROMISE COMMAND...: notes whether the command succeeds
    local promise=$1
    shift
    if "$@"; then
        say "kept: $promise"
    else
        say "BROKEN: $promise"
        broken=1
    fi
}

# ask_with_acknowledged: runs the SQL on standard input in a transaction with a table of what was acknowledged, and takes
# it back.
ask_with_acknowledged() {
    {
        echo "BEGIN; CREATE TEMPORARY TABLE acknowledged (employee_id text, type text, at text, told_at bigint);"
        echo "COPY acknowledged FROM STDIN;"
        cat "$acknowledged"
        echo '\.'
        cat
        echo "ROLLBACK;"
    } | psql -d "$database_url" -XAtq -F ' ' -v ON_ERROR_STOP=1
}

# compare [STATEMENT]: "ACKNOWLEDGED ROWS LOST NOT-ONCE", as it is or as it would be after a statement.
compare() {
    {
        echo "${1:-}"
        cat support/cluster/acknowledged.sql
    } | ask_with_acknowledged
}

# How many people were told of a punch from before the pause that people make between two taps: it had been recorded without
# an answer, and was found when they tapped again. (On a very busy machine, a slow answer counts, too.)
count_found_again() {
    ask_with_acknowledged <<<"SELECT count(*) FROM acknowledged k JOIN attendance a USING (employee_id)
        JOIN punches p ON p.attendance_id = a.id WHERE k.told_at - p.at > 3200;"
}

# A comparison that would not find a punch that is gone, or one that is there twice, proves nothing.
judge_acknowledged() {
    local one="SELECT p.id FROM punches p JOIN attendance a ON a.id = p.attendance_id JOIN acknowledged USING (employee_id) LIMIT 1"
    local columns="attendance_id, ordinal + 1, type, at, device_id, latitude, longitude, accuracy, distance"
    local told rows lost not_once
    read -r told rows lost not_once < <(compare)
    say "$told acknowledged, $rows rows, $lost lost, $not_once not exactly once"
    kept "nothing acknowledged is lost" [ "$lost" = 0 ]
    kept "exactly one row for each" [ "$not_once" = 0 ]
    kept "the comparison notices a punch that is taken away" \
        [ "$(compare "DELETE FROM punches WHERE id IN ($one);")" = "$told $((rows - 1)) $((lost + 1)) $((not_once + 1))" ]
    kept "the comparison notices a punch that is there twice" \
        [ "$(compare "INSERT INTO punches SELECT gen_random_uuid()::text, $columns FROM punches WHERE id IN ($one);")" = \
        "$told $((rows + 1)) $lost $((not_once + 1))" ]
}
