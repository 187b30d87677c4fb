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
SELECT department,
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
    SUM(cost) AS cost,
    SUM(IF(outcome = 'transfer', 0, legs)) AS n_calls, SUM(legs) AS n_legs,
    SUM(IF(outcome = 'transfer', legs, 0)) AS n_transfers
FROM (
    SELECT customerid, origCostCentre AS department,
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
        SUM(callconnected) AS talk, SUM(totalcost) AS cost
    FROM CallLog
    WHERE customerid IN('[customerSearchGroup]') AND gmtdatetime [date]
        AND TIME(gmtdatetime) [time] AND transfercall IN (0, 1, 2)
        AND B_Remote <> '!CollectVoicemail' AND origCostCentre [entity]
    GROUP BY customerid, department, outcome
) AS part
GROUP BY department, customerid
ORDER BY department, customerid
