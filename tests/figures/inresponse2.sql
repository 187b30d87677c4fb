WITH destination AS (
    SELECT cn, telephoneNumber FROM LDAPUsers WHERE customerid = @customer
    UNION
    SELECT cn, telephoneNumber FROM LDAPDepartments WHERE customerid = @customer
)
SELECT targetNumber AS ddi, MAX(cn) AS destination, COUNT(*) AS answered,
    COUNT(IF(ringing < 6, 1, NULL)) AS upto5, COUNT(IF(ringing >= 6 AND ringing < 11, 1, NULL)) AS upto10,
    COUNT(IF(ringing >= 11 AND ringing < 21, 1, NULL)) AS upto20,
    COUNT(IF(ringing >= 21 AND ringing < 31, 1, NULL)) AS upto30,
    COUNT(IF(ringing >= 31 AND ringing < 61, 1, NULL)) AS upto60, COUNT(IF(ringing >= 61, 1, NULL)) AS over60,
    COUNT(IF(ringing < 21, 1, NULL)) AS within20, ROUND(100 * AVG(ringing < 21), 1) AS within20pct,
    SUM(ringing) AS wait, ROUND(AVG(ringing)) AS avgwait, MAX(ringing) AS longestwait
FROM destination INNER JOIN Leg ON B_Num = telephoneNumber AND kind = 'inbound' AND outcome = 'answered'
WHERE targetNumber IS NOT NULL
GROUP BY targetNumber
ORDER BY ddi;
