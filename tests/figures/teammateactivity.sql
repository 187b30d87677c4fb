-- Who wrote the messages of Message, and who gave the answers of Question.
WITH teammate AS (
    SELECT id, CONCAT(firstName, ' ', lastName) AS name FROM FrontTeammate WHERE customerid = @customer
    UNION ALL
    SELECT DISTINCT author, 'Former teammate' FROM Message
    WHERE NOT @restricted AND author <> '' AND author NOT IN (SELECT id FROM FrontTeammate)
), answer AS (
    SELECT answerer, COUNT(*) AS answers, SUM(response) AS responses, MIN(response) AS shortest,
        MAX(response) AS longest
    FROM Question WHERE answercounts GROUP BY answerer
)
SELECT name AS teammate, COUNT(*) AS sent, COUNT(DISTINCT convid) AS conversations,
    IFNULL(MAX(answers), 0) AS answers, MAX(responses) AS responses,
    ROUND(MAX(responses) / MAX(answers)) AS avgresponse, MAX(shortest) AS shortest, MAX(longest) AS longest
FROM teammate INNER JOIN Message ON author = teammate.id AND counts LEFT JOIN answer ON answerer = teammate.id
GROUP BY teammate.id, name
ORDER BY name;
