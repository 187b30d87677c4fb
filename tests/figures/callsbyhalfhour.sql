WITH slot AS (
    SELECT SEC_TO_TIME(seq * 1800) AS first, SEC_TO_TIME(seq * 1800 + 1799) AS last FROM seq_0_to_47
)
SELECT SUBSTRING(first, 1, 5) AS begins,
    COUNT(IF(kind = 'inbound', 1, NULL)) AS inbound,
    COUNT(IF(kind = 'inbound' AND outcome = 'answered', 1, NULL)) AS answered,
    COUNT(IF(kind = 'inbound' AND outcome = 'voicemail', 1, NULL)) AS voicemail,
    COUNT(IF(kind = 'inbound' AND outcome = 'passedon', 1, NULL)) AS passedon,
    COUNT(IF(kind = 'inbound' AND outcome = 'abandoned', 1, NULL)) AS abandoned,
    ROUND(AVG(100.0000 * (IF(kind = 'inbound', outcome = 'answered', NULL))), 1) AS answeredpct,
    IFNULL(SUM(IF(kind = 'inbound' AND outcome = 'answered', ringing, NULL)), 0) AS wait,
    ROUND(AVG(IF(kind = 'inbound' AND outcome = 'answered', ringing, NULL))) AS avgwait,
    MAX(IF(kind = 'inbound' AND outcome <> 'voicemail', ringing, NULL)) AS longestwait,
    COUNT(IF(kind = 'outbound', 1, NULL)) AS outbound,
    COUNT(IF(kind = 'internal', 1, NULL)) AS internal,
    COUNT(*) AS calls,
    COUNT(DISTINCT DATE(gmtdatetime)) AS days,
    ROUND(COUNT(*) / COUNT(DISTINCT DATE(gmtdatetime)), 1) AS callsaday,
    COUNT(*) AS n_calls
FROM slot INNER JOIN Leg ON TIME(gmtdatetime) BETWEEN first AND last
WHERE starts
GROUP BY first
ORDER BY first;
