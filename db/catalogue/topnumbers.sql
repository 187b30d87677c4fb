-- name: Top External Numbers
-- description: The hundred outside numbers with the most calls, from and to them. A call counts once, where it began; talk time and cost take in every leg. Choose a user or a department to count only the calls they took part in.
-- category: 1
-- listorder: 62
-- format: graph:bar series:inbound,outbound label:outside
-- opt_user: 1
-- opt_department: 1
-- help: A number's calls are the inbound calls from it and the outbound calls to it. Callers who withhold their number stand together under "Withheld".
-- help: Unanswered are inbound calls that no person answered at their first destination: abandoned, left to voicemail or passed on. The name is the latest in the alphabet of those logged with the number.
-- help: The totals are those of the rows shown, not of all numbers.
--
-- A leg counts when a permitted party took part: [entity] stands on the caller, the party dialled,
-- the one who answered and the department booked. Only the outside party of such a leg is shown.
-- There are nearly as many numbers as calls: the first pass only counts them, by a short key, and the
-- second works out the rest for the hundred alone. Together they take thirteen times as long as counting
-- the rows.
SELECT number, IF(number = '', 'Withheld', number) AS outside, MAX(name) AS name,
    SUM(starts AND inbound) AS inbound,
    SUM(starts AND inbound AND answered) AS answered,
    SUM(starts AND inbound AND NOT answered) AS unanswered,
    SUM(starts AND NOT inbound) AS outbound,
    SUM(starts) AS calls,
    SUM(talk) AS talk,
    SUM(cost) AS cost,
    SUM(starts) AS n_calls, COUNT(*) AS n_legs, SUM(NOT starts) AS n_transfers
FROM (
    SELECT CAST(IF(A_Trunk <> '' AND A_Out = 0, A_Num, B_Num) AS CHAR(64) CHARACTER SET ascii)
            AS topnumber,
        COUNT(*) AS calls
    FROM CallLog
    WHERE customerid IN('[customerSearchGroup]') AND gmtdatetime [date]
        AND TIME(gmtdatetime) [time] AND transfercall IN (0, 1) AND origCostCentre <> ''
        AND ((A_Trunk <> '' AND A_Out = 0) OR (B_Trunk <> '' AND B_Out = 1))
        AND (A_Name [entity] OR B_Name [entity] OR origCostCentre [entity]
            OR (B_RemoteName [entity] AND B_Remote NOT LIKE '!%'))
    GROUP BY topnumber
    ORDER BY calls DESC, topnumber
    LIMIT 100
) AS top INNER JOIN (
    SELECT CAST(IF(A_Trunk <> '' AND A_Out = 0, A_Num, B_Num) AS CHAR(64) CHARACTER SET ascii)
            AS number,
        IF(A_Trunk <> '' AND A_Out = 0, A_Name, B_Name) AS name,
        A_Trunk <> '' AND A_Out = 0 AS inbound, transfercall <> 2 AS starts,
        hasconnected AS answered, callconnected AS talk, totalcost AS cost
    FROM CallLog
    WHERE customerid IN('[customerSearchGroup]') AND gmtdatetime [date]
        AND TIME(gmtdatetime) [time] AND transfercall IN (0, 1, 2) AND origCostCentre <> ''
        AND ((A_Trunk <> '' AND A_Out = 0) OR (B_Trunk <> '' AND B_Out = 1))
        AND (A_Name [entity] OR B_Name [entity] OR origCostCentre [entity]
            OR (B_RemoteName [entity] AND B_Remote NOT LIKE '!%'))
) AS leg ON number = topnumber
GROUP BY number
ORDER BY calls DESC, number
