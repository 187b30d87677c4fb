-- name: Conversation Lengths
-- description: How many messages it takes to settle a matter in the shared inbox, and how long that lasts. Many long conversations hint at answers that leave questions open.
-- category: 5
-- listorder: 50
-- format: graph:bar series:conversations label:length
-- opt_inbox: 1
-- opt_tag: 1
-- help: A conversation counts once, by the number of its messages in the period, in either direction. Share is its part of all conversations.
-- help: Duration runs from the first to the last of these messages; the average is over all conversations of the length. Unanswered counts those in which no teammate wrote.
--
-- Messages have milliseconds: the period and the time window end with their last second in full.
-- Only inboxes are counted, and inboxid carries [entity]: the permissions on inboxes decide.
SELECT CASE bucket WHEN 1 THEN '1 message' WHEN 2 THEN '2 messages' WHEN 3 THEN '3 or 4'
        WHEN 4 THEN '5 to 9' ELSE '10 and more' END AS length,
    COUNT(*) AS conversations,
    ROUND(100 * COUNT(*) / SUM(COUNT(*)) OVER (), 1) AS share,
    SUM(messages) AS messages, SUM(NOT replied) AS unanswered,
    SUM(lasts) AS duration, ROUND(AVG(lasts)) AS avgduration, MAX(lasts) AS longest
FROM (
    SELECT COUNT(*) AS messages, MAX(author <> '') AS replied,
        CASE WHEN COUNT(*) < 3 THEN COUNT(*) WHEN COUNT(*) < 5 THEN 3 WHEN COUNT(*) < 10 THEN 4
            ELSE 5 END AS bucket,
        ROUND(MAX(UNIX_TIMESTAMP(createdAt)) - MIN(UNIX_TIMESTAMP(createdAt))) AS lasts
    FROM FrontMessage
    WHERE customerid IN('[customerSearchGroup]')
        AND createdAt BETWEEN [startDate] AND [endDate] + INTERVAL 0.999 SECOND
        AND TIME(createdAt) BETWEEN '[startTime]' AND '[endTime].999'
        AND inboxid [entity]
        AND ('[tag]' = '' OR convid IN (
            SELECT convid
            FROM FrontConversationTag AS t INNER JOIN FrontTag AS g
                ON g.id = t.tagid AND g.customerid = t.customerid
            WHERE t.customerid IN('[customerSearchGroup]') AND g.name = '[tag]'))
    GROUP BY customerid, convid
) AS conversation
GROUP BY bucket
ORDER BY bucket
