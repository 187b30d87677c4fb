-- name: Unanswered Calls by Destination
-- description: Calls from outside that nobody answered, by the user, department or queue dialled; the destinations that missed most come first. A call counts once, at its first destination; one that was diverted before the telephone rang is left out. Abandoned: the caller hung up.
-- category: 1
-- listorder: 40
-- opt_user: 1
-- opt_department: 1
-- format: graph:bar series:voicemail,abandoned label:destination
-- help: Calls = answered + voicemail + abandoned, at the destination first dialled. Unanswered % is (voicemail + abandoned) / calls x 100.
-- help: Wait before hanging up is the time from the first ring until the caller gave up, over the abandoned calls; also known as the average time to abandon.
-- help: Destinations that missed no call are left out.
--
-- Only the party dialled is named and counted, and B_Name carries [entity]. The outside caller is
-- neither shown nor counted apart, and nobody answered, so the figures hide nobody.
SELECT destination, MAX(number) AS number,
    SUM(legs) AS offered,
    SUM(IF(result = 'answered', legs, 0)) AS answered,
    SUM(IF(result = 'voicemail', legs, 0)) AS voicemail,
    SUM(IF(result = 'abandoned', legs, 0)) AS abandoned,
    SUM(IF(result = 'answered', 0, legs)) AS unanswered,
    ROUND(100 * SUM(IF(result = 'answered', 0, legs)) / SUM(legs), 1) AS unansweredpct,
    SUM(IF(result = 'abandoned', waited, 0)) AS wait,
    ROUND(SUM(IF(result = 'abandoned', waited, 0))
        / NULLIF(SUM(IF(result = 'abandoned', legs, 0)), 0)) AS avgwait,
    MAX(IF(result = 'abandoned', longest, NULL)) AS longestwait,
    SUM(legs) AS n_calls
FROM (
    SELECT customerid, B_Name AS destination, B_ShortNum AS number,
        CASE WHEN hasconnected THEN 'answered' WHEN B_Remote LIKE '!LeaveVoicemail%' THEN 'voicemail'
            ELSE 'abandoned' END AS result,
        COUNT(*) AS legs, SUM(callduration) AS waited, MAX(callduration) AS longest
    FROM CallLog
    WHERE customerid IN('[customerSearchGroup]') AND gmtdatetime [date]
        AND TIME(gmtdatetime) [time] AND transfercall IN (0, 1)
        AND A_Trunk <> '' AND A_Out = 0 AND origCostCentre <> ''
        AND NOT (transfercall = 1 AND hasconnected = 0 AND callduration < 2)
        AND B_Name [entity]
    GROUP BY customerid, destination, number, result
) AS part
GROUP BY customerid, destination
HAVING unanswered > 0
ORDER BY unanswered DESC, destination, customerid
