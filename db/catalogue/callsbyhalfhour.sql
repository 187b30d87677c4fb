-- name: Calls by Half Hour
-- description: How the traffic spreads over the half hours of the day, all days of the period taken together: when to have people at the telephone. A call counts once, in the half hour in which it began. Choose a user or a department to count only the calls they took part in.
-- category: 1
-- listorder: 52
-- format: graph:stack series:answered,voicemail,passedon,abandoned label:begins
-- opt_user: 1
-- opt_department: 1
-- help: Each row adds up one half hour of the clock over every day of the period: 09:30 holds the calls that began from 09:30:00 to 09:59:59 in your time zone. Half hours without a call are left out.
-- help: Answered % is answered / inbound calls x 100. Average wait is the ring time of the answered calls / answered calls; longest wait is the longest ring time of any inbound call, answered or not, that did not end at voicemail.
-- help: Days is the number of days that had a call in this half hour, calls a day is all calls / days.
--
-- A leg counts when a permitted party took part: [entity] stands on the caller, the party dialled,
-- the one who answered and the department booked. No party is shown.
SELECT TIME_FORMAT(SEC_TO_TIME(slot * 1800), '%H:%i') AS begins,
    SUM(IF(outcome IN ('answered', 'voicemail', 'passedon', 'abandoned'), legs, 0)) AS inbound,
    SUM(IF(outcome = 'answered', legs, 0)) AS answered,
    SUM(IF(outcome = 'voicemail', legs, 0)) AS voicemail,
    SUM(IF(outcome = 'passedon', legs, 0)) AS passedon,
    SUM(IF(outcome = 'abandoned', legs, 0)) AS abandoned,
    ROUND(100 * SUM(IF(outcome = 'answered', legs, 0))
        / NULLIF(SUM(IF(outcome IN ('answered', 'voicemail', 'passedon', 'abandoned'), legs, 0)), 0), 1)
        AS answeredpct,
    SUM(IF(outcome = 'answered', rings, 0)) AS wait,
    ROUND(SUM(IF(outcome = 'answered', rings, 0)) / NULLIF(SUM(IF(outcome = 'answered', legs, 0)), 0))
        AS avgwait,
    MAX(IF(outcome IN ('answered', 'passedon', 'abandoned'), longest, NULL)) AS longestwait,
    SUM(IF(outcome = 'outbound', legs, 0)) AS outbound,
    SUM(IF(outcome = 'internal', legs, 0)) AS internal,
    SUM(legs) AS calls,
    COUNT(DISTINCT day) AS days,
    ROUND(SUM(legs) / COUNT(DISTINCT day), 1) AS callsaday,
    SUM(legs) AS n_calls
FROM (
    SELECT HOUR(gmtdatetime) * 2 + (MINUTE(gmtdatetime) >= 30) AS slot,
        TO_DAYS(gmtdatetime) AS day,
        CASE WHEN A_Trunk <> '' AND A_Out = 0 AND origCostCentre <> '' THEN
                CASE WHEN hasconnected THEN 'answered'
                    WHEN B_Remote LIKE '!LeaveVoicemail%' THEN 'voicemail'
                    WHEN transfercall = 1 AND callduration < 2 THEN 'passedon'
                    ELSE 'abandoned' END
            WHEN B_Trunk <> '' AND B_Out = 1 AND origCostCentre <> '' THEN 'outbound'
            WHEN A_Trunk = '' AND B_Trunk = '' THEN 'internal'
            ELSE 'other' END AS outcome,
        COUNT(*) AS legs, SUM(callduration - callconnected) AS rings,
        MAX(callduration - callconnected) AS longest
    FROM CallLog
    WHERE customerid IN('[customerSearchGroup]') AND gmtdatetime [date]
        AND TIME(gmtdatetime) [time] AND transfercall IN (0, 1)
        AND B_Remote <> '!CollectVoicemail'
        AND (A_Name [entity] OR B_Name [entity] OR origCostCentre [entity]
            OR (B_RemoteName [entity] AND B_Remote NOT LIKE '!%'))
    GROUP BY slot, day, outcome
) AS part
GROUP BY slot
ORDER BY slot
