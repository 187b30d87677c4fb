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
SELECT SQL_BIG_RESULT destination, MAX(number) AS number,
    COUNT(*) AS offered,
    SUM(answered) AS answered,
    SUM(NOT answered AND voicemail) AS voicemail,
    SUM(NOT answered AND NOT voicemail) AS abandoned,
    SUM(NOT answered) AS unanswered,
    ROUND(100 * SUM(NOT answered) / COUNT(*), 1) AS unansweredpct,
    SUM(IF(answered OR voicemail, 0, waited)) AS wait,
    ROUND(SUM(IF(answered OR voicemail, 0, waited)) / NULLIF(SUM(NOT answered AND NOT voicemail), 0))
        AS avgwait,
    MAX(IF(answered OR voicemail, NULL, waited)) AS longestwait,
    COUNT(*) AS n_calls
FROM (
    SELECT customerid, B_Name AS destination, B_ShortNum AS number, hasconnected AS answered,
        B_Remote LIKE '!LeaveVoicemail%' AS voicemail, callduration AS waited
    FROM CallLog
    WHERE customerid IN('[customerSearchGroup]') AND gmtdatetime [date]
        AND TIME(gmtdatetime) [time] AND transfercall IN (0, 1)
        AND A_Trunk <> '' AND A_Out = 0 AND origCostCentre <> ''
        AND NOT (transfercall = 1 AND hasconnected = 0 AND callduration < 2)
        AND B_Name [entity]
) AS leg
GROUP BY customerid, destination
HAVING unanswered > 0
ORDER BY unanswered DESC, destination, customerid
