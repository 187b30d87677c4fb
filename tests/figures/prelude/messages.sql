-- The table Message: the messages of the period in the inboxes that are open, at the seconds since 1970.
CREATE TEMPORARY TABLE Message (KEY (convid, at)) AS
SELECT m.id, convid, inboxid, name AS inbox, author, UNIX_TIMESTAMP(createdAt) AS at,
    TIME_TO_SEC(createdAt) BETWEEN TIME_TO_SEC(@begins) AND TIME_TO_SEC(@ends) + 0.9999 AS counts
FROM FrontMessage AS m INNER JOIN FrontInbox AS i ON i.id = inboxid
WHERE m.customerid = @customer AND i.customerid = @customer AND NOT isPrivate
    AND UNIX_TIMESTAMP(createdAt) >= TIMESTAMPDIFF(SECOND, '1970-01-01', @from)
    AND UNIX_TIMESTAMP(createdAt) < TIMESTAMPDIFF(SECOND, '1970-01-01', @to);
-- The table Question: what is asked before one and the same answer is one question, asked by its first
-- message. No answer is one, too.
CREATE TEMPORARY TABLE Question AS
SELECT Message.convid, Message.inboxid, Message.inbox, Message.counts, asked, answered,
    ROUND(answered - asked) AS response,
    (SELECT author FROM Message AS a WHERE a.convid = Message.convid AND a.at = answered) AS answerer,
    (SELECT counts FROM Message AS a WHERE a.convid = Message.convid AND a.at = answered) AS answercounts
FROM (
    SELECT convid, answered, MIN(at) AS asked
    FROM (
        SELECT convid, at, (SELECT MIN(at) FROM Message AS reply WHERE reply.convid = Message.convid
            AND reply.author <> '' AND reply.at > Message.at) AS answered
        FROM Message WHERE author = ''
    ) AS inquiry
    GROUP BY convid, answered
) AS question INNER JOIN Message ON Message.convid = question.convid AND Message.at = asked;
