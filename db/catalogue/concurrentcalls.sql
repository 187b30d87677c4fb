-- name: Concurrent Calls
-- description: How many calls were in progress at once in each hour of the day: the peak over the whole period, when it was reached, and the average traffic. Choose a user or a department to count only the calls they took part in.
-- category: 1
-- listorder: 80
-- format: graph:bar series:peak label:begins
-- opt_user: 1
-- opt_department: 1
-- opt_int_ext: 1
-- help: A leg of a call is in progress from its first ring to its end. The peak of an hour is the most legs in progress at any second of it, over all days of the period; reached is the first time when it was so many.
-- help: Traffic is the legs' total time / the time observed, in erlangs (ITU-T E.600): the average number in progress. The time observed is 3600 seconds for each day on which a call began in that hour; a leg's whole time counts for the hour in which it began.
-- help: Calls that began before the period are not in it, even where they were still in progress. Hours in which no call began are left out, and on each day only the hours in which a call began or ended are looked at.
--
-- Each leg is one step up where it begins and one step down where it ends; the running sum of the
-- steps in the order of time is what was in progress. Where an hour's first step goes down, the level
-- before it was the hour's from its start. A leg counts when a permitted party took part:
-- [entity] stands on the caller, the party dialled, the one who answered and the department booked.
-- No party is shown.
SELECT CONCAT(LPAD(hour, 2, '0'), ':00') AS begins,
    MAX(peak) AS peak,
    FROM_UNIXTIME(MIN(IF(peak = hourpeak, at, NULL))) AS reached,
    SUM(legs) AS legs,
    SUM(seconds) AS seconds,
    COUNT(DISTINCT IF(legs > 0, day, NULL)) * 3600 AS observed,
    ROUND(SUM(seconds) / (COUNT(DISTINCT IF(legs > 0, day, NULL)) * 3600), 2) AS traffic,
    hour
FROM (
    SELECT IF(carried, at - past, at) AS at, hour, day, legs, seconds,
        IF(carried, level - step, level) AS peak,
        MAX(IF(carried, level - step, level)) OVER (PARTITION BY hour) AS hourpeak
    FROM (
        SELECT at, step, legs, seconds, level, past,
            HOUR(FROM_UNIXTIME(at)) AS hour, TO_DAYS(FROM_UNIXTIME(at)) AS day,
            step < 0 AND past > 0 AND at - previous > past AS carried
        FROM (
            SELECT at, step, legs, seconds, TIME_TO_SEC(FROM_UNIXTIME(at)) % 3600 AS past,
                SUM(step) OVER (ORDER BY at ROWS UNBOUNDED PRECEDING) AS level,
                LAG(at) OVER (ORDER BY at) AS previous
            FROM (
                SELECT at, SUM(step) AS step, SUM(seconds > 0) AS legs, SUM(seconds) AS seconds
                FROM (
                    SELECT UNIX_TIMESTAMP(gmtdatetime) + seq * callduration AS at,
                        IF(seq = 0, 1, -1) AS step, IF(seq = 0, callduration, 0) AS seconds
                    FROM CallLog INNER JOIN seq_0_to_1
                    WHERE customerid IN('[customerSearchGroup]') AND gmtdatetime [date]
                        AND TIME(gmtdatetime) [time] AND transfercall IN (0, 1, 2)
                        AND callduration > 0 AND B_Remote <> '!CollectVoicemail'
                        AND (A_Name [entity] OR B_Name [entity] OR origCostCentre [entity]
                            OR (B_RemoteName [entity] AND B_Remote NOT LIKE '!%'))
                ) AS event
                WHERE at <= UNIX_TIMESTAMP([endDate])
                GROUP BY at
            ) AS moment
        ) AS running
    ) AS level
) AS peaked
GROUP BY hour
HAVING legs > 0
ORDER BY hour
