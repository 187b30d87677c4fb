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
SELECT begins,
    SUM(inbound) AS inbound,
    SUM(inbound AND answered) AS answered,
    SUM(inbound AND voicemail) AS voicemail,
    SUM(inbound AND passedon) AS passedon,
    SUM(inbound AND NOT answered AND NOT voicemail AND NOT passedon) AS abandoned,
    ROUND(100 * SUM(inbound AND answered) / NULLIF(SUM(inbound), 0), 1) AS answeredpct,
    SUM(IF(inbound AND answered, ringing, 0)) AS wait,
    ROUND(SUM(IF(inbound AND answered, ringing, 0)) / NULLIF(SUM(inbound AND answered), 0))
        AS avgwait,
    MAX(IF(inbound AND NOT voicemail, ringing, NULL)) AS longestwait,
    SUM(outbound) AS outbound,
    SUM(internal) AS internal,
    COUNT(*) AS calls,
    COUNT(DISTINCT day) AS days,
    ROUND(COUNT(*) / COUNT(DISTINCT day), 1) AS callsaday,
    COUNT(*) AS n_calls
FROM (
    SELECT TIME_FORMAT(SEC_TO_TIME(HOUR(gmtdatetime) * 3600 + (MINUTE(gmtdatetime) >= 30) * 1800),
            '%H:%i') AS begins,
        TO_DAYS(gmtdatetime) AS day,
        A_Trunk <> '' AND A_Out = 0 AND origCostCentre <> '' AS inbound,
        B_Trunk <> '' AND B_Out = 1 AND origCostCentre <> '' AS outbound,
        A_Trunk = '' AND B_Trunk = '' AS internal,
        hasconnected AS answered,
        hasconnected = 0 AND B_Remote LIKE '!LeaveVoicemail%' AS voicemail,
        hasconnected = 0 AND transfercall = 1 AND callduration < 2
            AND B_Remote NOT LIKE '!LeaveVoicemail%' AS passedon,
        callduration - callconnected AS ringing
    FROM CallLog
    WHERE customerid IN('[customerSearchGroup]') AND gmtdatetime [date]
        AND TIME(gmtdatetime) [time] AND transfercall IN (0, 1)
        AND B_Remote <> '!CollectVoicemail'
        AND (A_Name [entity] OR B_Name [entity] OR origCostCentre [entity]
            OR (B_RemoteName [entity] AND B_Remote NOT LIKE '!%'))
) AS leg
GROUP BY begins
ORDER BY begins
