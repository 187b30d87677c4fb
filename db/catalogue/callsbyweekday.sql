-- name: Calls by Weekday and Hour
-- description: When the telephone rings: the calls of each weekday and hour, all weeks of the period taken together. A call counts once, in the hour in which it began. Choose a user or a department to count only the calls they took part in.
-- category: 1
-- listorder: 54
-- format: graph:heat
-- opt_user: 1
-- opt_department: 1
-- help: Each row adds up one hour of one weekday over the period, in your time zone; the week begins on the day set for your company. Hours without a call are left out.
-- help: All calls are inbound, outbound and internal calls. Answered % is answered / inbound calls x 100; abandoned are inbound calls whose caller hung up.
-- help: Weeks is the number of dates that had a call in this hour, calls a week is all calls / weeks.
--
-- A leg counts when a permitted party took part: [entity] stands on the caller, the party dialled,
-- the one who answered and the department booked. No party is shown.
SELECT ELT(dayofweek, 'Sunday', 'Monday', 'Tuesday', 'Wednesday', 'Thursday', 'Friday', 'Saturday')
        AS weekday,
    CONCAT(LPAD(hour, 2, '0'), ':00') AS begins,
    SUM(legs) AS calls,
    SUM(IF(outcome IN ('answered', 'voicemail', 'passedon', 'abandoned'), legs, 0)) AS inbound,
    SUM(IF(outcome = 'answered', legs, 0)) AS answered,
    SUM(IF(outcome = 'abandoned', legs, 0)) AS abandoned,
    ROUND(100 * SUM(IF(outcome = 'answered', legs, 0))
        / NULLIF(SUM(IF(outcome IN ('answered', 'voicemail', 'passedon', 'abandoned'), legs, 0)), 0), 1)
        AS answeredpct,
    SUM(IF(outcome = 'outbound', legs, 0)) AS outbound,
    SUM(IF(outcome = 'internal', legs, 0)) AS internal,
    COUNT(DISTINCT day) AS weeks,
    ROUND(SUM(legs) / COUNT(DISTINCT day), 1) AS callsaweek,
    dayofweek, hour, SUM(legs) AS n_calls
FROM (
    SELECT DAYOFWEEK(gmtdatetime) AS dayofweek, HOUR(gmtdatetime) AS hour,
        TO_DAYS(gmtdatetime) AS day,
        CASE WHEN A_Trunk <> '' AND A_Out = 0 AND origCostCentre <> '' THEN
                CASE WHEN hasconnected THEN 'answered'
                    WHEN B_Remote LIKE '!LeaveVoicemail%' THEN 'voicemail'
                    WHEN transfercall = 1 AND callduration < 2 THEN 'passedon'
                    ELSE 'abandoned' END
            WHEN B_Trunk <> '' AND B_Out = 1 AND origCostCentre <> '' THEN 'outbound'
            WHEN A_Trunk = '' AND B_Trunk = '' THEN 'internal'
            ELSE 'other' END AS outcome,
        COUNT(*) AS legs
    FROM CallLog
    WHERE customerid IN('[customerSearchGroup]') AND gmtdatetime [date]
        AND TIME(gmtdatetime) [time] AND transfercall IN (0, 1)
        AND B_Remote <> '!CollectVoicemail'
        AND (A_Name [entity] OR B_Name [entity] OR origCostCentre [entity]
            OR (B_RemoteName [entity] AND B_Remote NOT LIKE '!%'))
    GROUP BY dayofweek, hour, day, outcome
) AS part
GROUP BY dayofweek, hour
ORDER BY (dayofweek - [startday] + 7) % 7, hour
