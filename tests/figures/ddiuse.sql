WITH destination AS (
    SELECT cn, telephoneNumber FROM LDAPUsers WHERE customerid = @customer
    UNION ALL
    SELECT cn, telephoneNumber FROM LDAPDepartments WHERE customerid = @customer
)
SELECT targetNumber AS ddi, MAX(cn) AS destination, COUNT(*) AS calls,
    COUNT(IF(outcome = 'answered', 1, NULL)) AS answered, COUNT(IF(outcome = 'voicemail', 1, NULL)) AS voicemail,
    COUNT(IF(outcome = 'passedon', 1, NULL)) AS passedon, COUNT(IF(outcome = 'abandoned', 1, NULL)) AS abandoned,
    ROUND(AVG(100.0000 * (outcome = 'answered')), 1) AS answeredpct,
    IFNULL(SUM(IF(outcome = 'answered', ringing, NULL)), 0) AS wait,
    ROUND(AVG(IF(outcome = 'answered', ringing, NULL))) AS avgwait,
    SUM(callconnected) AS talk, MAX(DATE(gmtdatetime)) AS lastcalled, COUNT(*) AS n_calls
FROM destination INNER JOIN Leg ON B_Num = telephoneNumber AND kind = 'inbound'
WHERE targetNumber IS NOT NULL
GROUP BY targetNumber
ORDER BY calls DESC, ddi;
