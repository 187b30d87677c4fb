-- An amount is told in ten-thousandths first, each part rounded half up.
WITH priced AS (
    SELECT gmtdatetime AS start, Leg.id, cn AS user, B_Num AS number, B_Name AS party,
        accountCode AS account, callconnected AS talk, totalcost AS cost,
        FLOOR(totalcost * 100 * @markup + 0.5) AS uplift
    FROM LDAPUsers AS u INNER JOIN Leg ON A_Num = telephoneNumber AND A_Trunk = ''
    WHERE u.customerid = @customer AND B_Trunk <> '' AND totalcost <> 0
)
SELECT start, user, number, party, account, talk, cost, uplift / 10000 AS uplift,
    FLOOR((cost * 10000 + uplift) * @vatrate / 100 + 0.5) / 10000 AS vat,
    (cost * 10000 + uplift + FLOOR((cost * 10000 + uplift) * @vatrate / 100 + 0.5)) / 10000 AS total
FROM priced
ORDER BY start, id;
