-- name: DDI Use
-- description: How much each direct dialling number is called and what becomes of the calls. Numbers that nobody called in the period are not listed; the most called come first.
-- category: 3
-- listorder: 50
-- format: graph:bar series:calls label:ddi
-- opt_user: 1
-- opt_department: 1
-- opt_ddi: 1
-- help: A call counts once, for the number that its caller dialled, and by what became of it where it began. Answered, voicemail, passed on and abandoned are the four ways in which it can end; together they are the calls. Passed on: diverted before the telephone rang. Answered % is answered / calls x 100.
-- help: Average wait is the ring time of the answered calls / answered calls. Last called is the day of the latest call to the number in the period.
--
-- Only the party dialled is named and counted, and B_Name carries [entity]; neither the caller nor
-- the one who answered is shown.
SELECT ddi, MAX(destination) AS destination,
    COUNT(*) AS calls, SUM(answered) AS answered, SUM(NOT answered AND voicemail) AS voicemail,
    SUM(passedon) AS passedon, SUM(NOT answered AND NOT voicemail AND NOT passedon) AS abandoned,
    ROUND(100 * SUM(answered) / COUNT(*), 1) AS answeredpct,
    SUM(IF(answered, ringing, 0)) AS wait,
    ROUND(SUM(IF(answered, ringing, 0)) / NULLIF(SUM(answered), 0)) AS avgwait,
    SUM(talk) AS talk, DATE(MAX(start)) AS lastcalled, COUNT(*) AS n_calls
FROM (
    SELECT customerid, targetNumber AS ddi, B_Name AS destination, gmtdatetime AS start,
        hasconnected AS answered, B_Remote LIKE '!LeaveVoicemail%' AS voicemail,
        hasconnected = 0 AND transfercall = 1 AND callduration < 2
            AND B_Remote NOT LIKE '!LeaveVoicemail%' AS passedon,
        callduration - callconnected AS ringing, callconnected AS talk
    FROM CallLog
    WHERE customerid IN('[customerSearchGroup]') AND gmtdatetime [date]
        AND TIME(gmtdatetime) [time] AND transfercall IN (0, 1)
        AND A_Trunk <> '' AND A_Out = 0 AND origCostCentre <> '' AND targetNumber <> ''
        AND B_Name [entity]
) AS leg
GROUP BY customerid, ddi
ORDER BY calls DESC, ddi, customerid
