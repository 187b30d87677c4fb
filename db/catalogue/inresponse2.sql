-- name: Inbound Response by DDI
-- description: How soon the calls to each direct dialling number are answered, in bands of time. Choose a DDI to see that number alone. Numbers without an answered call are left out.
-- category: 4
-- listorder: 100
-- format: graph:stack series:upto5,upto10,upto20,upto30,upto60,over60 label:ddi
-- opt_user: 1
-- opt_department: 1
-- opt_queue: 1
-- opt_ddi: 1
-- help: Each answered call falls into one band by the whole seconds from the first ring to the answer, where it was first dialled.
-- help: Within 20 s % is the calls answered after 20 seconds or less / answered calls x 100. The average is the ring time of the answered calls / answered calls.
--
-- Only the number and the party dialled are named and counted, and B_Name carries [entity]; neither
-- the caller nor the one who answered is shown.
SELECT ddi, MAX(destination) AS destination, SUM(legs) AS answered,
    SUM(IF(band = 1, legs, 0)) AS upto5, SUM(IF(band = 2, legs, 0)) AS upto10,
    SUM(IF(band = 3, legs, 0)) AS upto20, SUM(IF(band = 4, legs, 0)) AS upto30,
    SUM(IF(band = 5, legs, 0)) AS upto60, SUM(IF(band = 6, legs, 0)) AS over60,
    SUM(IF(band <= 3, legs, 0)) AS within20,
    ROUND(100 * SUM(IF(band <= 3, legs, 0)) / SUM(legs), 1) AS within20pct,
    SUM(rings) AS wait, ROUND(SUM(rings) / SUM(legs)) AS avgwait, MAX(longest) AS longestwait
FROM (
    SELECT customerid, ddi, MAX(destination) AS destination,
        1 + (ringing > 5) + (ringing > 10) + (ringing > 20) + (ringing > 30) + (ringing > 60) AS band,
        COUNT(*) AS legs, SUM(ringing) AS rings, MAX(ringing) AS longest
    FROM (
        SELECT customerid, targetNumber AS ddi, B_Name AS destination,
            callduration - callconnected AS ringing
        FROM CallLog FORCE INDEX (PRIMARY)
        WHERE customerid IN('[customerSearchGroup]') AND gmtdatetime [date]
            AND TIME(gmtdatetime) [time] AND transfercall IN (0, 1) AND hasconnected
            AND A_Trunk <> '' AND A_Out = 0 AND origCostCentre <> '' AND targetNumber <> ''
            AND B_Name [entity]
    ) AS leg
    GROUP BY customerid, ddi, band
) AS part
GROUP BY ddi, customerid
ORDER BY ddi, customerid
