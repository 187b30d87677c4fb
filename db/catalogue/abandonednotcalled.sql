-- name: Abandoned and Not Called Back
-- description: The outside numbers that gave up waiting in a queue and have not been spoken to since: nobody called them back, and they did not get through later. Those who gave up last come first.
-- category: 4
-- listorder: 60
-- format: graph:none
-- opt_queue: 1
-- opt_time_limit: 1
-- help: A number is listed when its latest abandoned call to a queue was followed, within the period, neither by a call of ours to it, answered or not, nor by a call from it that somebody answered, in this queue or anywhere else. Choose a period that ends today to see who still waits for a call.
-- help: Abandoned: the caller hung up before an agent, or the voicemail, answered. Callers who waited no longer than "Duration longer than" are left out; 5 seconds when that is empty.
-- help: Calls are the abandoned calls of the number in the period, those before the last contact included; queue, time and wait are those of the latest. Callers who withhold their number cannot be called back and are left out.
--
-- Only the outside number, which called a permitted queue, and that queue are shown: the abandoned
-- calls carry [entity] on B_Name. That a colleague has spoken to the number since takes it off the
-- list, whoever that was. The join keeps a number's latest abandoned call and what came after it;
-- moments are compared as seconds since 1970, which no change of the clock repeats.
SELECT number, MAX(IF(id = last, name, NULL)) AS name, MAX(IF(id = last, queue, NULL)) AS queue,
    FROM_UNIXTIME(since) AS gaveup, MAX(IF(id = last, callduration, NULL)) AS wait,
    calls, longestwait, calls AS n_calls
FROM (
    SELECT CAST(A_Num AS CHAR(64) CHARACTER SET ascii) AS number,
        MAX(UNIX_TIMESTAMP(gmtdatetime)) AS since,
        CAST(SUBSTRING(MAX(CONCAT(UNIX_TIMESTAMP(gmtdatetime), LPAD(id, 20, '0'))), 11) AS UNSIGNED)
            AS last,
        COUNT(*) AS calls, MAX(callduration) AS longestwait
    FROM CallLog FORCE INDEX (PRIMARY)
    WHERE customerid IN('[customerSearchGroup]') AND gmtdatetime [date]
        AND TIME(gmtdatetime) [time] AND transfercall IN (0, 1)
        AND A_Trunk <> '' AND A_Out = 0 AND A_Num <> '' AND origCostCentre <> ''
        AND hasconnected = 0 AND B_Remote NOT LIKE '!LeaveVoicemail%'
        AND callduration > IF([timeLimit] < 0, 5, [timeLimit])
        AND NOT (transfercall = 1 AND callduration < 2) AND B_Name [entity]
    GROUP BY number
) AS waiting INNER JOIN (
    SELECT CAST(IF(A_Trunk <> '' AND A_Out = 0, A_Num, B_Num) AS CHAR(64) CHARACTER SET ascii)
            AS outside,
        id, A_Name AS name, B_Name AS queue, callduration, UNIX_TIMESTAMP(gmtdatetime) AS at,
        hasconnected OR A_Trunk = '' AS contact
    FROM CallLog FORCE INDEX (PRIMARY)
    WHERE customerid IN('[customerSearchGroup]') AND gmtdatetime [date]
        AND transfercall IN (0, 1, 2) AND origCostCentre <> ''
        AND ((A_Trunk <> '' AND A_Out = 0) OR (B_Trunk <> '' AND B_Out = 1))
) AS leg ON outside = number AND at >= since
GROUP BY number
HAVING SUM(contact AND at > since) = 0
ORDER BY since DESC, number
