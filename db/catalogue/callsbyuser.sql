-- name: Calls by User
-- description: What each user answered, missed and called. A call counts once, where it began; one that came by transfer stands in a column of its own. An internal call counts for both users. Talk time takes in every leg of a call.
-- category: 1
-- listorder: 10
-- opt_user: 1
-- format: graph:stack series:answered,missed,outbound,internal label:user
-- help: Answered are calls that the user answered at their first destination, whoever was dialled; by transfer are those that a colleague passed on. Missed are calls to the user that nobody answered, left to voicemail or not; calls diverted before the telephone rang are left out.
-- help: All calls = answered + missed + external + internal. An internal call counts for both users, so that the column adds up to more than the calls.
-- help: Average talk time is total talk time / conversations. Cost is that of the calls made, before uplift and VAT.
--
-- Each half names and counts one party only, and that party carries [entity]: the caller in the
-- first, the one who answered, or was rung in vain, in the second. The other party is never shown.
SELECT name AS user, MAX(number) AS number,
    SUM(answered) AS answered, SUM(missed) AS missed, SUM(transferred) AS transferred,
    SUM(outbound) AS outbound, SUM(internal) AS internal,
    SUM(answered) + SUM(missed) + SUM(outbound) + SUM(internal) AS calls,
    SUM(talks) AS talks, SUM(talk) AS talk,
    ROUND(SUM(talk) / NULLIF(SUM(talks), 0)) AS avgtalk,
    SUM(cost) AS cost
FROM (
    SELECT SQL_BIG_RESULT customerid, A_Name AS name, MAX(A_ShortNum) AS number,
        0 AS answered, 0 AS missed, 0 AS transferred,
        SUM(transfercall <> 2 AND B_Trunk <> '') AS outbound,
        SUM(transfercall <> 2 AND B_Trunk = '') AS internal,
        SUM(hasconnected) AS talks, SUM(callconnected) AS talk, SUM(totalcost) AS cost
    FROM CallLog
    WHERE customerid IN('[customerSearchGroup]') AND gmtdatetime [date]
        AND TIME(gmtdatetime) [time] AND transfercall IN (0, 1, 2)
        AND B_Remote <> '!CollectVoicemail' AND A_Trunk = '' AND A_Name [entity]
    GROUP BY customerid, A_Name
    UNION ALL
    SELECT SQL_BIG_RESULT customerid, IF(hasconnected, B_RemoteName, B_Name) AS name,
        MAX(IF(hasconnected, B_Remote, B_ShortNum)) AS number,
        SUM(transfercall <> 2 AND hasconnected) AS answered, SUM(NOT hasconnected) AS missed,
        SUM(transfercall = 2 AND hasconnected) AS transferred, 0 AS outbound, 0 AS internal,
        SUM(hasconnected) AS talks, SUM(callconnected) AS talk, 0 AS cost
    FROM CallLog
    WHERE customerid IN('[customerSearchGroup]') AND gmtdatetime [date]
        AND TIME(gmtdatetime) [time] AND transfercall IN (0, 1, 2)
        AND B_Remote <> '!CollectVoicemail' AND B_Trunk = ''
        AND ((hasconnected AND B_RemoteName [entity])
            OR (NOT hasconnected AND transfercall <> 2
                AND NOT (transfercall = 1 AND callduration < 2) AND B_Name [entity]))
    GROUP BY customerid, name
) AS party
GROUP BY customerid, name
ORDER BY name, customerid
