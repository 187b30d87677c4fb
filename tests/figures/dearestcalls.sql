WITH dear AS (
    SELECT gmtdatetime AS start, cn AS user, B_Num AS number, B_Name AS party, accountCode AS account,
        callconnected AS talk, totalcost AS cost, confId,
        CAST(totalcost * @markup / 100 AS DECIMAL(20,4)) AS uplift,
        ROW_NUMBER() OVER (ORDER BY totalcost DESC, callconnected DESC, gmtdatetime, Leg.id) AS place
    FROM Leg INNER JOIN LDAPUsers AS u ON A_Trunk = '' AND A_Num = telephoneNumber
    WHERE u.customerid = @customer AND B_Trunk <> '' AND totalcost <> 0
)
SELECT start, user, number, party, account, talk, cost, uplift,
    CAST((cost + uplift) * @vatrate / 100 AS DECIMAL(20,4)) AS vat,
    cost + uplift + CAST((cost + uplift) * @vatrate / 100 AS DECIMAL(20,4)) AS total, confId
FROM dear
WHERE place <= 100
ORDER BY place;
