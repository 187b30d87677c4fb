WITH charge AS (
    SELECT cn AS department, COUNT(IF(starts, 1, NULL)) AS outbound, COUNT(IF(starts, NULL, 1)) AS diverted,
        SUM(callconnected) AS talk, SUM(totalcost) AS cost,
        CAST(SUM(totalcost) * @markup / 100 AS DECIMAL(20,4)) AS uplift
    FROM LDAPDepartments AS d INNER JOIN Leg ON origCostCentre = cn
    WHERE d.customerid = @customer AND B_Trunk <> ''
    GROUP BY cn
)
SELECT department, outbound, diverted, talk, cost, uplift,
    CAST((cost + uplift) * @vatrate / 100 AS DECIMAL(20,4)) AS vat,
    cost + uplift + CAST((cost + uplift) * @vatrate / 100 AS DECIMAL(20,4)) AS total,
    outbound AS n_calls, outbound + diverted AS n_legs, diverted AS n_transfers
FROM charge
ORDER BY department;
