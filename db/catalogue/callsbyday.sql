-- name: Calls by Day
-- description: The traffic of each day. A call counts once, on the day and by the parties of its first leg; talk time and cost take in every leg. Passed on: diverted before the telephone rang. Choose a user or a department to count only the calls they took part in.
-- category: 1
-- listorder: 30
-- opt_user: 1
-- opt_department: 1
-- format: graph:line series:inbound,answered,outbound,internal label:day
-- help: Answered, voicemail, passed on and abandoned are the four ways in which an inbound call can end; together they are its calls. Answered % is answered / calls x 100. Abandoned: the caller hung up before anybody, or the voicemail, answered.
-- help: Talk time is the time from answer to end, added up over every leg; cost is the cost logged with the calls, before uplift and VAT.
-- help: The day is that of your time zone. Days without a call are left out.
--
-- A leg counts when a permitted party took part: [entity] stands on the caller, the party dialled,
-- the one who answered and the department booked. A service that answered ('!...') is no party,
-- since the permitted names always hold the voicemail service.
SELECT day,
    SUM(starts AND inbound) AS inbound,
    SUM(starts AND inbound AND answered) AS answered,
    SUM(starts AND inbound AND voicemail) AS voicemail,
    SUM(starts AND inbound AND passedon) AS passedon,
    SUM(starts AND inbound AND NOT answered AND NOT voicemail AND NOT passedon) AS abandoned,
    ROUND(100 * SUM(starts AND inbound AND answered) / NULLIF(SUM(starts AND inbound), 0), 1)
        AS answeredpct,
    SUM(starts AND outbound) AS outbound,
    SUM(starts AND internal) AS internal,
    SUM(starts) AS calls,
    SUM(talk) AS talk,
    SUM(cost) AS cost,
    SUM(starts) AS n_calls, COUNT(*) AS n_legs, SUM(NOT starts) AS n_transfers
FROM (
    SELECT DATE(gmtdatetime) AS day, transfercall <> 2 AS starts,
        A_Trunk <> '' AND A_Out = 0 AND origCostCentre <> '' AS inbound,
        B_Trunk <> '' AND B_Out = 1 AND origCostCentre <> '' AS outbound,
        A_Trunk = '' AND B_Trunk = '' AS internal,
        hasconnected AS answered,
        hasconnected = 0 AND B_Remote LIKE '!LeaveVoicemail%' AS voicemail,
        hasconnected = 0 AND transfercall = 1 AND callduration < 2
            AND B_Remote NOT LIKE '!LeaveVoicemail%' AS passedon,
        callconnected AS talk, totalcost AS cost
    FROM CallLog
    WHERE customerid IN('[customerSearchGroup]') AND gmtdatetime [date]
        AND TIME(gmtdatetime) [time] AND transfercall IN (0, 1, 2)
        AND B_Remote <> '!CollectVoicemail'
        AND (A_Name [entity] OR B_Name [entity] OR origCostCentre [entity]
            OR (B_RemoteName [entity] AND B_Remote NOT LIKE '!%'))
) AS leg
GROUP BY day
ORDER BY day
