-- startday and weeklength count from Monday, 1; only the first customer has a short week.
WITH destination AS (
    SELECT telephoneNumber FROM LDAPUsers WHERE customerid = @customer
    UNION
    SELECT telephoneNumber FROM LDAPDepartments WHERE customerid = @customer
)
SELECT DAYNAME(gmtdatetime) AS weekday, COUNT(DISTINCT DATE(gmtdatetime)) AS days, COUNT(*) AS inbound,
    ROUND(COUNT(*) / COUNT(DISTINCT DATE(gmtdatetime)), 1) AS callsaday,
    COUNT(IF(outcome = 'answered', 1, NULL)) AS answered,
    ROUND(100 * AVG(outcome = 'answered'), 1) AS answeredpct,
    COUNT(IF(outcome = 'voicemail', 1, NULL)) AS voicemail,
    COUNT(IF(outcome = 'passedon', 1, NULL)) AS passedon,
    COUNT(IF(outcome = 'abandoned', 1, NULL)) AS abandoned,
    ROUND(100 * AVG(outcome = 'abandoned'), 1) AS abandonedpct,
    IFNULL(SUM(IF(outcome = 'answered', ringing, NULL)), 0) AS wait,
    ROUND(AVG(IF(outcome = 'answered', ringing, NULL))) AS avgwait,
    SUM(callconnected) AS talk, ROUND(AVG(IF(outcome = 'answered', callconnected, NULL))) AS avgtalk
FROM destination INNER JOIN Leg ON B_Num = telephoneNumber
WHERE kind = 'inbound' AND IF(@customer = 1, WEEKDAY(gmtdatetime) < 5, TRUE)
GROUP BY weekday
ORDER BY (WEEKDAY(MIN(gmtdatetime)) + IF(@customer = 1, 0, 1)) % 7;
