# shellcheck shell=bash
# The directory client against OpenLDAP's own, on one OpenLDAP server. Uses the bench's folder, row and
# runs.

slapd_address=127.0.0.77
slapd_account=("cn=Manager,o=demo" secret)
slapd_entries=10000

stop_slapd() {
    [[ -z ${slapd_pid:-} ]] || kill "$slapd_pid" 2>/dev/null || true
    slapd_pid=
}

start_slapd() {
    local home=$bench/slapd i
    ! port_answers 4000 "$slapd_address" || die "port 4000 of $slapd_address is taken"
    rm -rf "$home"
    mkdir -p "$home/db"
    cat >"$home/slapd.conf" <<END
include /etc/ldap/schema/core.schema
modulepath /usr/lib/ldap
moduleload back_mdb
allow bind_v2
sizelimit unlimited
database mdb
maxsize 268435456
suffix "o=demo"
rootdn "${slapd_account[0]}"
rootpw ${slapd_account[1]}
directory $home/db
END
    {
        printf "dn: o=demo\nobjectClass: organization\no: demo\n\n"
        printf "dn: ou=%s,o=demo\nobjectClass: organizationalUnit\n\n" users one
        for ((i = 1; i <= slapd_entries; i++)); do
            printf 'dn: cn=User %d,ou=users,o=demo\nobjectClass: organizationalRole\ncn: User %d\ntelephoneNumber: %d\ndescription: a telephone user of the directory\n\n' \
                "$i" "$i" $((10000 + i))
        done
    } >"$home/entries.ldif"
    /usr/sbin/slapadd -q -f "$home/slapd.conf" -l "$home/entries.ldif" >"$home/slapd.log" 2>&1 ||
        die "slapd does not take the entries; $home/slapd.log says why"
    /usr/sbin/slapd -d 0 -f "$home/slapd.conf" -h "ldap://$slapd_address:4000" >>"$home/slapd.log" 2>&1 &
    slapd_pid=$!
    until port_answers 4000 "$slapd_address"; do
        kill -0 "$slapd_pid" 2>/dev/null || die "slapd did not start; $home/slapd.log says why"
        sleep 0.1
    done
}

# measure_fetch WHAT BASE RUNS AIM: ours against ldapsearch, each a whole process that signs in and
# reads everything below the base.
measure_fetch() {
    local ours_us theirs_us ratio
    printf '%s\n' -- "$checkout/build/release/bench_directory" fetch "$slapd_address" \
        "${slapd_account[@]}" "$2" >"$bench/ours.cmd"
    printf '%s\n' LDAPNOINIT=1 -- "$(command -v ldapsearch)" -x -LLL -H "ldap://$slapd_address:4000" \
        -D "${slapd_account[0]}" -w "${slapd_account[1]}" -b "$2" '(objectclass=*)' >"$bench/theirs.cmd"
    read -r ours_us _ theirs_us _ ratio < <("$bench/measure" "$3" "$bench/ours.cmd" "$bench/theirs.cmd")
    row "$1 / ldapsearch" "$ratio" "$4" "$ours_us us, $theirs_us us"
}

measure_directory() {
    start_slapd
    measure_fetch "directory: bind and one search" ou=one,o=demo "$runs" "<= 0.7"
    measure_fetch "directory: $slapd_entries entries into a table" ou=users,o=demo 15 "<= 1.0"
    stop_slapd
    "$checkout/build/release/bench_directory"
}
