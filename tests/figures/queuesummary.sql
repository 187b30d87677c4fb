SELECT queueName AS queue, COUNT(*) AS offered,
    COUNT(IF(outcome = 'answered', 1, NULL)) AS answered,
    COUNT(IF(outcome = 'voicemail', 1, NULL)) AS voicemail,
    COUNT(IF(outcome = 'abandoned', 1, NULL)) AS abandoned,
    ROUND(100 * AVG(outcome = 'abandoned'), 1) AS abandonedpct,
    COUNT(IF(outcome = 'abandoned' AND callduration < 6, 1, NULL)) AS short,
    @answer AS target,
    COUNT(IF(outcome = 'answered' AND ringing <= @answer, 1, NULL)) AS within,
    ROUND(100 * AVG(IF(outcome = 'answered', ringing <= @answer, NULL)), 1) AS ofanswered,
    ROUND(100 * AVG(outcome = 'answered' AND ringing <= @answer), 1) AS ofoffered,
    ROUND(100 * AVG(IF(outcome = 'abandoned' AND callduration < 6, NULL,
        outcome = 'answered' AND ringing <= @answer)), 1) AS withoutshort,
    COUNT(IF(outcome = 'abandoned' AND callduration < 6, NULL, 1)) AS counted,
    IFNULL(SUM(IF(outcome = 'answered', ringing, NULL)), 0) AS wait,
    ROUND(AVG(IF(outcome = 'answered', ringing, NULL))) AS speed,
    COUNT(*) AS n_calls
FROM CallCentreQueue AS q INNER JOIN Leg ON B_Num = queueNumber AND kind = 'inbound'
WHERE q.customerid = @customer AND outcome <> 'passedon'
GROUP BY queueName
ORDER BY queueName;
