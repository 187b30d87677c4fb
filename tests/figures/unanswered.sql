WITH destination AS (
    SELECT cn, telephoneNumber FROM LDAPUsers WHERE customerid = @customer
    UNION ALL
    SELECT cn, telephoneNumber FROM LDAPDepartments WHERE customerid = @customer
)
SELECT cn AS destination, telephoneNumber AS number, COUNT(*) AS offered,
    COUNT(IF(outcome = 'answered', 1, NULL)) AS answered,
    COUNT(IF(outcome = 'voicemail', 1, NULL)) AS voicemail,
    COUNT(IF(outcome = 'abandoned', 1, NULL)) AS abandoned,
    COUNT(IF(outcome <> 'answered', 1, NULL)) AS unanswered,
    ROUND(AVG(100.0000 * (outcome <> 'answered')), 1) AS unansweredpct,
    IFNULL(SUM(IF(outcome = 'abandoned', callduration, NULL)), 0) AS wait,
    ROUND(AVG(IF(outcome = 'abandoned', callduration, NULL))) AS avgwait,
    MAX(IF(outcome = 'abandoned', callduration, NULL)) AS longestwait,
    COUNT(*) AS n_calls
FROM destination INNER JOIN Leg ON B_Num = telephoneNumber
WHERE kind = 'inbound' AND NOT (transferConfId <> '' AND outcome <> 'answered' AND callduration < 2)
GROUP BY cn, telephoneNumber
HAVING unanswered > 0
ORDER BY unanswered DESC, destination;
