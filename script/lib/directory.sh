# shellcheck shell=bash
# The portal's private directory server: its program, its entries and its account. Uses run and
# as_service. Its folder holds the entries as they are, so that changes outlive a stop.

directory_user=cn=portal
directory_port=4000

# choose_directory_address: directory servers always use one port, so that portals that run side by
# side tell theirs apart by the address. All of 127.x.x.x is this machine.
choose_directory_address() {
    local own
    own=127.0.0.$((100 + $(cksum <<<"$run" | cut -d ' ' -f 1) % 150))
    for directory_address in 127.0.0.1 "$own"; do
        port_answers "$directory_port" "$directory_address" || return 0
    done
    die "port $directory_port is taken on 127.0.0.1 and on $own: end what uses it there"
}

# take_directory FILE: the entries that the directory begins with.
take_directory() {
    mkdir -p "$run/directory"
    write_file 0600 "$run/directory/entries.ldif" <"$1"
}

start_directory() {
    local log=$run/log/directory.log
    say "Starting the directory"
    choose_directory_address
    directory_password=$(random_password)
    install -m 0755 "$checkout/build/directoryd" "$run/directory/directoryd"
    write_file 0600 "$run/directory/password" <<<"$directory_password"
    : >"$log"
    own "$run/directory" "$log"
    "${as_service[@]}" "$run/directory/directoryd" --listen "$directory_address" \
        --user "$directory_user" --password-file "$run/directory/password" \
        --ldif "$run/directory/entries.ldif" >>"$log" 2>&1 9>&- &
    directory_pid=$!
    until port_answers "$directory_port" "$directory_address"; do
        kill -0 "$directory_pid" 2>/dev/null || {
            show_log "$log"
            die "the directory did not start"
        }
        sleep 0.1
    done
}
