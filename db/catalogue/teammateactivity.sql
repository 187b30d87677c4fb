-- name: Teammate Activity
-- description: How many messages each teammate of the shared inbox wrote, in how many conversations, and how soon they answered.
-- category: 5
-- listorder: 30
-- format: graph:bar series:sent,answers label:teammate
-- opt_inbox: 1
-- opt_tag: 1
-- help: Sent counts the messages that the teammate wrote. Answers are those that were the first reply to a question; a second message to the same question is sent, but no answer.
-- help: A question is a message from outside that opens a conversation or follows an answer of ours; what the customer adds before the answer belongs to the same question. The answer is the next message that a teammate wrote in the conversation. A question that has no answer by the end of the period counts as unanswered.
-- help: Response time runs from the question to the answer by the clock, nights and weekends included; its average is over the answered questions.
-- help: A message of somebody who is a teammate no longer stands under Former teammate.
--
-- Messages have milliseconds: the period and the time window end with their last second in full.
-- inboxid carries [entity]. A caller whose permissions name teammates sees those only.
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
SELECT IFNULL(NULLIF(TRIM(CONCAT(firstName, ' ', lastName)), ''), 'Former teammate') AS teammate,
    SUM(sent) AS sent, SUM(conversations) AS conversations, SUM(answers) AS answers,
    SUM(responses) AS responses, ROUND(SUM(responses) / NULLIF(SUM(answers), 0)) AS avgresponse,
    MIN(shortest) AS shortest, MAX(longest) AS longest,
    IFNULL(tm.id, '') AS teammateid
FROM (
    SELECT customerid, author, COUNT(*) AS sent, COUNT(DISTINCT convid) AS conversations,
        COUNT(askedat) AS answers, SUM(ROUND(at - askedat)) AS responses,
        MIN(ROUND(at - askedat)) AS shortest, MAX(ROUND(at - askedat)) AS longest
    FROM (
        SELECT m.*, IF(previous = '', MIN(at) OVER (PARTITION BY customerid, convid, answeredat), NULL)
            AS askedat
        FROM message AS m
    ) AS reply
    WHERE author <> '' AND TIME(createdAt) BETWEEN '[startTime]' AND '[endTime].999'
        AND ([allteammates] OR author IN (
            SELECT entityNumber FROM CallLogPermissions
            WHERE contactid = '[contactID]' AND customerid IN('[customerSearchGroup]')
                AND type = 'Teammate' AND logging = 1))
    GROUP BY customerid, author
) AS written LEFT JOIN FrontTeammate AS tm ON tm.id = author AND tm.customerid = written.customerid
GROUP BY written.customerid, IFNULL(tm.id, '')
ORDER BY teammate, tm.id
