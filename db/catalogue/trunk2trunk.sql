-- name: Trunk to Trunk Calls
-- description: Calls that came in through one trunk and left through another, because somebody diverts their telephone to an outside number or the system connects two networks. Each of them takes up two lines, and the way out costs money.
-- category: 3
-- listorder: 20
-- format: money graph:bar series:legs label:Route
-- opt_trunk: 1
-- help: Calls counts each passage from trunk to trunk once, answered those that the outside party took. Answered % is answered / calls x 100.
-- help: Average wait runs from the first ring to the answer, for answered calls. Lines in use is twice the time from the first ring to the end, since each call holds a line on either trunk.
-- help: The prefix narrows the report to calls that left to numbers which begin with it, as in the plan of least cost calls from trunk to trunk.
--
-- Neither party is shown. A call counts when the department that it is booked to carries [entity];
-- for who may see everybody it counts in any case.
SELECT CONCAT(SUBSTRING_INDEX(origin, ' (', 1), ' - ', SUBSTRING_INDEX(way, ' (', 1)) AS Route,
    origin AS fromtrunk, way AS totrunk,
    legs, answered, ROUND(100 * answered / legs, 1) AS answeredpct, wait,
    ROUND(wait / NULLIF(answered, 0)) AS avgwait, talk, inuse, cost
FROM (
    SELECT customerid, REPLACE(CONCAT(REPLACE(SUBSTRING_INDEX(A_Trunk, ',', 2), ',cn=', ' ('),
            IF(A_Trunk LIKE '%,%', ')', '')), 'cn=', '') AS origin,
        REPLACE(CONCAT(REPLACE(SUBSTRING_INDEX(B_Trunk, ',', 2), ',cn=', ' ('),
            IF(B_Trunk LIKE '%,%', ')', '')), 'cn=', '') AS way, COUNT(*) AS legs,
        SUM(hasconnected) AS answered,
        SUM(IF(hasconnected, callduration - callconnected, 0)) AS wait,
        SUM(callconnected) AS talk, 2 * SUM(callduration) AS inuse, SUM(totalcost) AS cost
    FROM CallLog
    WHERE customerid IN('[customerSearchGroup]') AND gmtdatetime [date]
        AND TIME(gmtdatetime) [time] AND transfercall IN (0, 1, 2)
        AND A_Trunk <> '' AND A_Out = 0 AND B_Trunk <> '' AND B_Out = 1
        AND LEFT(B_Num, CHAR_LENGTH('[extra]')) = '[extra]'
        AND ([allusers] OR origCostCentre [entity])
    GROUP BY customerid, A_Trunk, B_Trunk
) AS passage
ORDER BY legs DESC, origin, way, customerid
