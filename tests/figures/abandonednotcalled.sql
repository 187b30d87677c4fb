-- Every abandoned call of more than five seconds, the latest of its number first, and whether anybody
-- spoke to the number or called it afterwards, be it in a leg by transfer.
WITH lost AS (
    SELECT A_Num, A_Name, queueName, gmtdatetime, callduration, UNIX_TIMESTAMP(gmtdatetime) AS at,
        ROW_NUMBER() OVER (PARTITION BY A_Num ORDER BY UNIX_TIMESTAMP(gmtdatetime) DESC, id DESC) AS newness,
        COUNT(*) OVER (PARTITION BY A_Num) AS calls, MAX(callduration) OVER (PARTITION BY A_Num) AS longestwait
    FROM (
        SELECT Leg.*, queueName
        FROM CallCentreQueue AS q INNER JOIN Leg ON B_Num = queueNumber AND q.customerid = @customer
    ) AS queued
    WHERE kind = 'inbound' AND outcome = 'abandoned' AND callduration >= 6 AND A_Num <> ''
        AND TIME_TO_SEC(gmtdatetime) BETWEEN TIME_TO_SEC(@begins) AND TIME_TO_SEC(@ends)
)
SELECT A_Num AS number, A_Name AS name, queueName AS queue, gmtdatetime AS gaveup, callduration AS wait,
    calls, longestwait
FROM lost
WHERE newness = 1 AND NOT EXISTS (
    SELECT 1 FROM Leg
    WHERE UNIX_TIMESTAMP(Leg.gmtdatetime) > at AND origCostCentre <> ''
        AND ((Leg.A_Num = lost.A_Num AND A_Trunk <> '' AND outcome = 'answered')
            OR (Leg.B_Num = lost.A_Num AND A_Trunk = '' AND B_Trunk <> '')))
ORDER BY at DESC, A_Num;
