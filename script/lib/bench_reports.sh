# shellcheck shell=bash
# What each report of the catalogue costs: the processor time that the database takes for one month of it,
# as a ratio to counting the same rows. Uses the bench's portal, folder, sql and row.
# shellcheck disable=SC2154  # run, bench and the accounts are the bench's

# database_ms: the processor time that the database server has used, in milliseconds.
database_ms() {
    awk -v tick="$(getconf CLK_TCK)" '{ sub(/.*\) /, ""); print int(1000 * ($12 + $13) / tick) }' \
        "/proc/$(cat "$run/db.pid")/stat"
}

# cost COMMAND...: the least of three runs.
cost() {
    local best='' before spent i
    for ((i = 0; i < 3; i++)); do
        before=$(database_ms)
        "$@" >/dev/null
        spent=$(($(database_ms) - before))
        ((${best:-$((spent + 1))} <= spent)) || best=$spent
    done
    echo $((best > 0 ? best : 1))
}

# run_report NAME FIRST LAST: as the manager, to the end.
run_report() {
    curl -s -u "$MANAGER_USER:$MANAGER_PASSWORD" -G "$URL" --data pagename=callreport --data "report=$1" \
        --data-urlencode 'submit=Generate Report' --data "startDate=$2" --data "endDate=$3" \
        --data-urlencode "contact1=$bench_contact" --data wait=1 --data confirm=1
}

# The last whole month of the data, each report of the catalogue that is run for itself, dearest last.
measure_reports() {
    local first last count name ratio spent results=$bench/reports.txt
    first=$(sql "SELECT DATE_FORMAT(MAX(gmtdatetime) - INTERVAL 1 MONTH, '%Y-%m-01') FROM CallLog WHERE customerid=1")
    last=$(sql "SELECT LAST_DAY('$first')")
    bench_contact=$(sql "SELECT A_Num FROM CallLog WHERE customerid=1 AND A_Trunk<>'' AND A_Name<>'' LIMIT 1")
    count=$(cost sql "SELECT COUNT(*) FROM CallLog WHERE customerid IN('1') AND gmtdatetime BETWEEN '$first' AND '$last 23:59:59'")
    : >"$results"
    for name in "$checkout"/db/catalogue/*.sql; do
        ! grep -q '\[drill\]' "$name" || continue
        name=$(basename "$name" .sql)
        spent=$(cost run_report "$name" "$first" "$last")
        ratio=$(awk -v a="$spent" -v b="$count" 'BEGIN { printf "%.1f", a / b }')
        echo "$ratio $name $spent" >>"$results"
    done
    while read -r ratio name spent; do
        row "month of $name / COUNT(*) of its rows" "$ratio" "<= 8.0" \
            "$spent ms, $count ms$(awk -v r="$ratio" 'BEGIN { if (r > 8) print "  ABOVE 8" }')"
    done < <(sort -n "$results")
}
