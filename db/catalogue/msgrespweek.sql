-- name: Message Responses by Day of the Week
-- description: How many questions arrive in the shared inbox on each day of the week, how many of them are answered, how soon, and how many within the target.
-- category: 5
-- listorder: 10
-- format: graph:bar series:within,late,unanswered label:weekday
-- opt_inbox: 1
-- opt_tag: 1
-- opt_sla: 1
-- help: A question is a message from outside that opens a conversation or follows an answer of ours; what the customer adds before the answer belongs to the same question. The answer is the next message that a teammate wrote in the conversation. A question that has no answer by the end of the period counts as unanswered.
-- help: Response time runs from the question to the answer by the clock, nights and weekends included; its average is over the answered questions.
-- help: Within target counts the questions that were answered within the response time of the SLA; service level is within target / questions x 100. Without an SLA every answer is within the target.
-- help: A question belongs to the day of the week on which it arrived in your time zone. The week begins on your company's first day and has as many days as its week.
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
SELECT ELT(weekday, 'Sunday', 'Monday', 'Tuesday', 'Wednesday', 'Thursday', 'Friday', 'Saturday')
        AS weekday,
    COUNT(*) AS questions, SUM(response <= [slaResponse]) AS within,
    SUM(response > [slaResponse]) AS late, SUM(response IS NULL) AS unanswered,
    COUNT(response) AS answered, ROUND(100 * COUNT(response) / COUNT(*), 1) AS answeredpct,
    ROUND(100 * SUM(IFNULL(response <= [slaResponse], 0)) / COUNT(*), 1) AS servicelevel,
    SUM(response) AS responses, ROUND(AVG(response)) AS avgresponse, MAX(response) AS longest,
    question.weekday AS dayofweek
FROM (
    SELECT DAYOFWEEK(createdAt) AS weekday, ROUND(answeredat - at) AS response
    FROM message
    WHERE author = '' AND NOT previous <=> '' AND TIME(createdAt) BETWEEN '[startTime]' AND '[endTime].999'
) AS question
WHERE (weekday + 7 - [startday]) % 7 < [weeklen]
GROUP BY question.weekday
ORDER BY (question.weekday + 7 - [startday]) % 7
