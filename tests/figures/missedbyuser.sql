WITH offer AS (
    SELECT cn, telephoneNumber, outcome, A_Trunk, callduration
    FROM LDAPUsers AS u INNER JOIN Leg ON B_Num = telephoneNumber AND B_Trunk = '' AND starts
    WHERE u.customerid = @customer
        AND (outcome = 'answered' OR transferConfId = '' OR callduration >= 2)
)
SELECT cn AS user, telephoneNumber AS number, COUNT(*) AS offered,
    COUNT(IF(outcome = 'answered', 1, NULL)) AS answered,
    COUNT(IF(outcome <> 'answered', 1, NULL)) AS missed,
    ROUND(AVG(100.0000 * (outcome <> 'answered')), 1) AS missedpct,
    COUNT(IF(outcome = 'voicemail', 1, NULL)) AS voicemail,
    COUNT(IF(outcome = 'abandoned', 1, NULL)) AS hungup,
    COUNT(IF(outcome <> 'answered' AND A_Trunk <> '', 1, NULL)) AS missedoutside,
    COUNT(IF(outcome <> 'answered' AND A_Trunk = '', 1, NULL)) AS missedinside,
    IFNULL(SUM(IF(outcome = 'abandoned', callduration, NULL)), 0) AS rings,
    ROUND(AVG(IF(outcome = 'abandoned', callduration, NULL))) AS avgring,
    MAX(IF(outcome = 'abandoned', callduration, NULL)) AS longestring
FROM offer
GROUP BY cn, telephoneNumber
HAVING missed > 0
ORDER BY missed DESC, user;
