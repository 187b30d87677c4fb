WITH destination AS (
    SELECT cn, telephoneNumber FROM LDAPUsers WHERE customerid = @customer
    UNION
    SELECT cn, telephoneNumber FROM LDAPDepartments WHERE customerid = @customer
)
SELECT targetNumber AS ddi, MAX(cn) AS destination, COUNT(*) AS inbound,
    COUNT(IF(outcome = 'answered', 1, NULL)) AS answered,
    ROUND(100 * AVG(outcome = 'answered'), 1) AS answeredpct,
    COUNT(IF(outcome = 'answered' AND transferConfId <> '', 1, NULL)) AS transferred,
    ROUND(100 * AVG(IF(outcome = 'answered', transferConfId <> '', NULL)), 1) AS transferredpct,
    COUNT(IF(outcome = 'voicemail', 1, NULL)) AS voicemail,
    ROUND(100 * AVG(outcome = 'voicemail'), 1) AS voicemailpct,
    COUNT(IF(outcome = 'passedon', 1, NULL)) AS passedon,
    COUNT(IF(outcome = 'abandoned', 1, NULL)) AS abandoned,
    ROUND(100 * AVG(outcome = 'abandoned'), 1) AS abandonedpct,
    IFNULL(SUM(IF(outcome = 'answered', ringing, NULL)), 0) AS wait,
    ROUND(AVG(IF(outcome = 'answered', ringing, NULL))) AS avgwait
FROM destination INNER JOIN Leg ON B_Num = telephoneNumber AND kind = 'inbound'
WHERE targetNumber IS NOT NULL
GROUP BY targetNumber
ORDER BY ddi;
