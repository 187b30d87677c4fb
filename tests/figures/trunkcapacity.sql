-- Part and Busy: the trunks' use by hours.
SELECT CONCAT(SUBSTR(SUBSTRING_INDEX(line, ',', 1), 4), ' (',
        SUBSTR(SUBSTRING_INDEX(SUBSTRING_INDEX(line, ',', 2), ',', -1), 4), ')') AS trunk,
    line AS dn, day, SUM(calls) AS calls, MAX(peak) AS peak,
    (SELECT TIME_FORMAT(FROM_UNIXTIME(hour), '%H:%i') FROM Busy AS b WHERE b.line = Busy.line AND b.day = Busy.day
        ORDER BY peak DESC, hour LIMIT 1) AS peakat,
    (SELECT TIME_FORMAT(FROM_UNIXTIME(hour), '%H:%i') FROM Busy AS b WHERE b.line = Busy.line AND b.day = Busy.day
        ORDER BY inuse DESC, hour LIMIT 1) AS busyat,
    CAST(MAX(inuse) / 3600 AS DECIMAL(12,2)) AS erlangs, CAST(SUM(inuse) / 86400 AS DECIMAL(12,2)) AS average,
    SUM(inuse) AS inuse
FROM Busy
WHERE line <> 'voicemail'
GROUP BY line, day
ORDER BY line, day;
