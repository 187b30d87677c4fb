-- name: Calls by Day
-- description: The traffic of each day. A call counts once, on the day and by the parties of its first leg; talk time and cost take in every leg. Passed on: diverted before the telephone rang. Choose a user or a department to count only the calls they took part in.
-- category: 1
-- listorder: 30
-- opt_user: 1
-- opt_department: 1
-- format: graph:line series:answered,abandoned,outbound,internal label:day
-- help: Answered, voicemail, passed on and abandoned are the four ways in which an inbound call can end; together they are its calls. Answered % is answered / calls x 100. Abandoned: the caller hung up before anybody, or the voicemail, answered.
-- help: Talk time is the time from answer to end, added up over every leg; cost is the cost logged with the calls, before uplift and VAT.
-- help: The day is that of your time zone. Days without a call are left out.
--
-- A leg counts when a permitted party took part: [entity] stands on the caller, the party dialled,
-- the one who answered and the department booked. A service that answered ('!...') is no party,
-- since the permitted names always hold the voicemail service.
SELECT day,
    SUM(IF(outcome IN ('answered', 'voicemail', 'passedon', 'abandoned'), legs, 0)) AS inbound,
    SUM(IF(outcome = 'answered', legs, 0)) AS answered,
    SUM(IF(outcome = 'voicemail', legs, 0)) AS voicemail,
    SUM(IF(outcome = 'passedon', legs, 0)) AS passedon,
    SUM(IF(outcome = 'abandoned', legs, 0)) AS abandoned,
    ROUND(100 * SUM(IF(outcome = 'answered', legs, 0))
        / NULLIF(SUM(IF(outcome IN ('answered', 'voicemail', 'passedon', 'abandoned'), legs, 0)), 0), 1)
        AS answeredpct,
    SUM(IF(outcome = 'outbound', legs, 0)) AS outbound,
    SUM(IF(outcome = 'internal', legs, 0)) AS internal,
    SUM(IF(outcome = 'transfer', 0, legs)) AS calls,
    SUM(talk) AS talk,
    SUM(cost) AS cost,
    SUM(IF(outcome = 'transfer', 0, legs)) AS n_calls, SUM(legs) AS n_legs,
    SUM(IF(outcome = 'transfer', legs, 0)) AS n_transfers
FROM (
    SELECT DATE(gmtdatetime) AS day,
        CASE WHEN transfercall = 2 THEN 'transfer'
            WHEN A_Trunk <> '' AND A_Out = 0 AND origCostCentre <> '' THEN
                CASE WHEN hasconnected THEN 'answered'
                    WHEN B_Remote LIKE '!LeaveVoicemail%' THEN 'voicemail'
                    WHEN transfercall = 1 AND callduration < 2 THEN 'passedon'
                    ELSE 'abandoned' END
            WHEN B_Trunk <> '' AND B_Out = 1 AND origCostCentre <> '' THEN 'outbound'
            WHEN A_Trunk = '' AND B_Trunk = '' THEN 'internal'
            ELSE 'other' END AS outcome,
        COUNT(*) AS legs, SUM(callconnected) AS talk, SUM(totalcost) AS cost
    FROM CallLog
    WHERE customerid IN('[customerSearchGroup]') AND gmtdatetime [date]
        AND TIME(gmtdatetime) [time] AND transfercall IN (0, 1, 2)
        AND B_Remote <> '!CollectVoicemail'
        AND (A_Name [entity] OR B_Name [entity] OR origCostCentre [entity]
            OR (B_RemoteName [entity] AND B_Remote NOT LIKE '!%'))
    GROUP BY day, outcome
) AS part
GROUP BY day
ORDER BY day
