-- name: Message List
-- description: The messages behind one figure of a report about the shared inbox: choose the figure there.
-- category: 5
-- listorder: 900
-- hidden: 1
-- format: graph:none
-- opt_inbox: 1
-- opt_tag: 1
-- help: One row is one message. Answered after is the time from a question to the next message that a teammate wrote in its conversation, within the period; a question is a message from outside that follows no other one from outside.
--
-- inboxid carries [entity]; [drill] is the condition of the figure's row and column. A caller whose
-- permissions name teammates sees the names of those only.
WITH message AS (
    SELECT id, customerid, convid, inboxid, author, createdAt, fromHandle, toHandle,
        UNIX_TIMESTAMP(createdAt) AS at, LEAD(author) OVER later AS previous,
        MIN(IF(author <> '', UNIX_TIMESTAMP(createdAt), NULL))
            OVER (later ROWS UNBOUNDED PRECEDING) AS answeredat
    FROM FrontMessage
    WHERE customerid IN('[customerSearchGroup]') AND createdAt [date] AND inboxid [entity]
        AND ('[tag]' = '' OR convid IN (
            SELECT convid
            FROM FrontConversationTag AS t INNER JOIN FrontTag AS g
                ON g.id = t.tagid AND g.customerid = t.customerid
            WHERE t.customerid IN('[customerSearchGroup]') AND g.name = '[tag]'))
    WINDOW later AS (PARTITION BY customerid, convid ORDER BY createdAt DESC, id DESC)
)
SELECT DATE_FORMAT(createdAt, '%Y-%m-%d %H:%i:%s') AS start,
    IF(author = '', 'Received', 'Sent') AS direction, fromHandle AS sender, toHandle AS receiver,
    IF(author <> '' AND ([allteammates] OR author IN (
            SELECT entityNumber FROM CallLogPermissions
            WHERE contactid = '[contactID]' AND customerid IN('[customerSearchGroup]')
                AND type = 'Teammate' AND logging = 1)),
        IFNULL(TRIM(CONCAT(firstName, ' ', lastName)), 'Former teammate'), '') AS teammate,
    IFNULL(i.name, inboxid) AS inbox,
    IF(asks, ROUND(answeredat - at), NULL) AS response
FROM (SELECT *, author = '' AND NOT previous <=> '' AS asks FROM message) AS m
    LEFT JOIN FrontInbox AS i ON i.id = inboxid AND i.customerid = m.customerid
    LEFT JOIN FrontTeammate AS tm ON tm.id = author AND tm.customerid = m.customerid
WHERE [drill]
ORDER BY createdAt, m.id
