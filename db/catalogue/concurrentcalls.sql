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
-- help: Calls that began before the period are not in it, even where they were still in progress. Hours in which no call began are left out.
--
-- Each leg is one step up where it begins and one step down where it ends; the running sum of the
-- steps in the order of time is what was in progress. Each hour of the period begins with a step of
-- nothing, which shows what goes on from the hour before. Peak and time are packed into one number,
-- of which the largest is the highest peak at its earliest time; quarters of an hour keep it few rows
-- until the clock's hours are known, in every zone.
-- Sorting every beginning and end by time takes fifteen times as long as counting the rows.
-- A leg counts when a permitted party took part: [entity] stands on the caller, the party dialled,
-- the one who answered and the department booked. No party is shown.
SELECT CONCAT(LPAD(hour, 2, '0'), ':00') AS begins,
    MAX(packed) DIV 4294967296 AS peak,
    FROM_UNIXTIME(4294967296 - MAX(packed) % 4294967296) AS reached,
    SUM(legs) AS legs,
    SUM(seconds) AS seconds,
    COUNT(DISTINCT IF(legs > 0, day, NULL)) * 3600 AS observed,
    ROUND(SUM(seconds) / (COUNT(DISTINCT IF(legs > 0, day, NULL)) * 3600), 2) AS traffic
FROM (
    SELECT HOUR(FROM_UNIXTIME(quarter * 900)) AS hour, TO_DAYS(FROM_UNIXTIME(quarter * 900)) AS day,
        packed, legs, seconds
    FROM (
        SELECT at DIV 900 AS quarter, MAX(level * 4294967296 + 4294967296 - at) AS packed,
            COUNT(NULLIF(seconds, 0)) AS legs, SUM(seconds) AS seconds
        FROM (
            SELECT at, seconds, CAST(SUM(step) OVER (ORDER BY at, step ROWS UNBOUNDED PRECEDING)
                AS SIGNED) AS level
            FROM (
                SELECT UNIX_TIMESTAMP(gmtdatetime) + seq * callduration AS at,
                    IF(seq = 0, 1, -1) AS step, IF(seq = 0, callduration, 0) AS seconds
                FROM CallLog INNER JOIN seq_0_to_1
                WHERE customerid IN('[customerSearchGroup]') AND gmtdatetime [date]
                    AND TIME(gmtdatetime) [time] AND transfercall IN (0, 1, 2)
                    AND callduration > 0 AND B_Remote <> '!CollectVoicemail'
                    AND (A_Name [entity] OR B_Name [entity] OR origCostCentre [entity]
                        OR (B_RemoteName [entity] AND B_Remote NOT LIKE '!%'))
                UNION ALL
                SELECT UNIX_TIMESTAMP(gmtdatetime) + seq * 3600, 0, 0
                FROM LkupDates INNER JOIN seq_0_to_24
                WHERE gmtdatetime BETWEEN [startDate] AND [endDate]
            ) AS event
            WHERE at <= UNIX_TIMESTAMP([endDate])
        ) AS running
        GROUP BY quarter
    ) AS part
) AS moment
GROUP BY hour
HAVING SUM(legs) > 0
ORDER BY hour
