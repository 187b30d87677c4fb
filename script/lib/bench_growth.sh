# shellcheck shell=bash
# What reports cost against one pass over the whole call log, and how that grows with the log. Uses the
# bench's sql, row, bench, and the portal's settings. The log has grown fivefold at the end.

# The pass: the figures of every caller, without any key's help.
growth_scan="SELECT A_Name, COUNT(*), SUM(hasconnected), SUM(callconnected), SUM(totalcost)
    FROM CallLog USE INDEX () GROUP BY A_Name"

# seconds_of COMMAND...: how long it took.
seconds_of() {
    local start=$EPOCHREALTIME
    "$@" >/dev/null
    awk -v a="$start" -v b="$EPOCHREALTIME" 'BEGIN { printf "%.3f\n", b - a }'
}

# median COMMAND...: of five times.
median() {
    local run
    for run in 1 2 3 4 5; do seconds_of "$@"; done | sort -n | sed -n 3p
}

# ask REPORT CRITERIA: runs the report; the answer must be a table.
ask() {
    curl -sf -o "$bench/report.html" -u "$MANAGER_USER:$MANAGER_PASSWORD" \
        "$URL?pagename=callreport&report=$1&submit=Generate%20Report&wait=1&confirm=1&$2"
    grep -q 'class="reportTable"' "$bench/report.html" || die "the report $1 answered no table"
}

quotient() { awk -v a="$1" -v b="$2" 'BEGIN { printf "%.3f", a / b }'; }

# The server begins anew, with nothing of the tables in its memory.
restart_cold() {
    "$checkout/script/server" --run "$run" --stop >/dev/null
    rm -f "$run/db/ib_buffer_pool"
    "$checkout/script/server" --run "$run" --port 0 --calls "$calls" --zone UTC --detach >"$bench/server.log"
    # shellcheck source=/dev/null
    . "$run/portal.env"
}

# show_share WHAT AIM REPORT CRITERIA: against the pass.
show_share() {
    local took
    took=$(median ask "$3" "$4")
    row "$1 / pass" "$(quotient "$took" "$pass")" "$2" "$took s, $pass s"
}

measure_shares() {
    local user pass took
    user=$(sql "SELECT REPLACE(MIN(cn), ' ', '%20') FROM LDAPUsers WHERE customerid = 1 AND cn REGEXP '^[A-Za-z]+ [A-Za-z]+$'")
    pass=$(median sql "$growth_scan")
    show_share "last month by user" "<= 0.35" callsbyuser reportPeriod=lastmonth
    show_share "last month by day" "<= 0.35" callsbyday reportPeriod=lastmonth
    show_share "all calls by user" "<= 1.0" callsbyuser reportPeriod=all
    show_share "last month of one user" "<= 0.02" callsbyuser "reportPeriod=lastmonth&userfilter=$user"
    restart_cold
    took=$(seconds_of ask callsbyuser reportPeriod=lastmonth)
    restart_cold
    pass=$(seconds_of sql "$growth_scan")
    row "cold: last month by user / pass" "$(quotient "$took" "$pass")" "<= 0.2" "$took s, $pass s"
}

# older_copy DAYS LEGS: the log's newest legs once more, that many days older.
older_copy() {
    local columns
    columns=$(sql "SELECT GROUP_CONCAT(column_name ORDER BY ordinal_position) FROM information_schema.columns
        WHERE table_schema = DATABASE() AND table_name = 'CallLog' AND column_name NOT IN ('id', 'gmtdatetime')")
    sql "INSERT INTO CallLog (gmtdatetime, $columns) SELECT gmtdatetime - INTERVAL $1 DAY, $columns
        FROM CallLog WHERE gmtdatetime > NOW() - INTERVAL 99 DAY"
}

# growth_line WHAT AIM SMALL MIDDLE LARGE: seconds with one, two and five times the calls.
growth_line() {
    row "$1: 1x, 2x, 5x" "$(quotient "$5" "$3")" "$2" "$3 s, $4 s, $5 s"
}

measure_growth() {
    local month=() all=() copy
    say "Growing the call log"
    for copy in 0 1 2 3 4; do
        ((copy == 0)) || older_copy $((copy * 100))
        [[ $copy == [014] ]] || continue
        month+=("$(median ask callsbyuser reportPeriod=lastmonth)")
        all+=("$(seconds_of ask callsbyuser reportPeriod=all)")
    done
    growth_line "growth of the log, last month by user" "~ 1" "${month[@]}"
    growth_line "growth of the log, all calls by user" "~ 5" "${all[@]}"
}
