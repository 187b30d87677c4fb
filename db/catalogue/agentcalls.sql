-- name: Calls Handled by Agent
-- description: The calls that each agent of the contact centre took: from outside, from colleagues and by transfer, how long they spoke, and how many they passed on. Choose an agent to see one.
-- category: 4
-- listorder: 25
-- format: graph:stack series:external,internal,transferred label:agent
-- opt_agent: 1
-- help: External are calls from outside that the agent answered at their first destination, a queue or their own telephone; internal those of colleagues; by transfer those that a colleague passed on. All is every conversation that the agent took.
-- help: Passed on are those of them that the agent transferred further; % is passed on / all x 100.
-- help: Average talk is talk time / all; also known as the average handling time, here without wrap-up. Callers' wait is the ring time before the agent answered a call from outside / external calls.
--
-- Only the agent who answered is named and counted, and B_RemoteName carries [entity].
SELECT agent, MAX(number) AS number,
    SUM(IF(kind = 'external', legs, 0)) AS external,
    SUM(IF(kind = 'internal', legs, 0)) AS internal,
    SUM(IF(kind = 'transfer', legs, 0)) AS transferred,
    SUM(legs) AS handled,
    SUM(passedon) AS passedon,
    ROUND(100 * SUM(passedon) / SUM(legs), 1) AS passedonpct,
    SUM(talk) AS talk,
    ROUND(SUM(talk) / SUM(legs)) AS avgtalk,
    MAX(longest) AS longesttalk,
    SUM(IF(kind = 'external', rings, 0)) AS wait,
    ROUND(SUM(IF(kind = 'external', rings, 0)) / NULLIF(SUM(IF(kind = 'external', legs, 0)), 0))
        AS avgwait
FROM (
    SELECT customerid, B_RemoteName AS agent, MAX(B_Remote) AS number,
        CASE WHEN transfercall = 2 THEN 'transfer'
            WHEN A_Trunk <> '' AND A_Out = 0 AND origCostCentre <> '' THEN 'external'
            WHEN A_Trunk = '' THEN 'internal'
            ELSE 'other' END AS kind,
        COUNT(*) AS legs, SUM(transferConfId <> '') AS passedon,
        SUM(callconnected) AS talk, MAX(callconnected) AS longest,
        SUM(callduration - callconnected) AS rings
    FROM CallLog FORCE INDEX (PRIMARY)
    WHERE customerid IN('[customerSearchGroup]') AND gmtdatetime [date]
        AND TIME(gmtdatetime) [time] AND transfercall IN (0, 1, 2) AND hasconnected
        AND B_Trunk = '' AND B_Remote NOT LIKE '!%' AND B_RemoteName [entity]
    GROUP BY customerid, agent, kind
) AS part
GROUP BY agent, customerid
ORDER BY agent, customerid
