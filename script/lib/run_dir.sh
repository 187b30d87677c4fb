# shellcheck shell=bash
# The folder that holds everything one portal makes: where it lies, whom it belongs to, and that
# only one server uses it.

# A socket's path must fit into 108 bytes; the longest name that is made in the folder, with room.
longest_socket_path=100
longest_socket_name=/cgid.sock.4194304
least_free_kib=$((1024 * 1024))

# service_user: started as root, what serves requests runs as the web server's own user.
if ((EUID == 0)); then
    service_user=www-data
    # The death signal takes the servers along should this command be killed outright.
    as_service=(setpriv --reuid="$service_user" --regid="$service_user" --init-groups --pdeathsig TERM)
else
    service_user=$(id -un)
    as_service=(setpriv --pdeathsig TERM)
fi

# place_run_dir WANTED: makes the folder and sets `run` to its real path. When WANTED is no place for
# the servers, because they cannot reach it or their sockets' paths would get too long, it becomes a
# link to a folder under /var/tmp.
place_run_dir() {
    local wanted=$1 parent
    if [[ -L $wanted && ! -d $wanted ]]; then rm -f "$wanted"; fi
    parent=$(dirname "$wanted")
    [[ -d $parent ]] || die "there is no folder $parent"
    if [[ ! -d $wanted ]]; then
        if ((${#wanted} + ${#longest_socket_name} > longest_socket_path)) ||
            ! "${as_service[@]}" test -x "$parent"; then
            ln -sfn "$(mktemp -d /var/tmp/lumora.XXXXXX)" "$wanted"
        else
            mkdir "$wanted" || die "$wanted cannot be made"
        fi
    fi
    run=$(cd "$wanted" && pwd -P) || die "$wanted belongs to somebody else: use --run DIR"
    [[ -w $run ]] || die "$run belongs to somebody else: remove it, or use --run DIR"
    ((EUID != 0)) || chown "$service_user": "$run"
    "${as_service[@]}" test -w "$run" || die "$run cannot be used by $service_user: remove it"
    chmod 0755 "$run"
}

# own PATH...: hands files to the service user.
own() { ((EUID != 0)) || chown -R "$service_user": "$@"; }

check_free_space() {
    local free
    free=$(df --output=avail -k "$run" | tail -n 1)
    ((free >= least_free_kib)) ||
        die "only $((free / 1024)) MB are free in $run; the portal needs at least 1 GB"
}

# server_pid: the process that keeps the portal of this folder up; fails when there is none.
server_pid() {
    local pid
    pid=$(cat "$run/server.pid" 2>/dev/null) && kill -0 "$pid" 2>/dev/null && echo "$pid"
}

# lock_run_dir: takes the folder until this process and its database have ended. A database that a
# killed server left is given time to close its files.
lock_run_dir() {
    exec 9>"$run/lock"
    if ! flock -n 9; then
        if server_pid >/dev/null; then
            local url='' URL=''
            # shellcheck source=/dev/null
            url=$(. "$run/portal.env" 2>/dev/null && echo "at $URL" || echo "(still starting)")
            die "already running $url; stop it with $(server_command) --stop"
        fi
        flock -w 30 9 || die "a database of an earlier start still uses $run/db: end it first"
    fi
    echo $$ >"$run/server.pid"
}

# server_command: how to call the server for this folder again.
server_command() {
    if [[ $run_option == "$checkout/.run" ]]; then
        echo script/server
    else
        echo "script/server --run $run_option"
    fi
}

# end_process PID: TERM, and KILL for what does not listen; returns when it has ended.
end_process() {
    local pid=$1 tries
    kill -TERM "$pid" 2>/dev/null || return 0
    for ((tries = 0; tries < 300; tries++)); do
        kill -0 "$pid" 2>/dev/null || return 0
        sleep 0.1
    done
    kill -KILL "$pid" 2>/dev/null || true
}
