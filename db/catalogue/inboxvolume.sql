-- name: Inbox Volume
-- description: What each shared inbox received and sent, in how many conversations, and how well its questions were answered.
-- category: 5
-- listorder: 20
-- format: graph:bar series:received,sent label:inbox
-- opt_inbox: 1
-- opt_tag: 1
-- help: Received counts the messages from outside, sent those that a teammate wrote. A conversation counts once in each inbox in which it has a message.
-- help: A question is a message from outside that opens a conversation or follows an answer of ours; what the customer adds before the answer belongs to the same question. The answer is the next message that a teammate wrote in the conversation. A question that has no answer by the end of the period counts as unanswered.
-- help: Response time runs from the question to the answer by the clock, nights and weekends included; its average is over the answered questions.
--
-- Messages have milliseconds: the period and the time window end with their last second in full.
-- Only inboxes are named and counted, and inboxid carries [entity]: the permissions on inboxes decide.
-- The window runs from the latest message back, so that the least answering moment met so far is that
-- of the next answer.
WITH message AS (
    SELECT customerid, convid, inboxid, author, createdAt, UNIX_TIMESTAMP(createdAt) AS at,
        LEAD(author) OVER later AS previous,
        MIN(IF(author <> '', UNIX_TIMESTAMP(createdAt), NULL))
            OVER (later ROWS UNBOUNDED PRECEDING) AS answeredat
    FROM FrontMessage
    WHERE customerid IN('[customerSearchGroup]')
        AND createdAt BETWEEN [startDate] AND [endDate] + INTERVAL 0.999 SECOND
        AND inboxid [entity]
        AND ('[tag]' = '' OR convid IN (
            SELECT convid
            FROM FrontConversationTag AS t INNER JOIN FrontTag AS g
                ON g.id = t.tagid AND g.customerid = t.customerid
            WHERE t.customerid IN('[customerSearchGroup]') AND g.name = '[tag]'))
    WINDOW later AS (PARTITION BY customerid, convid ORDER BY createdAt DESC, id DESC)
)
SELECT IFNULL(i.name, inboxid) AS inbox, received, sent, conversations, questions, answered,
    questions - answered AS unanswered, ROUND(100 * answered / NULLIF(questions, 0), 1) AS answeredpct,
    responses, ROUND(responses / NULLIF(answered, 0)) AS avgresponse, longest,
    inboxid
FROM (
    SELECT customerid, inboxid, SUM(author = '') AS received, SUM(author <> '') AS sent,
        COUNT(DISTINCT convid) AS conversations, SUM(asks) AS questions,
        COUNT(IF(asks, answeredat, NULL)) AS answered,
        SUM(IF(asks, ROUND(answeredat - at), NULL)) AS responses,
        MAX(IF(asks, ROUND(answeredat - at), NULL)) AS longest
    FROM (SELECT *, author = '' AND NOT previous <=> '' AS asks FROM message) AS m
    WHERE TIME(createdAt) BETWEEN '[startTime]' AND '[endTime].999'
    GROUP BY customerid, inboxid
) AS volume LEFT JOIN FrontInbox AS i ON i.id = inboxid AND i.customerid = volume.customerid
ORDER BY inbox, inboxid
