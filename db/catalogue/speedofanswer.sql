-- name: Average Speed of Answer
-- description: How long the callers of each queue waited for an agent, day by day. A call counts once, for the queue that its caller reached first and on the day on which it began.
-- category: 4
-- listorder: 20
-- format: graph:line series:speed label:day
-- multititle: Queue
-- multikeyfield: queue
-- opt_queue: 1
-- opt_sla: 1
-- help: Average speed of answer is the waiting time of the answered calls / answered calls. Waiting runs from the first ring until an agent answers; announcements that the caller hears meanwhile are part of it.
-- help: Offered = answered + voicemail + abandoned. In time are the calls answered within the target of the SLA, or 20 seconds without one; service level is in time / offered x 100. Time to abandon is the waiting time of the abandoned calls / abandoned calls.
-- help: The day is that of your time zone. Days without a call are left out.
--
-- Only queues are named and counted, and B_Name carries [entity]; neither the caller nor the agent
-- is shown.
SELECT queue, day,
    SUM(legs) AS offered,
    SUM(IF(outcome IN ('intime', 'late'), legs, 0)) AS answered,
    SUM(IF(outcome = 'abandoned', legs, 0)) AS abandoned,
    SUM(IF(outcome IN ('intime', 'late'), waits, 0)) AS wait,
    ROUND(SUM(IF(outcome IN ('intime', 'late'), waits, 0))
        / NULLIF(SUM(IF(outcome IN ('intime', 'late'), legs, 0)), 0)) AS speed,
    MAX(IF(outcome IN ('intime', 'late'), longest, NULL)) AS slowest,
    SUM(IF(outcome = 'abandoned', waits, 0)) AS lost,
    ROUND(SUM(IF(outcome = 'abandoned', waits, 0))
        / NULLIF(SUM(IF(outcome = 'abandoned', legs, 0)), 0)) AS toabandon,
    SUM(IF(outcome = 'intime', legs, 0)) AS within,
    ROUND(100 * SUM(IF(outcome = 'intime', legs, 0)) / SUM(legs), 1) AS servicelevel,
    SUM(legs) AS n_calls
FROM (
    SELECT customerid, B_Name AS queue, DATE(gmtdatetime) AS day,
        CASE WHEN hasconnected THEN
                IF(callduration - callconnected <= IF([slaAnswer] = 9999999, 20, [slaAnswer]),
                    'intime', 'late')
            WHEN B_Remote LIKE '!LeaveVoicemail%' THEN 'voicemail'
            ELSE 'abandoned' END AS outcome,
        COUNT(*) AS legs, SUM(callduration - callconnected) AS waits,
        MAX(callduration - callconnected) AS longest
    FROM CallLog FORCE INDEX (PRIMARY)
    WHERE customerid IN('[customerSearchGroup]') AND gmtdatetime [date]
        AND TIME(gmtdatetime) [time] AND transfercall IN (0, 1)
        AND A_Trunk <> '' AND A_Out = 0 AND origCostCentre <> ''
        AND NOT (transfercall = 1 AND hasconnected = 0 AND callduration < 2)
        AND B_Name [entity]
    GROUP BY customerid, queue, day, outcome
) AS part
GROUP BY queue, day
ORDER BY queue, day
