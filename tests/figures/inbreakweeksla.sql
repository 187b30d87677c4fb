-- No SLA is chosen: in time is less than 21 seconds.
WITH destination AS (
    SELECT telephoneNumber FROM LDAPUsers WHERE customerid = @customer
    UNION
    SELECT telephoneNumber FROM LDAPDepartments WHERE customerid = @customer
)
SELECT DAYNAME(gmtdatetime) AS weekday, COUNT(*) AS offered,
    COUNT(IF(outcome = 'answered', 1, NULL)) AS answered, 20 AS target,
    COUNT(IF(outcome = 'answered' AND ringing < 21, 1, NULL)) AS within,
    COUNT(IF(outcome = 'answered' AND ringing >= 21, 1, NULL)) AS late,
    ROUND(100 * AVG(IF(outcome = 'answered', ringing < 21, NULL)), 1) AS ofanswered,
    ROUND(100 * AVG(outcome = 'answered' AND ringing < 21), 1) AS ofoffered,
    COUNT(IF(outcome = 'voicemail', 1, NULL)) AS voicemail,
    COUNT(IF(outcome = 'abandoned' AND ringing < 21, 1, NULL)) AS gaveupearly,
    COUNT(IF(outcome = 'abandoned' AND ringing >= 21, 1, NULL)) AS gaveuplate,
    IFNULL(SUM(IF(outcome = 'answered', ringing, NULL)), 0) AS wait,
    ROUND(AVG(IF(outcome = 'answered', ringing, NULL))) AS avgwait
FROM destination INNER JOIN Leg ON B_Num = telephoneNumber
WHERE kind = 'inbound' AND outcome <> 'passedon' AND IF(@customer = 1, WEEKDAY(gmtdatetime) < 5, TRUE)
GROUP BY weekday
ORDER BY (WEEKDAY(MIN(gmtdatetime)) + IF(@customer = 1, 0, 1)) % 7;
