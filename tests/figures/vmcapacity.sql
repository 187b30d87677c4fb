-- Part and Busy: the ports' use by hours.
SELECT day, (SELECT COUNT(*) FROM Part WHERE begun AND service = '!LeaveVoicemail'
        AND DATE(FROM_UNIXTIME(Part.hour)) = day) AS taken,
    (SELECT COUNT(*) FROM Part WHERE begun AND service = '!CollectVoicemail'
        AND DATE(FROM_UNIXTIME(Part.hour)) = day) AS collected,
    (SELECT COUNT(*) FROM Part WHERE begun AND (service LIKE '!Announcement%' OR service = '!LeaveRecording')
        AND DATE(FROM_UNIXTIME(Part.hour)) = day) AS played,
    MAX(peak) AS peak,
    (SELECT TIME_FORMAT(FROM_UNIXTIME(hour), '%H:%i') FROM Busy AS b WHERE line = 'voicemail' AND b.day = Busy.day
        ORDER BY peak DESC, hour LIMIT 1) AS peakat,
    (SELECT TIME_FORMAT(FROM_UNIXTIME(hour), '%H:%i') FROM Busy AS b WHERE line = 'voicemail' AND b.day = Busy.day
        ORDER BY inuse DESC, hour LIMIT 1) AS busyat,
    CAST(MAX(inuse) / 3600 AS DECIMAL(12,2)) AS erlangs, SUM(inuse) AS inuse
FROM Busy
WHERE line = 'voicemail'
GROUP BY day
ORDER BY day;
