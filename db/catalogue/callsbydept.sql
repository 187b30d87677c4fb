-- name: Calls by Department
-- description: What each department took and made, by the cost centre that the call was booked to where it began. A call counts once; talk time takes in the legs that a department received by transfer. Passed on: diverted before the telephone rang.
-- category: 1
-- listorder: 20
-- opt_department: 1
-- format: graph:stack series:answered,voicemail,passedon,abandoned label:department
-- help: Answered, voicemail, passed on and abandoned are the four ways in which an inbound call can end; together they are its calls. Answered % is answered / calls x 100. Abandoned: the caller hung up before anybody, or the voicemail, answered.
-- help: Average wait is the ring time of the answered calls / answered calls; in a queue it is the time until an agent answered, also known as the average speed of answer.
-- help: Talk time is the time from answer to end, added up over every leg of the department; cost is the cost logged with the calls, before uplift and VAT.
--
-- A department's row is made of the calls booked to it and of nothing else, and origCostCentre
-- carries [entity]. No party of a call is shown, so the figures hide nobody.
SELECT SQL_BIG_RESULT department,
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
    SELECT customerid, origCostCentre AS department, transfercall <> 2 AS starts,
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
GROUP BY department, customerid
ORDER BY department, customerid
