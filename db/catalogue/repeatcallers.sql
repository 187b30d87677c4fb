-- name: Repeat Callers
-- description: Outside numbers that called three times or more in the period, and whether they were answered. Choose a user or a department to count only the calls to them.
-- category: 1
-- listorder: 64
-- format: graph:none
-- opt_user: 1
-- opt_department: 1
-- help: A call counts once, where it began. Calls without a caller's number are left out.
-- help: Answered, voicemail, passed on and abandoned are the four ways in which an inbound call can end; together they are its calls. Answered % is answered / calls x 100.
-- help: Called back are the outbound calls to the number in the same period. Last answered is when the last of the answered calls began: where it is not the last call, the caller may still be waiting.
--
-- A call counts when a permitted party took part: [entity] stands on the caller inside, the party
-- dialled, the one who answered and the department booked. Only the outside party is shown.
-- There are nearly as many numbers as calls: the first pass only counts them, by a short key, and the
-- second works out the rest for those that repeat. Together they take twelve times as long as counting
-- the rows.
SELECT number, MAX(name) AS name,
    SUM(inbound) AS inbound,
    SUM(inbound AND answered) AS answered,
    SUM(inbound AND voicemail) AS voicemail,
    SUM(inbound AND passedon) AS passedon,
    SUM(inbound AND NOT answered AND NOT voicemail AND NOT passedon) AS abandoned,
    ROUND(100 * SUM(inbound AND answered) / SUM(inbound), 1) AS answeredpct,
    SUM(NOT inbound) AS outbound,
    FROM_UNIXTIME(MAX(IF(inbound, at, NULL))) AS lastcall,
    FROM_UNIXTIME(MAX(IF(inbound AND answered, at, NULL))) AS lastanswered,
    SUM(inbound) AS n_calls
FROM (
    SELECT CAST(A_Num AS CHAR(64) CHARACTER SET ascii) AS caller, COUNT(*) AS calls
    FROM CallLog
    WHERE customerid IN('[customerSearchGroup]') AND gmtdatetime [date]
        AND TIME(gmtdatetime) [time] AND transfercall IN (0, 1) AND origCostCentre <> ''
        AND A_Trunk <> '' AND A_Out = 0 AND A_Num <> ''
        AND (A_Name [entity] OR B_Name [entity] OR origCostCentre [entity]
            OR (B_RemoteName [entity] AND B_Remote NOT LIKE '!%'))
    GROUP BY caller
    HAVING calls >= 3
) AS repeated INNER JOIN (
    SELECT CAST(IF(A_Trunk <> '' AND A_Out = 0, A_Num, B_Num) AS CHAR(64) CHARACTER SET ascii)
            AS number,
        IF(A_Trunk <> '' AND A_Out = 0, A_Name, B_Name) AS name,
        A_Trunk <> '' AND A_Out = 0 AS inbound, UNIX_TIMESTAMP(gmtdatetime) AS at,
        hasconnected AS answered,
        hasconnected = 0 AND B_Remote LIKE '!LeaveVoicemail%' AS voicemail,
        hasconnected = 0 AND transfercall = 1 AND callduration < 2
            AND B_Remote NOT LIKE '!LeaveVoicemail%' AS passedon
    FROM CallLog
    WHERE customerid IN('[customerSearchGroup]') AND gmtdatetime [date]
        AND TIME(gmtdatetime) [time] AND transfercall IN (0, 1) AND origCostCentre <> ''
        AND ((A_Trunk <> '' AND A_Out = 0) OR (B_Trunk <> '' AND B_Out = 1))
        AND (A_Name [entity] OR B_Name [entity] OR origCostCentre [entity]
            OR (B_RemoteName [entity] AND B_Remote NOT LIKE '!%'))
) AS leg ON number = caller
GROUP BY number
ORDER BY inbound DESC, number
