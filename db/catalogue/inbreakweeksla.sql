-- name: Inbound Service Level by Day of the Week
-- description: How many of the calls from outside are answered in time on each day of the week, by the target of the SLA, or within 20 seconds when none is chosen. Choose a user, a department or a queue to see the calls dialled to it.
-- category: 4
-- listorder: 80
-- format: graph:line series:ofanswered,ofoffered label:weekday
-- opt_user: 1
-- opt_department: 1
-- opt_queue: 1
-- opt_sla: 1
-- help: Offered = answered + voicemail + abandoned; calls that were diverted before a telephone rang are left out. In time: answered within the target, counted from the first ring.
-- help: Service level of answered = in time / answered x 100; of offered = in time / offered x 100, so that every abandoned call and every voicemail counts against it.
-- help: Abandoned in target: the caller hung up within the target, while the call could still have been answered in time; later: after it.
-- help: A call belongs to the day on which it began in your time zone. The week begins on your company's first day and has as many days as its week.
--
-- Only the party dialled counts, and B_Name carries [entity]; no party is shown.
SELECT ELT(dayofweek, 'Sunday', 'Monday', 'Tuesday', 'Wednesday', 'Thursday', 'Friday', 'Saturday')
        AS weekday,
    SUM(legs) AS offered,
    SUM(IF(outcome IN ('intime', 'late'), legs, 0)) AS answered,
    IF([slaAnswer] = 9999999, 20, [slaAnswer]) AS target,
    SUM(IF(outcome = 'intime', legs, 0)) AS within,
    SUM(IF(outcome = 'late', legs, 0)) AS late,
    ROUND(100 * SUM(IF(outcome = 'intime', legs, 0))
        / NULLIF(SUM(IF(outcome IN ('intime', 'late'), legs, 0)), 0), 1) AS ofanswered,
    ROUND(100 * SUM(IF(outcome = 'intime', legs, 0)) / SUM(legs), 1) AS ofoffered,
    SUM(IF(outcome = 'voicemail', legs, 0)) AS voicemail,
    SUM(IF(outcome = 'before', legs, 0)) AS gaveupearly,
    SUM(IF(outcome = 'after', legs, 0)) AS gaveuplate,
    SUM(IF(outcome IN ('intime', 'late'), waits, 0)) AS wait,
    ROUND(SUM(IF(outcome IN ('intime', 'late'), waits, 0))
        / NULLIF(SUM(IF(outcome IN ('intime', 'late'), legs, 0)), 0)) AS avgwait,
    dayofweek, SUM(legs) AS n_calls
FROM (
    SELECT DAYOFWEEK(gmtdatetime) AS dayofweek,
        CASE WHEN hasconnected THEN
                IF(callduration - callconnected <= IF([slaAnswer] = 9999999, 20, [slaAnswer]),
                    'intime', 'late')
            WHEN B_Remote LIKE '!LeaveVoicemail%' THEN 'voicemail'
            WHEN callduration <= IF([slaAnswer] = 9999999, 20, [slaAnswer]) THEN 'before'
            ELSE 'after' END AS outcome,
        COUNT(*) AS legs, SUM(callduration - callconnected) AS waits
    FROM CallLog FORCE INDEX (PRIMARY)
    WHERE customerid IN('[customerSearchGroup]') AND gmtdatetime [date]
        AND TIME(gmtdatetime) [time] AND transfercall IN (0, 1)
        AND A_Trunk <> '' AND A_Out = 0 AND origCostCentre <> ''
        AND NOT (transfercall = 1 AND hasconnected = 0 AND callduration < 2)
        AND B_Name [entity]
    GROUP BY dayofweek, outcome
) AS part
WHERE (dayofweek + 7 - [startday]) % 7 < [weeklen]
GROUP BY dayofweek
ORDER BY (dayofweek + 7 - [startday]) % 7
