-- name: Abandoned Call Summary
-- description: The callers of each queue who hung up before anybody answered: how many, before or after the time within which the SLA wants calls answered, and how long they had waited. Without an SLA that time is 20 seconds.
-- category: 4
-- listorder: 40
-- format: graph:stack series:early,late label:queue
-- opt_queue: 1
-- opt_sla: 1
-- help: Abandoned: the caller hung up before an agent, or the voicemail, answered. % is abandoned / offered x 100; offered = answered + voicemail + abandoned. Calls that were diverted before a telephone rang are left out.
-- help: In target counts the abandoned calls whose callers gave up within the target, while they could still have been answered in time; later those who gave up after it. Later % is later / offered x 100.
-- help: The average wait is the waiting time of the abandoned calls / abandoned calls, also known as the average time to abandon. Waiting runs from the first ring until the caller hangs up. Last is the day of the latest abandoned call.
--
-- Only queues are named and counted, and B_Name carries [entity]. The outside caller is not shown,
-- and nobody answered.
SELECT queue,
    SUM(legs) AS offered,
    SUM(IF(outcome IN ('before', 'after'), legs, 0)) AS abandoned,
    ROUND(100 * SUM(IF(outcome IN ('before', 'after'), legs, 0)) / SUM(legs), 1) AS abandonedpct,
    IF([slaAnswer] = 9999999, 20, [slaAnswer]) AS target,
    SUM(IF(outcome = 'before', legs, 0)) AS early,
    SUM(IF(outcome = 'after', legs, 0)) AS late,
    ROUND(100 * SUM(IF(outcome = 'after', legs, 0)) / SUM(legs), 1) AS afterpct,
    SUM(IF(outcome IN ('before', 'after'), waits, 0)) AS wait,
    ROUND(SUM(IF(outcome IN ('before', 'after'), waits, 0))
        / NULLIF(SUM(IF(outcome IN ('before', 'after'), legs, 0)), 0)) AS avgwait,
    MAX(IF(outcome IN ('before', 'after'), longest, NULL)) AS longestwait,
    DATE(MAX(IF(outcome IN ('before', 'after'), latest, NULL))) AS latest,
    SUM(legs) AS n_calls
FROM (
    SELECT customerid, B_Name AS queue,
        CASE WHEN hasconnected THEN 'answered'
            WHEN B_Remote LIKE '!LeaveVoicemail%' THEN 'voicemail'
            WHEN callduration <= IF([slaAnswer] = 9999999, 20, [slaAnswer]) THEN 'before'
            ELSE 'after' END AS outcome,
        COUNT(*) AS legs, SUM(callduration) AS waits, MAX(callduration) AS longest,
        MAX(gmtdatetime) AS latest
    FROM CallLog FORCE INDEX (PRIMARY)
    WHERE customerid IN('[customerSearchGroup]') AND gmtdatetime [date]
        AND TIME(gmtdatetime) [time] AND transfercall IN (0, 1)
        AND A_Trunk <> '' AND A_Out = 0 AND origCostCentre <> ''
        AND NOT (transfercall = 1 AND hasconnected = 0 AND callduration < 2)
        AND B_Name [entity]
    GROUP BY customerid, queue, outcome
) AS part
GROUP BY queue, customerid
ORDER BY queue, customerid
