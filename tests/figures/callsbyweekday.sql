-- startday counts from Monday, 1; weeks begin there unless the customer says otherwise.
SELECT DATE_FORMAT(gmtdatetime, '%W') AS weekday, DATE_FORMAT(gmtdatetime, '%H:00') AS begins,
    COUNT(*) AS calls,
    COUNT(IF(kind = 'inbound', 1, NULL)) AS inbound,
    COUNT(IF(kind = 'inbound' AND outcome = 'answered', 1, NULL)) AS answered,
    COUNT(IF(kind = 'inbound' AND outcome = 'abandoned', 1, NULL)) AS abandoned,
    ROUND(AVG(100.0000 * (IF(kind = 'inbound', outcome = 'answered', NULL))), 1) AS answeredpct,
    COUNT(IF(kind = 'outbound', 1, NULL)) AS outbound,
    COUNT(IF(kind = 'internal', 1, NULL)) AS internal,
    COUNT(DISTINCT DATE(gmtdatetime)) AS weeks,
    ROUND(COUNT(*) / COUNT(DISTINCT DATE(gmtdatetime)), 1) AS callsaweek,
    COUNT(*) AS n_calls
FROM Leg
WHERE starts
GROUP BY weekday, begins
ORDER BY MOD(MIN(WEEKDAY(gmtdatetime)) + 8 - IFNULL((SELECT AttribValue FROM CustomerAttribute
    WHERE CustomerId = @customer AND AttribName = 'startday'), 1), 7), begins;
