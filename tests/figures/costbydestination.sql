-- The destination is that of the longest prefix which is the number's beginning, looked for among all.
WITH fits AS (
    SELECT id, callconnected, totalcost, name,
        ROW_NUMBER() OVER (PARTITION BY id ORDER BY CHAR_LENGTH(prefix) DESC, p.customerid DESC) AS place
    FROM Leg LEFT JOIN DiallingPrefix AS p ON B_Num LIKE CONCAT(prefix, '%')
        AND p.customerid IN (0, @customer)
    WHERE B_Trunk <> ''
), charge AS (
    SELECT IFNULL(name, 'Other') AS destination, COUNT(*) AS calls, COUNT(NULLIF(callconnected, 0)) AS answered,
        SUM(callconnected) AS talk, SUM(totalcost) AS cost,
        CAST(SUM(totalcost) * @markup / 100 AS DECIMAL(20,4)) AS uplift
    FROM fits WHERE place = 1 GROUP BY destination
)
SELECT destination, calls, answered, talk, CAST(talk / 60 AS DECIMAL(20,4)) AS minutes,
    IF(talk = 0, NULL, CAST(cost * 60 / talk AS DECIMAL(20,4))) AS perminute, cost, uplift,
    CAST((cost + uplift) * @vatrate / 100 AS DECIMAL(20,4)) AS vat,
    cost + uplift + CAST((cost + uplift) * @vatrate / 100 AS DECIMAL(20,4)) AS total
FROM charge
ORDER BY total DESC, destination;
