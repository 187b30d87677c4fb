# shellcheck shell=bash
# What it costs to render reports in the background, and whether many at once get along. Uses the
# bench's sql, new_session, row, bench, report_rows, and the portal's settings.

# A user without a right to more processes than there are makes the request render its report itself.
# Root has every right, so that the program then runs as the portal's own user.
limited_to() {
    ((EUID != 0)) || printf '%s\n' "$(command -v setpriv)" "--reuid=$(stat -c %u "$ROOT")" --clear-groups
    printf '%s\n' "$(command -v prlimit)" "--nproc=$1:"
}

# report_command FILE PROCESSES QUERY: like cgi_command, for a program that may make that many processes.
report_command() {
    cgi_command "$1" "pagename=callreport&submit=Generate%20Report&wait=1&$3"
    local line
    line=$(grep -n '^--$' "$bench/$1" | cut -d: -f1)
    limited_to "$2" | sed -i "${line}r /dev/stdin" "$bench/$1"
}

# measure_hand_over RUNS QUERY: how fast a report that another process renders is, against the same one
# straight from the request; then both times in microseconds.
measure_hand_over() {
    local straight_us background_us ratio
    report_command straight.cmd 1 "$2"
    report_command background.cmd "$(ulimit -Hu)" "$2"
    read -r straight_us _ background_us _ ratio < \
        <("$bench/measure" "$1" "$bench/straight.cmd" "$bench/background.cmd")
    echo "$ratio $straight_us $background_us"
}

add_slow_report() {
    sql "REPLACE INTO CallReport (pagename, name, category, hidden, SQLQuery, reportFile)
         VALUES ('benchslow', 'Bench', 1, 1, 'SELECT SLEEP(60) AS id', 'benchslow.col')"
    echo 'id number Id' >"$ROOT/Norvane/config/reports/benchslow.col"
}

as_manager() { curl -s -u "$MANAGER_USER:$MANAGER_PASSWORD" "$@"; }

measure_first_byte() {
    local session seconds run_id
    add_slow_report
    session=$(new_session)
    seconds=$(as_manager -o "$bench/progress.html" -w '%{time_starttransfer}' \
        "$URL?pagename=callreport&report=benchslow&submit=Generate%20Report&sessionId=$session")
    run_id=$(sed -n 's/.*name="query_id" value="\([0-9]*\)".*/\1/p' "$bench/progress.html")
    as_manager -o /dev/null -d "pagename=callreport&report=benchslow&submit=Cancel%20Report&query_id=$run_id&sessionId=$session" "$URL"
    row "first byte of a minute's report's progress page, seconds" "$seconds" "<= 2.3" ""
}

# run_at SESSION USER PASSWORD MINUTE: one run, which its answer must name; prints what came of it.
run_at() {
    local begin=0$(($4 / 60)):$(($4 % 60 / 10))$(($4 % 10)) page
    page=$(curl -s -u "$2:$3" "$URL?pagename=callreport&report=bench$((report_rows / 10))&submit=Generate%20Report&reportPeriod=all&wait=1&sessionId=$1&begintime=${begin/:/}&endtime=2359")
    if [[ $page != *'</html>'* ]]; then
        echo cut
    elif [[ $(grep -o "Time Filter:  between '[0-9:]*" <<<"$page") != "Time Filter:  between '$begin:00" ]]; then
        echo mixed
    else
        echo whole
    fi
}

measure_many() {
    local name session minute=0 whole mixed left
    for name in ADMIN MANAGER SUPERVISOR RESTRICTED LIMITED MASKED ZONED LONDON; do
        local user=${name}_USER password=${name}_PASSWORD
        session=$(curl -s -u "${!user}:${!password}" "$URL" | grep -o 'sessionId=[0-9]*' | head -n 1)
        for _ in 1 2 3 4 5 6 7 8; do
            run_at "${session#sessionId=}" "${!user}" "${!password}" $((++minute)) &
        done
    done >"$bench/many.log"
    wait
    whole=$(grep -c whole "$bench/many.log" || true)
    mixed=$(grep -c mixed "$bench/many.log" || true)
    left=$(find "$ROOT/Norvane/fifos" /dev/shm -name '*_*' \( -type p -o -name 'sem.prog_*' \) | wc -l)
    row "8 users with 8 reports each at once: whole, mixed, left" "$whole/$mixed/$left" "64/0/0" ""
}

measure_background() {
    local ratio straight_us background_us session
    session=$(new_session)
    measure_first_byte
    read -r ratio straight_us background_us < \
        <(measure_hand_over 21 "report=bench$report_rows&reportPeriod=all&rows=all&sessionId=$session")
    row "$report_rows rows through the fifo / straight, speed" "$ratio" ">= 0.8" \
        "$((background_us / 1000)) ms, $((straight_us / 1000)) ms"
    read -r ratio straight_us background_us < \
        <(measure_hand_over 50 "report=callsbyday&reportPeriod=today&sessionId=$session")
    row "a quick report through the fifo / straight, speed" "$ratio" "-" \
        "$background_us us, $straight_us us"
    measure_many
}
