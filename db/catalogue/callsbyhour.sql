-- name: Calls by Hour of Day
-- description: How the traffic of each department spreads over the hours of the day, all days of the period taken together. A call counts once, in the hour in which its first leg began and for the department that it was booked to.
-- category: 1
-- listorder: 50
-- format: series:answered,abandoned,outbound label:begins
-- multititle: Department
-- multikeyfield: department
-- opt_department: 1
-- help: Each row adds up one hour of the clock over every day of the period: 09:00 holds the calls that began from 09:00:00 to 09:59:59 in your time zone. Hours without a call are left out.
-- help: Answered, voicemail, passed on and abandoned are the four ways in which an inbound call can end; together they are its calls. Answered % is answered / calls x 100.
-- help: Average wait is the ring time of the answered calls / answered calls. Talk time also takes in the legs that a department received by transfer.
--
-- A department's rows are made of the calls booked to it and of nothing else, and origCostCentre
-- carries [entity]. No party of a call is shown, so the figures hide nobody.
SELECT department, hour, CONCAT(LPAD(hour, 2, '0'), ':00') AS begins,
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
    SUM(IF(outcome = 'outbound', legs, 0)) AS outbound,
    SUM(IF(outcome = 'internal', legs, 0)) AS internal,
    SUM(talk) AS talk,
    SUM(IF(outcome = 'transfer', 0, legs)) AS n_calls, SUM(legs) AS n_legs,
    SUM(IF(outcome = 'transfer', legs, 0)) AS n_transfers
FROM (
    SELECT origCostCentre AS department, HOUR(gmtdatetime) AS hour,
        CASE WHEN transfercall = 2 THEN 'transfer'
            WHEN A_Trunk <> '' AND A_Out = 0 THEN
                CASE WHEN hasconnected THEN 'answered'
                    WHEN B_Remote LIKE '!LeaveVoicemail%' THEN 'voicemail'
                    WHEN transfercall = 1 AND callduration < 2 THEN 'passedon'
                    ELSE 'abandoned' END
            WHEN B_Trunk <> '' AND B_Out = 1 THEN 'outbound'
            WHEN A_Trunk = '' AND B_Trunk = '' THEN 'internal'
            ELSE 'other' END AS outcome,
        COUNT(*) AS legs, SUM(callduration - callconnected) AS rings,
        SUM(callconnected) AS talk
    FROM CallLog
    WHERE customerid IN('[customerSearchGroup]') AND gmtdatetime [date]
        AND TIME(gmtdatetime) [time] AND transfercall IN (0, 1, 2)
        AND B_Remote <> '!CollectVoicemail' AND origCostCentre [entity]
    GROUP BY department, hour, outcome
) AS part
GROUP BY department, hour
ORDER BY department, hour
