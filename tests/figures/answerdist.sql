-- A queue has all its rows as soon as one caller waited in it.
WITH band AS (
    SELECT 0 AS least, 5 AS most, '0-5 s' AS waited UNION SELECT 6, 10, '6-10 s'
    UNION SELECT 11, 20, '11-20 s' UNION SELECT 21, 30, '21-30 s' UNION SELECT 31, 60, '31-60 s'
    UNION SELECT 61, 120, '61-120 s' UNION SELECT 121, 9999999, 'Over 120 s'
)
SELECT queueName AS queue, waited,
    COUNT(IF(outcome = 'answered' AND ringing >= least AND ringing <= most, 1, NULL)) AS answered,
    ROUND(100 * AVG(IF(outcome = 'answered', ringing BETWEEN least AND most, NULL)), 1) AS answeredpct,
    ROUND(100 * AVG(IF(outcome = 'answered', ringing <= most, NULL)), 1) AS answeredby,
    COUNT(IF(outcome = 'abandoned' AND ringing BETWEEN least AND most, 1, NULL)) AS abandoned,
    ROUND(100 * AVG(IF(outcome = 'abandoned', ringing BETWEEN least AND most, NULL)), 1) AS abandonedpct,
    ROUND(100 * AVG(IF(outcome = 'abandoned', ringing <= most, NULL)), 1) AS abandonedby
FROM CallCentreQueue AS q INNER JOIN Leg ON B_Num = queueNumber AND kind = 'inbound'
    CROSS JOIN band
WHERE q.customerid = @customer AND outcome IN ('answered', 'abandoned')
GROUP BY queueName, least, most, waited
ORDER BY queueName, least;
