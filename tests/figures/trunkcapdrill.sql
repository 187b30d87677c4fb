-- Part and Busy: the trunks' use by hours.
SELECT CONCAT(SUBSTR(SUBSTRING_INDEX(line, ',', 1), 4), ' (',
        SUBSTR(SUBSTRING_INDEX(SUBSTRING_INDEX(line, ',', 2), ',', -1), 4), ')') AS trunk,
    day, CONCAT(LPAD(EXTRACT(HOUR FROM FROM_UNIXTIME(Busy.hour)), 2, '0'), ':00') AS hour,
    calls, peak, CAST(inuse / 3600 AS DECIMAL(12,2)) AS erlangs, inuse
FROM Busy
WHERE line <> 'voicemail'
ORDER BY line, Busy.hour;
