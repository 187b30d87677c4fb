-- name: Queue Summary
-- description: What became of the calls to each queue, and the service level: how many were answered within the target of the SLA, or within 20 seconds when none is chosen. A call counts once, for the queue that its caller reached first.
-- category: 4
-- listorder: 10
-- format: graph:stack series:answered,voicemail,abandoned label:queue
-- opt_queue: 1
-- opt_sla: 1
-- opt_time_limit: 1
-- help: Offered = answered + voicemail + abandoned: the calls from outside that reached the queue. Calls that were diverted before a telephone rang are left out. % is abandoned / offered x 100.
-- help: Service level is the share of calls answered in time, that is, within the target, in the three usual ways: of answered = in time / answered x 100; of offered = in time / offered x 100; less short = in time / (offered - short) x 100.
-- help: Short are abandoned calls whose callers hung up after no more than the seconds of "Duration longer than", or 5 when that is empty: too soon for anybody to answer.
-- help: Average wait is the waiting time of the answered calls / answered calls, also known as the average speed of answer. Waiting runs from the first ring.
--
-- Only queues are named and counted, and B_Name carries [entity]; neither the caller nor the agent
-- is shown.
SELECT queue,
    SUM(legs) AS offered,
    SUM(IF(outcome IN ('intime', 'late'), legs, 0)) AS answered,
    SUM(IF(outcome = 'voicemail', legs, 0)) AS voicemail,
    SUM(IF(outcome IN ('short', 'abandoned'), legs, 0)) AS abandoned,
    ROUND(100 * SUM(IF(outcome IN ('short', 'abandoned'), legs, 0)) / SUM(legs), 1) AS abandonedpct,
    SUM(IF(outcome = 'short', legs, 0)) AS short,
    IF([slaAnswer] = 9999999, 20, [slaAnswer]) AS target,
    SUM(IF(outcome = 'intime', legs, 0)) AS within,
    ROUND(100 * SUM(IF(outcome = 'intime', legs, 0))
        / NULLIF(SUM(IF(outcome IN ('intime', 'late'), legs, 0)), 0), 1) AS ofanswered,
    ROUND(100 * SUM(IF(outcome = 'intime', legs, 0)) / SUM(legs), 1) AS ofoffered,
    ROUND(100 * SUM(IF(outcome = 'intime', legs, 0))
        / NULLIF(SUM(IF(outcome = 'short', 0, legs)), 0), 1) AS withoutshort,
    SUM(IF(outcome = 'short', 0, legs)) AS counted,
    SUM(IF(outcome IN ('intime', 'late'), waits, 0)) AS wait,
    ROUND(SUM(IF(outcome IN ('intime', 'late'), waits, 0))
        / NULLIF(SUM(IF(outcome IN ('intime', 'late'), legs, 0)), 0)) AS speed,
    SUM(legs) AS n_calls
FROM (
    SELECT customerid, B_Name AS queue,
        CASE WHEN hasconnected THEN
                IF(callduration - callconnected <= IF([slaAnswer] = 9999999, 20, [slaAnswer]),
                    'intime', 'late')
            WHEN B_Remote LIKE '!LeaveVoicemail%' THEN 'voicemail'
            WHEN callduration <= IF([timeLimit] < 0, 5, [timeLimit]) THEN 'short'
            ELSE 'abandoned' END AS outcome,
        COUNT(*) AS legs, SUM(callduration - callconnected) AS waits
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
