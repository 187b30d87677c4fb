# shellcheck shell=bash
# What a long result costs in each of its forms, against programs that do nothing else. Uses the bench's
# cgi_command, new_session, sql, row, bench, and the portal's settings.

result_rows=1000000
result_columns="id, gmtdatetime, A_Name, B_Name, B_RemoteName, callduration, callconnected, totalcost"

# result_query CUSTOMERS PERIOD ROWS: that many rows, of a portal with however few calls.
result_query() {
    echo "SELECT $result_columns FROM CallLog CROSS JOIN seq_1_to_1000 AS times WHERE customerid IN($1) AND gmtdatetime $2 LIMIT $3"
}

add_long_report() {
    local rows template
    for rows in $((result_rows / 10)) "$result_rows"; do
        template=$(result_query "\\'[customerSearchGroup]\\'" '[date]' "$rows")
        sql "REPLACE INTO CallReport (pagename, name, category, hidden, SQLQuery, reportFile)
             VALUES ('long$rows', 'Long', 1, 1, '$template', 'bench.col')"
    done
}

# measure_form FORM ARGUMENTS BASELINE RUNS: ratio, both times in microseconds, peak memory in KiB, and
# that of a tenth of the rows.
measure_form() {
    local form=$1 session rows a_us a_kib b_us ratio small_kib
    session=$(new_session)
    for rows in $((result_rows / 10)) "$result_rows"; do
        cgi_command "$form$rows.cmd" \
            "pagename=callreport&report=long$rows&submit=Generate%20Report&reportPeriod=all&wait=1&confirm=1&$2&sessionId=$session"
    done
    read -r _ small_kib < <("$bench/measure" 1 "$bench/$form$((result_rows / 10)).cmd")
    read -r a_us a_kib b_us _ ratio < <("$bench/measure" "$4" "$bench/$form$result_rows.cmd" "$bench/$3")
    echo "$ratio $a_us $b_us $a_kib $small_kib"
}

# show_form WHAT AIM MEASURED...
show_form() {
    row "$1" "$3" "$2" "$(($4 / 1000)) ms, $(($5 / 1000)) ms"
    row "its peak memory in MiB" "$(awk -v k="$6" 'BEGIN { printf "%.1f", k / 1024 }')" "<= 32" \
        "$(awk -v k="$7" 'BEGIN { printf "%.1f", k / 1024 }') MiB for a tenth of the rows"
}

measure_results() {
    local statement measured
    add_long_report
    statement=$(result_query "'1'" "BETWEEN 0 AND TIMESTAMP(DATE(NOW()),'23:59:59')" "$result_rows")
    printf '%s\n' "MYSQL_PWD=$DB_PASSWORD" -- "$(command -v mariadb)" --no-defaults --batch \
        "--socket=$DB_SOCKET" "--user=$DB_USER" "$DB_NAME" -e "$statement" >"$bench/client.cmd"
    sql "$statement" >"$bench/rows.tsv"
    cc -O2 -o "$bench/xlsx" "$checkout/tests/bench/xlsx.c" -lxlsxwriter
    printf '%s\n' PATH=/usr/bin -- "$bench/xlsx" nstttddm "$bench/rows.tsv" "$bench/rows.xlsx" >"$bench/xlsx.cmd"

    measured=$(measure_form html rows=all client.cmd 7)
    # shellcheck disable=SC2086
    show_form "HTML of $result_rows rows / mariadb --batch" "<= 0.75" $measured
    measured=$(measure_form csv csv=true client.cmd 7)
    # shellcheck disable=SC2086
    show_form "CSV of $result_rows rows / mariadb --batch" "<= 0.65" $measured
    measured=$(measure_form xlsx xlsx=true xlsx.cmd 1)
    # shellcheck disable=SC2086
    show_form "XLSX of $result_rows rows / bare libxlsxwriter loop" "<= 1.3" $measured
}
