SELECT queueName AS queue, DATE(d.gmtdatetime) AS day, COUNT(*) AS offered,
    COUNT(IF(outcome = 'answered', 1, NULL)) AS answered,
    COUNT(IF(outcome = 'abandoned', 1, NULL)) AS abandoned,
    IFNULL(SUM(IF(outcome = 'answered', ringing, NULL)), 0) AS wait,
    ROUND(AVG(IF(outcome = 'answered', ringing, NULL))) AS speed,
    MAX(IF(outcome = 'answered', ringing, NULL)) AS slowest,
    IFNULL(SUM(IF(outcome = 'abandoned', ringing, NULL)), 0) AS lost,
    ROUND(AVG(IF(outcome = 'abandoned', ringing, NULL))) AS toabandon,
    COUNT(IF(outcome = 'answered' AND ringing < 21, 1, NULL)) AS within,
    ROUND(100 * AVG(outcome = 'answered' AND ringing < 21), 1) AS servicelevel
FROM LkupDates AS d INNER JOIN Leg ON DATE(Leg.gmtdatetime) = DATE(d.gmtdatetime)
    INNER JOIN CallCentreQueue AS q ON B_Num = queueNumber AND q.customerid = @customer
-- A day more at either end, since the reader's day may begin before or end after UTC's.
WHERE d.gmtdatetime BETWEEN DATE(@from) - INTERVAL 1 DAY AND DATE(@to) + INTERVAL 1 DAY
    AND kind = 'inbound' AND outcome <> 'passedon'
GROUP BY queueName, d.gmtdatetime
ORDER BY queueName, d.gmtdatetime;
