WITH charge AS (
    SELECT CONCAT(YEAR(d.gmtdatetime), '-', LPAD(MONTH(d.gmtdatetime), 2, '0')) AS month,
        COUNT(IF(starts, 1, NULL)) AS outbound, COUNT(IF(starts, NULL, 1)) AS diverted,
        SUM(callconnected) AS talk, SUM(totalcost) AS cost,
        CAST(SUM(totalcost) * @markup / 100 AS DECIMAL(20,4)) AS uplift
    FROM LkupDates AS d INNER JOIN Leg ON DATE(Leg.gmtdatetime) = DATE(d.gmtdatetime) AND B_Trunk <> ''
    WHERE d.gmtdatetime BETWEEN DATE(@from) - INTERVAL 1 DAY AND DATE(@to) + INTERVAL 1 DAY
    GROUP BY month
)
SELECT month, outbound, diverted, talk, cost, uplift,
    CAST((cost + uplift) * @vatrate / 100 AS DECIMAL(20,4)) AS vat,
    cost + uplift + CAST((cost + uplift) * @vatrate / 100 AS DECIMAL(20,4)) AS total,
    outbound AS n_calls, outbound + diverted AS n_legs, diverted AS n_transfers
FROM charge
ORDER BY month;
