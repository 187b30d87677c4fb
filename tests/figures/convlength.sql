WITH size AS (
    SELECT '1 message' AS length, 1 AS least, 1 AS most UNION ALL SELECT '2 messages', 2, 2
    UNION ALL SELECT '3 or 4', 3, 4 UNION ALL SELECT '5 to 9', 5, 9 UNION ALL SELECT '10 and more', 10, 1000
), conversation AS (
    SELECT convid, COUNT(*) AS messages, COUNT(NULLIF(author, '')) AS replies, ROUND(MAX(at) - MIN(at)) AS lasts
    FROM Message WHERE counts GROUP BY convid
)
SELECT length, COUNT(*) AS conversations,
    ROUND(100 * COUNT(*) / (SELECT COUNT(*) FROM conversation), 1) AS share, SUM(messages) AS messages,
    COUNT(IF(replies = 0, 1, NULL)) AS unanswered, SUM(lasts) AS duration, ROUND(AVG(lasts)) AS avgduration,
    MAX(lasts) AS longest
FROM size INNER JOIN conversation ON messages BETWEEN least AND most
GROUP BY length, least
ORDER BY least;
