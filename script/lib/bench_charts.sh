# shellcheck shell=bash
# A chart as a picture, drawn by lumora-chart and by gnuplot from the same figures, each a whole process;
# then many charts in one process. Uses the bench's folder, row and runs.

chart_bars=20
chart_font=/usr/share/fonts/truetype/ttf-bitstream-vera/Vera.ttf

# The figure of bar $1.
chart_value() { echo $(($1 * 37 % 100)); }

write_chart_description() {
    local labels='' values='' i
    for ((i = 0; i < chart_bars; i++)); do
        labels+="${labels:+,}{\"text\": \"User $i\", \"size\": 10}"
        values+="${values:+,}$(chart_value "$i")"
    done
    cat >"$bench/chart.json" <<END
{"title": {"text": "Calls by user", "style": "{font-size: 20px; color: #000000;}"},
 "x_axis": {"labels": {"rotate": "diagonal", "labels": [$labels]}, "tick-height": 4},
 "y_axis": {"max": 100, "steps": 20, "tick-length": 4},
 "elements": [{"type": "bar_glass", "colour": "#67d0dd", "text": "Calls", "values": [$values]}]}
END
}

write_gnuplot_script() {
    local i
    {
        echo "set terminal png size 600,300 font \"$chart_font,8\""
        echo "set output \"$bench/gnuplot.png\""
        echo 'set title "Calls by user"'
        echo 'set style data histograms; set style fill solid; set grid y; set xtics rotate by 45 right'
        # shellcheck disable=SC2016  # gnuplot's own names
        echo '$calls << END'
        for ((i = 0; i < chart_bars; i++)); do echo "\"User $i\" $(chart_value "$i")"; done
        echo END
        # shellcheck disable=SC2016
        echo 'plot [][0:100] $calls using 2:xtic(1) title "Calls"'
    } >"$bench/chart.gp"
}

measure_charts() {
    local ours_us theirs_us ratio
    write_chart_description
    write_gnuplot_script
    printf '%s\n' -- "$checkout/build/release/lumora-chart" "$bench/chart.json" "$bench/chart.png" \
        >"$bench/chart.cmd"
    if command -v gnuplot >/dev/null; then
        printf '%s\n' -- "$(command -v gnuplot)" "$bench/chart.gp" >"$bench/gnuplot.cmd"
        read -r ours_us _ theirs_us _ ratio < \
            <("$bench/measure" "$((runs < 50 ? runs : 50))" "$bench/chart.cmd" "$bench/gnuplot.cmd")
        row "a picture of $chart_bars bars / gnuplot" "$ratio" "<= 0.3" "$ours_us us, $theirs_us us"
    else
        row "a picture of $chart_bars bars / gnuplot" "-" "<= 0.3" "not measured: gnuplot is missing"
    fi
    "$checkout/build/release/bench_charts"
}
