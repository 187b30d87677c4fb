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
-- help: Average wait is the ring time of the answered calls / answered calls. Talk time and cost also take in the legs that a department received by transfer.
--
-- A department's rows are made of the calls booked to it and of nothing else, and origCostCentre
-- carries [entity]. No party of a call is shown, so the figures hide nobody.
SELECT SQL_BIG_RESULT department, hour, CONCAT(LPAD(hour, 2, '0'), ':00') AS begins,
    SUM(starts AND inbound) AS inbound,
    SUM(starts AND inbound AND answered) AS answered,
    SUM(starts AND inbound AND voicemail) AS voicemail,
    SUM(starts AND inbound AND passedon) AS passedon,
    SUM(starts AND inbound AND NOT answered AND NOT voicemail AND NOT passedon) AS abandoned,
    ROUND(100 * SUM(starts AND inbound AND answered) / NULLIF(SUM(starts AND inbound), 0), 1)
        AS answeredpct,
    SUM(IF(starts AND inbound AND answered, ringing, 0)) AS wait,
    ROUND(SUM(IF(starts AND inbound AND answered, ringing, 0))
        / NULLIF(SUM(starts AND inbound AND answered), 0)) AS avgwait,
    SUM(starts AND outbound) AS outbound,
    SUM(starts AND internal) AS internal,
    SUM(talk) AS talk,
    SUM(cost) AS cost,
    SUM(starts) AS n_calls, COUNT(*) AS n_legs, SUM(NOT starts) AS n_transfers
FROM (
    SELECT origCostCentre AS department, HOUR(gmtdatetime) AS hour, transfercall <> 2 AS starts,
        A_Trunk <> '' AND A_Out = 0 AS inbound,
        B_Trunk <> '' AND B_Out = 1 AS outbound,
        A_Trunk = '' AND B_Trunk = '' AS internal,
        hasconnected AS answered,
        hasconnected = 0 AND B_Remote LIKE '!LeaveVoicemail%' AS voicemail,
        hasconnected = 0 AND transfercall = 1 AND callduration < 2
            AND B_Remote NOT LIKE '!LeaveVoicemail%' AS passedon,
        callduration - callconnected AS ringing, callconnected AS talk, totalcost AS cost
    FROM CallLog
    WHERE customerid IN('[customerSearchGroup]') AND gmtdatetime [date]
        AND TIME(gmtdatetime) [time] AND transfercall IN (0, 1, 2)
        AND B_Remote <> '!CollectVoicemail' AND origCostCentre [entity]
) AS leg
GROUP BY department, hour
ORDER BY department, hour
