SELECT queueName AS queue, COUNT(*) AS offered,
    COUNT(IF(outcome = 'abandoned', 1, NULL)) AS abandoned,
    ROUND(100 * AVG(outcome = 'abandoned'), 1) AS abandonedpct,
    @answer AS target,
    COUNT(IF(outcome = 'abandoned' AND ringing <= @answer, 1, NULL)) AS early,
    COUNT(IF(outcome = 'abandoned' AND ringing > @answer, 1, NULL)) AS late,
    ROUND(100 * AVG(outcome = 'abandoned' AND ringing > @answer), 1) AS afterpct,
    IFNULL(SUM(IF(outcome = 'abandoned', ringing, NULL)), 0) AS wait,
    ROUND(AVG(IF(outcome = 'abandoned', ringing, NULL))) AS avgwait,
    MAX(IF(outcome = 'abandoned', ringing, NULL)) AS longestwait,
    MAX(IF(outcome = 'abandoned', DATE(gmtdatetime), NULL)) AS latest
FROM CallCentreQueue AS q INNER JOIN Leg ON B_Num = queueNumber AND kind = 'inbound'
WHERE q.customerid = @customer AND outcome <> 'passedon'
GROUP BY queueName
ORDER BY queueName;
