-- name: Voicemail Capacity
-- description: How many of the voicemail's ports were in use at the same time, day by day: the peak, the busy hour and its traffic in erlangs. It shows whether the ports suffice.
-- category: 3
-- listorder: 40
-- format: graph:line series:peak,erlangs label:day
-- help: A port is in use while the voicemail takes a message, plays messages to their owner, plays an announcement to somebody who waits, or records a call. The log does not tell when the voicemail took over a call that rang in vain before: such a leg counts from its first ring, so that the figures are on the safe side.
-- help: Peak is the largest number of ports in use at the same second; where one use ends in the second in which another begins, one port serves both. The peak hour is the first one that reached it.
-- help: The busy hour is the clock hour of the day with the most time in use; its traffic in erlangs is that time / 3600 seconds (ITU-T E.600: one erlang is one port in use for the whole hour).
-- help: What began before the period is left out, and what lasts beyond its end counts to the end.
--
-- No party is shown; a leg counts when a permitted one took part, and for who may see everybody in
-- any case. A moment's last event tells how many are in use from then on. A step of 0 at each full
-- hour that a leg passes keeps the hours' times apart.
WITH leg AS (
    SELECT B_Remote LIKE '!LeaveVoicemail%' AS taken, B_Remote = '!CollectVoicemail' AS collected,
        UNIX_TIMESTAMP(gmtdatetime) AS since,
        LEAST(UNIX_TIMESTAMP(gmtdatetime) + callduration, CEILING(UNIX_TIMESTAMP([endDate])) + 1)
            AS til,
        UNIX_TIMESTAMP(gmtdatetime) - TIME_TO_SEC(gmtdatetime) % 3600 AS hourstart
    FROM CallLog
    WHERE customerid IN('[customerSearchGroup]') AND gmtdatetime [date]
        AND TIME(gmtdatetime) [time] AND B_Remote LIKE '!%'
        AND ([allusers] OR A_Name [entity] OR B_Name [entity] OR origCostCentre [entity])
), event AS (
    SELECT IF(seq = 0, since, til) AS moment, IF(seq = 0, 1, -1) AS step, seq = 0 AND taken AS taken,
        seq = 0 AND collected AS collected, seq = 0 AND NOT taken AND NOT collected AS played
    FROM leg STRAIGHT_JOIN seq_0_to_1
    UNION ALL
    SELECT hourstart + 3600 * seq, 0, FALSE, FALSE, FALSE
    FROM leg STRAIGHT_JOIN seq_1_to_168
    WHERE til > hourstart + 3600 AND til > hourstart + 3600 * seq
), course AS (
    SELECT moment, taken, collected, played, SUM(step) OVER (sweep ROWS UNBOUNDED PRECEDING) AS busy,
        LEAD(moment, 1) OVER sweep - moment AS lasts
    FROM event
    WINDOW sweep AS (ORDER BY moment)
), hourly AS (
    SELECT moment - TIME_TO_SEC(FROM_UNIXTIME(moment)) % 3600 AS hourstart,
        SUM(taken) AS taken, SUM(collected) AS collected, SUM(played) AS played,
        MAX(IF(lasts > 0, busy, 0)) AS peak, SUM(busy * IFNULL(lasts, 0)) AS inuse
    FROM course
    GROUP BY hourstart
)
SELECT day, SUM(taken) AS taken, SUM(collected) AS collected, SUM(played) AS played,
    MAX(peak) AS peak, TIME_FORMAT(FROM_UNIXTIME(MAX(peakhour)), '%H:%i') AS peakat,
    TIME_FORMAT(FROM_UNIXTIME(MAX(busyhour)), '%H:%i') AS busyat,
    ROUND(MAX(inuse) / 3600, 2) AS erlangs, SUM(inuse) AS inuse
FROM (
    SELECT *, DATE(FROM_UNIXTIME(hourstart)) AS day,
        FIRST_VALUE(hourstart) OVER (PARTITION BY DATE(FROM_UNIXTIME(hourstart))
            ORDER BY peak DESC, hourstart) AS peakhour,
        FIRST_VALUE(hourstart) OVER (PARTITION BY DATE(FROM_UNIXTIME(hourstart))
            ORDER BY inuse DESC, hourstart) AS busyhour
    FROM hourly
    WHERE peak > 0 OR taken + collected + played > 0
) AS used
GROUP BY day
ORDER BY day
