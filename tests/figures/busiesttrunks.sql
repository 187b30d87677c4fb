WITH used AS (
    SELECT dn, COUNT(IF(A_Trunk = dn AND starts, 1, NULL)) AS inbound,
        COUNT(IF(B_Trunk = dn AND starts, 1, NULL)) AS outbound, COUNT(*) AS legs,
        SUM(IF(A_Trunk = dn, callduration, 0)) AS inseconds, SUM(IF(B_Trunk = dn, callduration, 0)) AS outseconds,
        SUM(IF(B_Trunk = dn, totalcost, 0)) AS cost
    FROM LDAPTrunks INNER JOIN Leg ON A_Trunk = dn OR B_Trunk = dn
    WHERE LDAPTrunks.customerId = @customer
    GROUP BY dn
), length AS (
    SELECT (1 + DATEDIFF(FROM_UNIXTIME(TIMESTAMPDIFF(SECOND, '1970-01-01', @to) - 1),
        (SELECT MIN(DATE(gmtdatetime)) FROM Leg WHERE A_Trunk <> '' OR B_Trunk <> '')))
        * (1 + TIME_TO_SEC(@ends) - TIME_TO_SEC(@begins)) AS seconds
)
SELECT CONCAT(SUBSTR(SUBSTRING_INDEX(dn, ',', 1), 4), ' (',
        SUBSTR(SUBSTRING_INDEX(SUBSTRING_INDEX(dn, ',', 2), ',', -1), 4), ')') AS trunk, dn,
    inbound, outbound, legs, inseconds, outseconds, inseconds + outseconds AS inuse,
    (SELECT SUM(inseconds + outseconds) FROM used) AS allseconds,
    ROUND((inseconds + outseconds) * 100 / (SELECT SUM(inseconds + outseconds) FROM used), 1) AS share,
    CAST((inseconds + outseconds) / seconds AS DECIMAL(12,2)) AS erlangs, cost
FROM used CROSS JOIN length
ORDER BY inuse DESC, dn;
