-- name: Inbound Breakdown by DDI
-- description: What becomes of the calls to each direct dialling number, as shares of its calls. Choose a DDI to see that number alone. Numbers that nobody called are left out.
-- category: 4
-- listorder: 90
-- format: graph:stack series:answered,voicemail,passedon,abandoned label:ddi
-- opt_user: 1
-- opt_department: 1
-- opt_queue: 1
-- opt_ddi: 1
-- help: Answered, voicemail, passed on and abandoned are the four ways in which an inbound call can end where it was first dialled; together they are the calls. Passed on: diverted before the telephone rang. Abandoned: the caller hung up before anybody, or the voicemail, answered. Each % is of the calls to the number.
-- help: Transferred % is the answered calls that were then transferred to somebody else / answered calls x 100.
-- help: Average wait is the ring time of the answered calls / answered calls.
--
-- Only the number and the party dialled are named and counted, and B_Name carries [entity]; neither
-- the caller nor the one who answered is shown.
SELECT ddi, MAX(destination) AS destination,
    SUM(legs) AS inbound,
    SUM(IF(outcome IN ('answered', 'transferred'), legs, 0)) AS answered,
    ROUND(100 * SUM(IF(outcome IN ('answered', 'transferred'), legs, 0)) / SUM(legs), 1) AS answeredpct,
    SUM(IF(outcome = 'transferred', legs, 0)) AS transferred,
    ROUND(100 * SUM(IF(outcome = 'transferred', legs, 0))
        / NULLIF(SUM(IF(outcome IN ('answered', 'transferred'), legs, 0)), 0), 1) AS transferredpct,
    SUM(IF(outcome = 'voicemail', legs, 0)) AS voicemail,
    ROUND(100 * SUM(IF(outcome = 'voicemail', legs, 0)) / SUM(legs), 1) AS voicemailpct,
    SUM(IF(outcome = 'passedon', legs, 0)) AS passedon,
    SUM(IF(outcome = 'abandoned', legs, 0)) AS abandoned,
    ROUND(100 * SUM(IF(outcome = 'abandoned', legs, 0)) / SUM(legs), 1) AS abandonedpct,
    SUM(IF(outcome IN ('answered', 'transferred'), rings, 0)) AS wait,
    ROUND(SUM(IF(outcome IN ('answered', 'transferred'), rings, 0))
        / NULLIF(SUM(IF(outcome IN ('answered', 'transferred'), legs, 0)), 0)) AS avgwait,
    SUM(legs) AS n_calls
FROM (
    SELECT customerid, targetNumber AS ddi, MAX(B_Name) AS destination,
        CASE WHEN hasconnected THEN IF(transfercall = 1, 'transferred', 'answered')
            WHEN B_Remote LIKE '!LeaveVoicemail%' THEN 'voicemail'
            WHEN transfercall = 1 AND callduration < 2 THEN 'passedon'
            ELSE 'abandoned' END AS outcome,
        COUNT(*) AS legs, SUM(callduration - callconnected) AS rings
    FROM CallLog FORCE INDEX (PRIMARY)
    WHERE customerid IN('[customerSearchGroup]') AND gmtdatetime [date]
        AND TIME(gmtdatetime) [time] AND transfercall IN (0, 1)
        AND A_Trunk <> '' AND A_Out = 0 AND origCostCentre <> '' AND targetNumber <> ''
        AND B_Name [entity]
    GROUP BY customerid, ddi, outcome
) AS part
GROUP BY ddi, customerid
ORDER BY ddi, customerid
