# shellcheck shell=bash
# The portal's private MariaDB: its files, its accounts and its data. Uses run, as_service and zone.

db_name=lumora
db_user=lumora

# db ARG...: the client as the server's administrator.
db() { mariadb --defaults-file="$run/admin.cnf" "$@"; }

# An interrupted start must not leave half a system database under the final name.
install_database() {
    [[ -d $run/db/mysql ]] && return
    say "Making the database's files"
    rm -rf "$run/db" "$run/db.new" "$run/loaded"
    "${as_service[@]}" mariadb-install-db --no-defaults --datadir="$run/db.new" --skip-test-db \
        --auth-root-authentication-method=socket >"$run/log/install-db.log" 2>&1 || {
        show_log "$run/log/install-db.log"
        die "the database's files could not be made"
    }
    mv "$run/db.new" "$run/db"
}

# Accounts and passwords are set anew at every start, by the server itself before it listens: no
# password has to outlive a run, and it does not matter who made the folder.
write_accounts() {
    local admin_password
    admin_password=$(random_password)
    db_password=$(random_password)
    write_file 0600 "$run/admin.cnf" <<END
[client]
socket=$run/db.sock
user=root
password=$admin_password
default-character-set=utf8mb4
END
    write_file 0600 "$run/accounts.sql" <<END
ALTER USER root@localhost IDENTIFIED BY '$admin_password';
CREATE DATABASE IF NOT EXISTS $db_name CHARACTER SET utf8mb4 COLLATE utf8mb4_general_ci;
CREATE USER IF NOT EXISTS $db_user@localhost;
ALTER USER $db_user@localhost IDENTIFIED BY '$db_password';
GRANT SELECT, INSERT, UPDATE, DELETE, EXECUTE, CREATE TEMPORARY TABLES ON $db_name.* TO $db_user@localhost;
END
    own "$run/accounts.sql"
}

# An eighth of the machine's memory, at least 256 MiB and at most 4 GiB: the server takes it as it needs it.
buffer_pool_mib() {
    awk '$1 == "MemTotal:" { m = int($2 / 8192); print (m < 256 ? 256 : m > 4096 ? 4096 : m) }' /proc/meminfo
}

# Lower-case table names: programs of different systems write the same table in different case. The
# demo's data can be made again, so nothing waits for the disk.
start_database() {
    local options=(
        --no-defaults --datadir="$run/db" --socket="$run/db.sock" --pid-file="$run/db.pid"
        --log-error="$run/log/database.log" --tmpdir="$run/tmp" --init-file="$run/accounts.sql"
        --skip-networking --skip-name-resolve --local-infile=1 --lower-case-table-names=1
        --character-set-server=utf8mb4 --collation-server=utf8mb4_general_ci
        --max-allowed-packet=64M --performance-schema=OFF
        --innodb-buffer-pool-size="$(buffer_pool_mib)M" --innodb-log-file-size=128M
        --innodb-flush-log-at-trx-commit=0
    )
    [[ $zone != UTC ]] || options+=(--default-time-zone=+00:00)

    say "Starting the database"
    write_accounts
    rm -f "$run/db.pid" "$run/db.sock"
    : >"$run/log/database.log"
    own "$run/log/database.log"
    # It keeps the folder's lock, so that nobody else opens these files before it has closed them.
    TZ=$zone "${as_service[@]}" mariadbd "${options[@]}" >/dev/null 2>&1 &
    db_pid=$!
    until db -e 'SELECT 1' >/dev/null 2>&1; do
        kill -0 "$db_pid" 2>/dev/null || {
            show_log "$run/log/database.log"
            die "the database did not start"
        }
        sleep 0.1
    done
    rm -f "$run/accounts.sql"
}

load_time_zones() {
    [[ $(db -N -e 'SELECT COUNT(*) FROM mysql.time_zone_name') == 0 ]] || return 0
    say "Loading the time zones"
    mariadb-tzinfo-to-sql /usr/share/zoneinfo 2>/dev/null | db mysql
}

# load_data CALLS RESET: brings the schema and the demo data, of which the directory's entries are a
# part, up to what is asked. CALLS may be empty:
# then data that is there stays. `loaded` tells what the database holds and is there only when it
# holds that completely.
load_data() {
    local calls=$1 reset=$2 had_calls='' had_schema='' schema
    schema=$(sha256sum <"$checkout/db/schema.sql")
    [[ ! -f $run/loaded ]] || { read -r had_calls && read -r had_schema; } <"$run/loaded"
    if [[ $reset == yes || -z $had_calls || $had_calls != "${calls:-$had_calls}" ||
        ! -f $run/directory/entries.ldif ]]; then
        fill_database "${calls:-200000}" "$schema"
    elif [[ $had_schema != "$schema" ]]; then
        say "Bringing the schema up to date (--reset makes the demo data anew)"
        db "$db_name" <"$checkout/db/schema.sql"
        printf '%s\n' "$had_calls" "$schema" >"$run/loaded"
    fi
}

fill_database() {
    local calls=$1 schema=$2
    rm -rf "$run/loaded" "$run/demo" "$run/root/Norvane"
    say "Making the schema"
    db -e "DROP DATABASE $db_name; CREATE DATABASE $db_name CHARACTER SET utf8mb4 COLLATE utf8mb4_general_ci"
    db "$db_name" <"$checkout/db/schema.sql"
    say "Inventing $calls calls"
    mkdir -p "$run/demo"
    "$checkout/build/demodata" --calls "$calls" --seed 1 --out "$run/demo"
    say "Loading them"
    (cd "$run/demo" && db --local-infile=1 "$db_name" <load.sql)
    write_file 0600 "$run/demo-users.tsv" <"$run/demo/demo-users.tsv"
    take_directory "$run/demo/directory.ldif"
    rm -rf "$run/demo"
    printf '%s\n' "$calls" "$schema" >"$run/loaded"
}

load_catalogue() {
    say "Loading the report catalogue"
    MYSQL_PWD=$db_password "$checkout/script/catalogue" --socket "$run/db.sock" --db "$db_name" \
        --user "$db_user" --root "$run/root"
}
