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
SELECT user, MAX(number) AS number,
    SUM(legs) AS answered,
    SUM(IF(band = 5, legs, 0)) AS upto5,
    SUM(IF(band = 10, legs, 0)) AS upto10,
    SUM(IF(band = 20, legs, 0)) AS upto20,
    SUM(IF(band = 30, legs, 0)) AS upto30,
    SUM(IF(band > 30, legs, 0)) AS over30,
    SUM(IF(band <= 20, legs, 0)) AS within20,
    ROUND(100 * SUM(IF(band <= 20, legs, 0)) / SUM(legs), 1) AS within20pct,
    SUM(rings) AS rings,
    ROUND(SUM(rings) / SUM(legs)) AS avgring,
    MAX(longest) AS longestring
FROM (
    SELECT customerid, B_RemoteName AS user, B_Remote AS number,
        CASE WHEN callduration - callconnected <= 5 THEN 5
            WHEN callduration - callconnected <= 10 THEN 10
            WHEN callduration - callconnected <= 20 THEN 20
            WHEN callduration - callconnected <= 30 THEN 30 ELSE 31 END AS band,
        COUNT(*) AS legs, SUM(callduration - callconnected) AS rings,
        MAX(callduration - callconnected) AS longest
    FROM CallLog
    WHERE customerid IN('[customerSearchGroup]') AND gmtdatetime [date]
        AND TIME(gmtdatetime) [time] AND transfercall IN (0, 1, 2)
        AND B_Remote <> '!CollectVoicemail' AND B_Trunk = '' AND hasconnected
        AND B_Name = B_RemoteName AND B_RemoteName [entity]
    GROUP BY customerid, user, number, band
) AS part
GROUP BY customerid, user
ORDER BY user, customerid
