SELECT name AS inbox, (SELECT COUNT(*) FROM Message WHERE inboxid = i.id AND counts AND author = '') AS received,
    (SELECT COUNT(*) FROM Message WHERE inboxid = i.id AND counts AND author <> '') AS sent,
    (SELECT COUNT(DISTINCT convid) FROM Message WHERE inboxid = i.id AND counts) AS conversations,
    COUNT(asked) AS questions, COUNT(answered) AS answered, COUNT(asked) - COUNT(answered) AS unanswered,
    IF(COUNT(asked) = 0, NULL, ROUND(100 * COUNT(answered) / COUNT(asked), 1)) AS answeredpct,
    SUM(response) AS responses, ROUND(AVG(response)) AS avgresponse, MAX(response) AS longest
FROM FrontInbox AS i LEFT JOIN Question ON Question.inboxid = i.id AND counts
WHERE customerid = @customer AND EXISTS (SELECT * FROM Message WHERE inboxid = i.id AND counts)
GROUP BY i.id, name
ORDER BY name;
