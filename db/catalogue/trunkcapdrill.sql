-- name: Trunk Capacity by Hour
-- description: How many lines of a trunk were in use at the same time, hour by hour.
-- category: 3
-- listorder: 31
-- hidden: 1
-- format: graph:line series:peak,erlangs label:hour
-- multititle: Trunk
-- multikeyfield: trunk
-- multikeyfield2: day
-- opt_trunk: 1
-- opt_trunkgroup: 1
-- help: Each leg of a call holds one line of its trunk from its first ring to its end, and a call that goes on to an outside number holds one on either trunk. Peak is the largest number of lines in use at the same second; where one leg ends in the second in which another begins, one line serves both.
-- help: Traffic in erlangs is the time in use within the clock hour / 3600 seconds (ITU-T E.600). An hour that the change of the clocks repeats stands twice. Hours in which no line was in use are left out.
-- help: Calls counts each call that began on the trunk. What began before the period is left out, and what lasts beyond its end counts to the end.
--
-- [entity] stands on the trunk. No party is shown; a leg counts when a permitted one took part, as in
-- Calls by Day, and for who may see everybody in any case. A moment's last event tells how many lines
-- are in use from then on. A step of 0 at each full hour that a leg passes keeps the hours' times
-- apart. Odd numbers of the sequences stand for the trunk that a leg leaves by.
WITH leg AS (
    SELECT A_Trunk, B_Trunk, transfercall <> 2 AS starts, UNIX_TIMESTAMP(gmtdatetime) AS since,
        LEAST(UNIX_TIMESTAMP(gmtdatetime) + callduration, CEILING(UNIX_TIMESTAMP([endDate])) + 1)
            AS til,
        UNIX_TIMESTAMP(gmtdatetime) - TIME_TO_SEC(gmtdatetime) % 3600 AS hourstart
    FROM CallLog
    WHERE customerid IN('[customerSearchGroup]') AND gmtdatetime [date]
        AND TIME(gmtdatetime) [time] AND transfercall IN (0, 1, 2)
        AND ([allusers] OR A_Name [entity2] OR B_Name [entity2] OR origCostCentre [entity2]
            OR (B_RemoteName [entity2] AND B_Remote NOT LIKE '!%'))
), event AS (
    SELECT IF(seq % 2, B_Trunk, A_Trunk) AS dn, IF(seq < 2, since, til) AS moment,
        IF(seq < 2, 1, -1) AS step, seq < 2 AND (starts OR seq % 2) AS starts
    FROM leg STRAIGHT_JOIN seq_0_to_3
    WHERE IF(seq % 2, B_Trunk, A_Trunk) [entity]
    UNION ALL
    SELECT IF(seq % 2, B_Trunk, A_Trunk), hourstart + 3600 * (seq DIV 2 + 1), 0, FALSE
    FROM leg STRAIGHT_JOIN seq_0_to_335
    WHERE til > hourstart + 3600 AND til > hourstart + 3600 * (seq DIV 2 + 1)
        AND IF(seq % 2, B_Trunk, A_Trunk) [entity]
), course AS (
    SELECT dn, moment, starts, SUM(step) OVER (sweep ROWS UNBOUNDED PRECEDING) AS busy,
        LEAD(moment, 1) OVER sweep - moment AS lasts
    FROM event
    WINDOW sweep AS (PARTITION BY dn ORDER BY moment)
), hourly AS (
    SELECT dn, moment - TIME_TO_SEC(FROM_UNIXTIME(moment)) % 3600 AS hourstart,
        SUM(starts) AS calls, MAX(IF(lasts > 0, busy, 0)) AS peak, SUM(busy * IFNULL(lasts, 0)) AS inuse
    FROM course
    GROUP BY dn, hourstart
)
SELECT REPLACE(CONCAT(REPLACE(SUBSTRING_INDEX(dn, ',', 2), ',cn=', ' ('),
        IF(dn LIKE '%,%', ')', '')), 'cn=', '') AS trunk,
    DATE(FROM_UNIXTIME(hourstart)) AS day, TIME_FORMAT(FROM_UNIXTIME(hourstart), '%H:%i') AS hour,
    calls, peak, ROUND(inuse / 3600, 2) AS erlangs, inuse
FROM hourly
WHERE peak > 0 OR calls > 0
ORDER BY dn, hourstart
