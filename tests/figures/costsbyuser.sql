WITH charge AS (
    SELECT cn AS user, telephoneNumber AS number, COUNT(*) AS outbound,
        COUNT(IF(outcome = 'answered', 1, NULL)) AS answered, SUM(callconnected) AS talk,
        SUM(totalcost) AS cost,
        CAST(SUM(totalcost) * @markup / 100 AS DECIMAL(20,4)) AS uplift
    FROM LDAPUsers AS u INNER JOIN Leg ON A_Num = telephoneNumber
    WHERE u.customerid = @customer AND kind = 'outbound'
    GROUP BY cn, telephoneNumber
)
SELECT user, number, outbound, answered, talk, cost, uplift,
    CAST((cost + uplift) * @vatrate / 100 AS DECIMAL(20,4)) AS vat,
    cost + uplift + CAST((cost + uplift) * @vatrate / 100 AS DECIMAL(20,4)) AS total,
    outbound AS n_calls, outbound AS n_legs, 0 AS n_transfers
FROM charge
ORDER BY total DESC, user;
