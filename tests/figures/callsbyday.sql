SELECT DATE(d.gmtdatetime) AS day,
    COUNT(IF(kind = 'inbound', 1, NULL)) AS inbound,
    COUNT(IF(kind = 'inbound' AND outcome = 'answered', 1, NULL)) AS answered,
    COUNT(IF(kind = 'inbound' AND outcome = 'voicemail', 1, NULL)) AS voicemail,
    COUNT(IF(kind = 'inbound' AND outcome = 'passedon', 1, NULL)) AS passedon,
    COUNT(IF(kind = 'inbound' AND outcome = 'abandoned', 1, NULL)) AS abandoned,
    ROUND(AVG(100.0000 * (IF(kind = 'inbound', outcome = 'answered', NULL))), 1) AS answeredpct,
    COUNT(IF(kind = 'outbound', 1, NULL)) AS outbound,
    COUNT(IF(kind = 'internal', 1, NULL)) AS internal,
    COUNT(IF(starts, 1, NULL)) AS calls,
    SUM(callconnected) AS talk, SUM(totalcost) AS cost,
    COUNT(IF(starts, 1, NULL)) AS n_calls, COUNT(*) AS n_legs, COUNT(IF(starts, NULL, 1)) AS n_transfers
FROM LkupDates AS d INNER JOIN Leg ON DATE(Leg.gmtdatetime) = DATE(d.gmtdatetime)
-- A day more at either end, since the reader's day may begin before or end after UTC's.
WHERE d.gmtdatetime BETWEEN DATE(@from) - INTERVAL 1 DAY AND DATE(@to) + INTERVAL 1 DAY
GROUP BY d.gmtdatetime
ORDER BY d.gmtdatetime;
