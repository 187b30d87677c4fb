-- name: Abandoned Calls by Day
-- description: How many callers of the queues gave up each day, with and without those who hung up at once. "Duration longer than" says how many seconds somebody must have waited to count; 5 when it is empty.
-- category: 4
-- listorder: 50
-- format: graph:line series:rate,netrate label:day
-- opt_queue: 1
-- opt_time_limit: 1
-- help: Abandoned: the caller hung up before an agent, or the voicemail, answered. Short are those who had waited no longer than the threshold, most of them wrong numbers and second thoughts; longer = abandoned - short.
-- help: Abandon rate of all = abandoned / offered x 100. Less short = longer / (offered - short) x 100: the short calls are taken off both sides. Offered = answered + voicemail + abandoned; calls that were diverted before a telephone rang are left out.
-- help: The average wait is that of the longer ones. The day is that of your time zone; days without a call are left out.
--
-- Only calls to queues are counted, and B_Name carries [entity]. The outside caller is not shown,
-- and nobody answered.
SELECT day,
    SUM(legs) AS offered,
    SUM(IF(outcome IN ('short', 'longer'), legs, 0)) AS abandoned,
    ROUND(100 * SUM(IF(outcome IN ('short', 'longer'), legs, 0)) / SUM(legs), 1) AS rate,
    IF([timeLimit] < 0, 5, [timeLimit]) AS threshold,
    SUM(IF(outcome = 'short', legs, 0)) AS short,
    SUM(IF(outcome = 'longer', legs, 0)) AS longer,
    SUM(IF(outcome = 'short', 0, legs)) AS counted,
    ROUND(100 * SUM(IF(outcome = 'longer', legs, 0))
        / NULLIF(SUM(IF(outcome = 'short', 0, legs)), 0), 1) AS netrate,
    SUM(IF(outcome = 'longer', waits, 0)) AS wait,
    ROUND(SUM(IF(outcome = 'longer', waits, 0))
        / NULLIF(SUM(IF(outcome = 'longer', legs, 0)), 0)) AS avgwait,
    SUM(legs) AS n_calls
FROM (
    SELECT DATE(gmtdatetime) AS day,
        CASE WHEN hasconnected OR B_Remote LIKE '!LeaveVoicemail%' THEN 'other'
            WHEN callduration <= IF([timeLimit] < 0, 5, [timeLimit]) THEN 'short'
            ELSE 'longer' END AS outcome,
        COUNT(*) AS legs, SUM(callduration) AS waits
    FROM CallLog FORCE INDEX (PRIMARY)
    WHERE customerid IN('[customerSearchGroup]') AND gmtdatetime [date]
        AND TIME(gmtdatetime) [time] AND transfercall IN (0, 1)
        AND A_Trunk <> '' AND A_Out = 0 AND origCostCentre <> ''
        AND NOT (transfercall = 1 AND hasconnected = 0 AND callduration < 2)
        AND B_Name [entity]
    GROUP BY day, outcome
) AS part
GROUP BY day
ORDER BY day
