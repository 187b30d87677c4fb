-- name: Ring Time by User
-- description: How long each user's telephone rang before they answered. Counts the calls dialled to the user's own number that the user answered, transferred ones too; waiting in a queue is not ringing and stands in the reports of the contact centre.
-- category: 1
-- listorder: 47
-- format: graph:stack series:upto5,upto10,upto20,upto30,over30 label:user
-- opt_user: 1
-- help: Ring time runs from the first ring to the answer. Each answered call falls into one band by its whole seconds: up to 5, 6 to 10, 11 to 20, 21 to 30, and more.
-- help: Within 20 s % is the calls answered after 20 seconds or less / answered calls x 100. The average is total ring time / answered calls.
--
-- Only the one who answered is named and counted, and B_RemoteName carries [entity].
SELECT SQL_BIG_RESULT user, MAX(number) AS number,
    COUNT(*) AS answered,
    SUM(ringing <= 5) AS upto5,
    SUM(ringing BETWEEN 6 AND 10) AS upto10,
    SUM(ringing BETWEEN 11 AND 20) AS upto20,
    SUM(ringing BETWEEN 21 AND 30) AS upto30,
    SUM(ringing > 30) AS over30,
    SUM(ringing <= 20) AS within20,
    ROUND(100 * SUM(ringing <= 20) / COUNT(*), 1) AS within20pct,
    SUM(ringing) AS rings,
    ROUND(SUM(ringing) / COUNT(*)) AS avgring,
    MAX(ringing) AS longestring
FROM (
    SELECT customerid, B_RemoteName AS user, B_Remote AS number,
        callduration - callconnected AS ringing
    FROM CallLog
    WHERE customerid IN('[customerSearchGroup]') AND gmtdatetime [date]
        AND TIME(gmtdatetime) [time] AND transfercall IN (0, 1, 2)
        AND B_Remote <> '!CollectVoicemail' AND B_Trunk = '' AND hasconnected
        AND B_Name = B_RemoteName AND B_RemoteName [entity]
) AS leg
GROUP BY customerid, user
ORDER BY user, customerid
