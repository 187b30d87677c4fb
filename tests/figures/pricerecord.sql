-- Amounts are counted in whole ten-thousandths, each part rounded half up.
WITH priced AS (
    SELECT gmtdatetime AS start, Leg.id, cn AS user, B_Num AS number, B_Name AS party,
        accountCode AS account, callconnected AS talk, totalcost * 10000 AS units,
        FLOOR(totalcost * 100 * @markup + 0.5) AS extra
    FROM LDAPUsers AS u INNER JOIN Leg ON A_Num = telephoneNumber AND A_Trunk = ''
    WHERE u.customerid = @customer AND B_Trunk <> '' AND totalcost <> 0
),
taxed AS (
    SELECT *, FLOOR((units + extra) * @vatrate / 100 + 0.5) AS tax FROM priced
)
SELECT start, user, number, party, account, talk, CAST(units / 10000 AS DECIMAL(16,4)) AS cost,
    CAST(extra / 10000 AS DECIMAL(16,4)) AS uplift, CAST(tax / 10000 AS DECIMAL(16,4)) AS vat,
    CAST((units + extra + tax) / 10000 AS DECIMAL(16,4)) AS total
FROM taxed
ORDER BY start, id;
