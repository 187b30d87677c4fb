-- Ten seconds and more are longer.
SELECT DATE(d.gmtdatetime) AS day, COUNT(*) AS offered,
    COUNT(IF(outcome = 'abandoned', 1, NULL)) AS abandoned,
    ROUND(100 * AVG(outcome = 'abandoned'), 1) AS rate, 9 AS threshold,
    COUNT(IF(outcome = 'abandoned' AND callduration < 10, 1, NULL)) AS short,
    COUNT(IF(outcome = 'abandoned' AND callduration >= 10, 1, NULL)) AS longer,
    COUNT(IF(outcome = 'abandoned' AND callduration < 10, NULL, 1)) AS counted,
    ROUND(100 * AVG(IF(outcome = 'abandoned' AND callduration < 10, NULL, outcome = 'abandoned')), 1) AS netrate,
    IFNULL(SUM(IF(outcome = 'abandoned' AND callduration >= 10, ringing, NULL)), 0) AS wait,
    ROUND(AVG(IF(outcome = 'abandoned' AND callduration >= 10, ringing, NULL))) AS avgwait
FROM LkupDates AS d INNER JOIN Leg ON DATE(Leg.gmtdatetime) = DATE(d.gmtdatetime)
    INNER JOIN CallCentreQueue AS q ON B_Num = queueNumber AND q.customerid = @customer
WHERE d.gmtdatetime BETWEEN DATE(@from) - INTERVAL 1 DAY AND DATE(@to) + INTERVAL 1 DAY
    AND kind = 'inbound' AND outcome <> 'passedon'
GROUP BY d.gmtdatetime
ORDER BY d.gmtdatetime;
