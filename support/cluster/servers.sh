# The servers, and the balancer in front of them. Sourced by cluster.sh.

server_ports=()   # by number, from 1; a server keeps its ports when it is started again
operator_ports=()
server_options=() # further ones, for all servers

# The repeat window is the ordinary one and not that of the demonstration, which is too short for a retry.
start_server() { # NUMBER
    if [ -z "${server_ports[$1]:-}" ]; then
        read -r "server_ports[$1]" "operator_ports[$1]" < <(free_ports 2)
    fi
    start_process "server$1" "$server_program" serve --database "$database_url" \
        --listen "127.0.0.1:${server_ports[$1]}" --operator-listen "127.0.0.1:${operator_ports[$1]}" \
        --trusted-proxy 127.0.0.1/32 --drain-seconds "$drain_seconds" --outbox "$cluster/outbox" \
        --repeat-window 90 "${server_options[@]}"
}

server_is_ready() { curl -sf -m 2 "http://127.0.0.1:${operator_ports[$1]}/ready"; }

# Nothing is sent twice but what no server has seen (a connection that failed), and a GET that got no answer. What no
# server can answer gets no answer: the app takes any other for the end of the session.
# A check waits as long as a server tries to reach a database that is silent: 10 seconds on the connection that it has, then 3
# for each host.
balancer_configuration() { # COUNT
    local number
    cat <<TEXT
global
    maxconn 9000
defaults
    mode http
    timeout connect 2s
    timeout client 60s
    timeout server 30s
    timeout check 20s
    timeout http-request 15s
    retries 3
    option redispatch 1
    retry-on conn-failure empty-response
    errorfile 502 /dev/null
    errorfile 503 /dev/null
    errorfile 504 /dev/null
frontend clockwell
    bind 127.0.0.1:$balancer_port
    option forwardfor
    http-request disable-l7-retry unless METH_GET
    default_backend clockwell
backend clockwell
    balance leastconn
    option httpchk GET /ready
    http-check expect status 200
    default-server check inter 500ms fall 2 rise 2 observe layer4 error-limit 1 on-error mark-down
TEXT
    for number in $(seq "$1"); do
        echo "    server server$number 127.0.0.1:${server_ports[$number]} check port ${operator_ports[$number]}"
    done
    cat <<TEXT
frontend state
    bind 127.0.0.1:$state_port
    stats enable
    stats uri /
TEXT
}

start_balancer() { # COUNT
    local number
    read -r balancer_port state_port < <(free_ports 2)
    balancer_configuration "$1" >"$cluster/haproxy.cfg"
    start_process balancer /usr/sbin/haproxy -db -f "$cluster/haproxy.cfg"
    for number in $(seq "$1"); do wait_until "server $number at the balancer" 30 balancer_sees "$number"; done
}

# Columns 2, 18, 8 and 5: name, state, requests and sessions, see the balancer's own documentation.
balancer_sees() { balancer_state | awk -F, -v name="server$1" '$2 == name { up = $18 ~ /^UP/ } END { exit !up }'; }

balancer_state() { curl -sf -m 2 "http://127.0.0.1:$state_port/;csv"; }

balancer_shares() { balancer_state | awk -F, '$1 == "clockwell" && $2 ~ /^server/ { print "cluster: " $2 " was given " $8 " times work" }'; }

requests_so_far() { balancer_state | awk -F, '$1 == "clockwell" && $2 == "FRONTEND" { print $49 }'; }
requests_beyond() { [ "$(requests_so_far)" -gt "$1" ]; } # COUNT

start_rush() { # OPTION...; in the background, through the balancer
    start_process rush build/bench/bin/clockwell_rush --server "http://127.0.0.1:$balancer_port" \
        --database "$database_url" "$@"
}

rush_succeeds() {
    local status=0
    wait "${cluster_pids[rush]}" || status=$?
    unset "cluster_pids[rush]"
    return "$status"
}
