-- Message and Question by the tags of their conversations.
WITH tagged AS (
    SELECT g.id, g.name, convid FROM FrontTag AS g INNER JOIN FrontConversationTag AS t ON tagid = g.id
    WHERE g.customerid = @customer
), answer AS (
    SELECT id, COUNT(*) AS questions, COUNT(answered) AS answered, SUM(response) AS responses
    FROM tagged INNER JOIN Question ON Question.convid = tagged.convid AND counts GROUP BY id
)
SELECT name AS tag, COUNT(DISTINCT Message.convid) AS conversations, COUNT(IF(author = '', 1, NULL)) AS received,
    COUNT(NULLIF(author, '')) AS sent, IFNULL(MAX(questions), 0) AS questions, IFNULL(MAX(answered), 0) AS answered,
    ROUND(100 * MAX(answered) / MAX(questions), 1) AS answeredpct, MAX(responses) AS responses,
    ROUND(MAX(responses) / NULLIF(MAX(answered), 0)) AS avgresponse
FROM tagged INNER JOIN Message ON Message.convid = tagged.convid AND counts LEFT JOIN answer ON answer.id = tagged.id
GROUP BY tagged.id, name
ORDER BY conversations DESC, tag;
