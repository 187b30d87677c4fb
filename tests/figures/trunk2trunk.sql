WITH trunk AS (
    SELECT dn, CONCAT(SUBSTR(SUBSTRING_INDEX(dn, ',', 1), 4), ' (',
        SUBSTR(SUBSTRING_INDEX(SUBSTRING_INDEX(dn, ',', 2), ',', -1), 4), ')') AS name
    FROM LDAPTrunks WHERE customerId = @customer
)
SELECT origin.name AS fromtrunk, way.name AS totrunk,
    COUNT(*) AS legs, COUNT(NULLIF(callconnected, 0)) AS answered,
    ROUND(AVG(100.0000 * (callconnected > 0)), 1) AS answeredpct,
    IFNULL(SUM(IF(callconnected > 0, ringing, NULL)), 0) AS wait,
    ROUND(AVG(IF(callconnected > 0, ringing, NULL))) AS avgwait,
    SUM(callconnected) AS talk, SUM(callduration + callduration) AS inuse, SUM(totalcost) AS cost
FROM trunk AS origin CROSS JOIN trunk AS way INNER JOIN Leg ON A_Trunk = origin.dn AND B_Trunk = way.dn
GROUP BY origin.dn, way.dn
ORDER BY legs DESC, origin.dn, way.dn;
