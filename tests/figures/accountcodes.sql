WITH code AS (
    SELECT DISTINCT accountCode AS account FROM Leg WHERE accountCode > ''
), charge AS (
    SELECT account, COUNT(*) AS outbound, COUNT(NULLIF(callconnected, 0)) AS answered,
        COUNT(DISTINCT A_Num) AS users, SUM(callconnected) AS talk, SUM(totalcost) AS cost,
        CAST(SUM(totalcost) * @markup / 100 AS DECIMAL(20,4)) AS uplift
    FROM code INNER JOIN Leg ON accountCode = account AND kind = 'outbound'
    GROUP BY account
)
SELECT account, outbound, answered, users, talk, cost, uplift,
    CAST((cost + uplift) * @vatrate / 100 AS DECIMAL(20,4)) AS vat,
    cost + uplift + CAST((cost + uplift) * @vatrate / 100 AS DECIMAL(20,4)) AS total,
    outbound AS n_calls, outbound AS n_legs, 0 AS n_transfers
FROM charge
ORDER BY account;
