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
-- Two passes over the period, each with a name list, take ten times as long as counting its rows.
SELECT name AS user, MAX(number) AS number,
    SUM(IF(outcome = 'answered', legs, 0)) AS answered,
    SUM(IF(outcome = 'missed', legs, 0)) AS missed,
    SUM(IF(outcome = 'transferred', legs, 0)) AS transferred,
    SUM(IF(outcome = 'outbound', legs, 0)) AS outbound,
    SUM(IF(outcome = 'internal', legs, 0)) AS internal,
    SUM(IF(outcome IN ('answered', 'missed', 'outbound', 'internal'), legs, 0)) AS calls,
    SUM(talks) AS talks, SUM(talk) AS talk,
    ROUND(SUM(talk) / NULLIF(SUM(talks), 0)) AS avgtalk,
    SUM(cost) AS cost
FROM (
    SELECT customerid, A_Name AS name, A_ShortNum AS number,
        CASE WHEN transfercall = 2 THEN 'goes on' WHEN B_Trunk <> '' THEN 'outbound'
            ELSE 'internal' END AS outcome,
        COUNT(*) AS legs, COUNT(NULLIF(hasconnected, 0)) AS talks, SUM(callconnected) AS talk,
        SUM(totalcost) AS cost
    FROM CallLog
    WHERE customerid IN('[customerSearchGroup]') AND gmtdatetime [date]
        AND TIME(gmtdatetime) [time] AND transfercall IN (0, 1, 2)
        AND B_Remote <> '!CollectVoicemail' AND A_Trunk = '' AND A_Name [entity]
    GROUP BY customerid, name, number, outcome
    UNION ALL
    SELECT customerid, IF(hasconnected, B_RemoteName, B_Name) AS name,
        IF(hasconnected, B_Remote, B_ShortNum) AS number,
        CASE WHEN NOT hasconnected THEN 'missed' WHEN transfercall = 2 THEN 'transferred'
            ELSE 'answered' END AS outcome,
        COUNT(*), COUNT(NULLIF(hasconnected, 0)), SUM(callconnected), 0
    FROM CallLog
    WHERE customerid IN('[customerSearchGroup]') AND gmtdatetime [date]
        AND TIME(gmtdatetime) [time] AND transfercall IN (0, 1, 2)
        AND B_Remote <> '!CollectVoicemail' AND B_Trunk = ''
        AND ((hasconnected AND B_RemoteName [entity])
            OR (NOT hasconnected AND transfercall <> 2
                AND NOT (transfercall = 1 AND callduration < 2) AND B_Name [entity]))
    GROUP BY customerid, name, number, outcome
) AS part
GROUP BY customerid, name
ORDER BY name, customerid
