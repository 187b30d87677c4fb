WITH hour AS (SELECT seq AS hour FROM seq_0_to_23)
SELECT cn AS department, hour, TIME_FORMAT(MAKETIME(hour, 0, 0), '%H:%i') AS begins,
    COUNT(IF(kind = 'inbound', 1, NULL)) AS inbound,
    COUNT(IF(kind = 'inbound' AND outcome = 'answered', 1, NULL)) AS answered,
    COUNT(IF(kind = 'inbound' AND outcome = 'voicemail', 1, NULL)) AS voicemail,
    COUNT(IF(kind = 'inbound' AND outcome = 'passedon', 1, NULL)) AS passedon,
    COUNT(IF(kind = 'inbound' AND outcome = 'abandoned', 1, NULL)) AS abandoned,
    ROUND(AVG(100.0000 * (IF(kind = 'inbound', outcome = 'answered', NULL))), 1) AS answeredpct,
    IFNULL(SUM(IF(kind = 'inbound' AND outcome = 'answered', ringing, NULL)), 0) AS wait,
    ROUND(AVG(IF(kind = 'inbound' AND outcome = 'answered', ringing, NULL))) AS avgwait,
    COUNT(IF(kind = 'outbound', 1, NULL)) AS outbound,
    COUNT(IF(kind = 'internal', 1, NULL)) AS internal,
    SUM(callconnected) AS talk,
    COUNT(IF(starts, 1, NULL)) AS n_calls, COUNT(*) AS n_legs, COUNT(IF(starts, NULL, 1)) AS n_transfers
FROM LDAPDepartments AS d CROSS JOIN hour
    INNER JOIN Leg ON origCostCentre = cn AND EXTRACT(HOUR FROM Leg.gmtdatetime) = hour
WHERE d.customerid = @customer
GROUP BY cn, hour
ORDER BY cn, hour;
