WITH band AS (
    SELECT cn, telephoneNumber, ringing,
        CASE WHEN ringing > 30 THEN 5 WHEN ringing > 20 THEN 4 WHEN ringing > 10 THEN 3
            WHEN ringing > 5 THEN 2 ELSE 1 END AS band
    FROM LDAPUsers AS u INNER JOIN Leg ON B_Remote = telephoneNumber AND B_Num = telephoneNumber
    WHERE u.customerid = @customer AND B_Trunk = '' AND outcome = 'answered'
)
SELECT cn AS user, telephoneNumber AS number, COUNT(*) AS answered,
    COUNT(IF(band = 1, 1, NULL)) AS upto5, COUNT(IF(band = 2, 1, NULL)) AS upto10,
    COUNT(IF(band = 3, 1, NULL)) AS upto20, COUNT(IF(band = 4, 1, NULL)) AS upto30,
    COUNT(IF(band = 5, 1, NULL)) AS over30, COUNT(IF(band <= 3, 1, NULL)) AS within20,
    ROUND(AVG(100.0000 * (band <= 3)), 1) AS within20pct, SUM(ringing) AS rings,
    ROUND(AVG(ringing)) AS avgring, MAX(ringing) AS longestring
FROM band
GROUP BY cn, telephoneNumber
ORDER BY cn;
