-- name: Time to Answer
-- description: How many callers of each queue were answered, or gave up, after how long. Read off after which time most are answered, and how long the others are ready to wait.
-- category: 4
-- listorder: 30
-- format: graph:bar series:answered,abandoned label:waited
-- multititle: Queue
-- multikeyfield: queue
-- opt_queue: 1
-- help: Each call from outside falls into one row by the whole seconds from the first ring until an agent answered, or until the caller hung up. Calls that ended at voicemail and calls that were diverted before a telephone rang are left out.
-- help: Answered % is answered in this row / answered calls of the queue x 100; by then % adds up the rows so far: the share of the answered calls that had an agent by the end of the row's time. The same for abandoned calls.
--
-- Only queues are named and counted, and B_Name carries [entity]; neither the caller nor the agent
-- is shown.
SELECT queue,
    ELT(seq, '0-5 s', '6-10 s', '11-20 s', '21-30 s', '31-60 s', '61-120 s', 'Over 120 s') AS waited,
    SUM(IF(band = seq, answered, 0)) AS answered,
    ROUND(100 * SUM(IF(band = seq, answered, 0)) / NULLIF(SUM(answered), 0), 1) AS answeredpct,
    ROUND(100 * SUM(IF(band <= seq, answered, 0)) / NULLIF(SUM(answered), 0), 1) AS answeredby,
    SUM(IF(band = seq, abandoned, 0)) AS abandoned,
    ROUND(100 * SUM(IF(band = seq, abandoned, 0)) / NULLIF(SUM(abandoned), 0), 1) AS abandonedpct,
    ROUND(100 * SUM(IF(band <= seq, abandoned, 0)) / NULLIF(SUM(abandoned), 0), 1) AS abandonedby,
    SUM(IF(band = seq, answered + abandoned, 0)) AS n_calls
FROM (
    SELECT customerid, queue,
        1 + (wait > 5) + (wait > 10) + (wait > 20) + (wait > 30) + (wait > 60) + (wait > 120) AS band,
        SUM(hasconnected) AS answered, SUM(NOT hasconnected) AS abandoned
    FROM (
        SELECT customerid, B_Name AS queue, hasconnected, callduration - callconnected AS wait
        FROM CallLog FORCE INDEX (PRIMARY)
        WHERE customerid IN('[customerSearchGroup]') AND gmtdatetime [date]
            AND TIME(gmtdatetime) [time] AND transfercall IN (0, 1)
            AND A_Trunk <> '' AND A_Out = 0 AND origCostCentre <> ''
            AND (hasconnected OR NOT (transfercall = 1 AND callduration < 2
                OR B_Remote LIKE '!LeaveVoicemail%'))
            AND B_Name [entity]
    ) AS leg
    GROUP BY customerid, queue, band
) AS part CROSS JOIN seq_1_to_7
GROUP BY queue, customerid, seq
ORDER BY queue, customerid, seq
