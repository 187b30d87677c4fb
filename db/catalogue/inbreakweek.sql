-- name: Inbound Breakdown by Day of the Week
-- description: What becomes of the calls from outside on each day of the week: answered, voicemail, passed on or abandoned, and how long their callers wait. Choose a user, a department or a queue to see the calls dialled to it.
-- category: 4
-- listorder: 70
-- format: graph:stack series:answered,voicemail,passedon,abandoned label:weekday
-- opt_user: 1
-- opt_department: 1
-- opt_queue: 1
-- help: Answered, voicemail, passed on and abandoned are the four ways in which an inbound call can end where it was first dialled; together they are the calls. Passed on: diverted before the telephone rang. Abandoned: the caller hung up before anybody, or the voicemail, answered. % is answered or abandoned / calls x 100.
-- help: Days is the number of dates that had a call on this day of the week, calls a day is calls / days. A call belongs to the day on which it began in your time zone. The week begins on your company's first day and has as many days as its week.
-- help: Average wait is the ring time of the answered calls / answered calls; average talk is the talk time of the answered calls, without the legs after a transfer, / answered calls.
--
-- Only the party dialled counts, and B_Name carries [entity]; no party is shown.
SELECT ELT(dayofweek, 'Sunday', 'Monday', 'Tuesday', 'Wednesday', 'Thursday', 'Friday', 'Saturday')
        AS weekday,
    COUNT(DISTINCT day) AS days,
    SUM(legs) AS inbound,
    ROUND(SUM(legs) / COUNT(DISTINCT day), 1) AS callsaday,
    SUM(IF(outcome = 'answered', legs, 0)) AS answered,
    ROUND(100 * SUM(IF(outcome = 'answered', legs, 0)) / SUM(legs), 1) AS answeredpct,
    SUM(IF(outcome = 'voicemail', legs, 0)) AS voicemail,
    SUM(IF(outcome = 'passedon', legs, 0)) AS passedon,
    SUM(IF(outcome = 'abandoned', legs, 0)) AS abandoned,
    ROUND(100 * SUM(IF(outcome = 'abandoned', legs, 0)) / SUM(legs), 1) AS abandonedpct,
    SUM(IF(outcome = 'answered', rings, 0)) AS wait,
    ROUND(SUM(IF(outcome = 'answered', rings, 0)) / NULLIF(SUM(IF(outcome = 'answered', legs, 0)), 0))
        AS avgwait,
    SUM(talk) AS talk,
    ROUND(SUM(talk) / NULLIF(SUM(IF(outcome = 'answered', legs, 0)), 0)) AS avgtalk,
    dayofweek, SUM(legs) AS n_calls
FROM (
    SELECT DAYOFWEEK(gmtdatetime) AS dayofweek, TO_DAYS(gmtdatetime) AS day,
        CASE WHEN hasconnected THEN 'answered'
            WHEN B_Remote LIKE '!LeaveVoicemail%' THEN 'voicemail'
            WHEN transfercall = 1 AND callduration < 2 THEN 'passedon'
            ELSE 'abandoned' END AS outcome,
        COUNT(*) AS legs, SUM(callduration - callconnected) AS rings, SUM(callconnected) AS talk
    FROM CallLog FORCE INDEX (PRIMARY)
    WHERE customerid IN('[customerSearchGroup]') AND gmtdatetime [date]
        AND TIME(gmtdatetime) [time] AND transfercall IN (0, 1)
        AND A_Trunk <> '' AND A_Out = 0 AND origCostCentre <> '' AND B_Name [entity]
    GROUP BY dayofweek, day, outcome
) AS part
WHERE (dayofweek + 7 - [startday]) % 7 < [weeklen]
GROUP BY dayofweek
ORDER BY (dayofweek + 7 - [startday]) % 7
