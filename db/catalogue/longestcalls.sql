-- name: Longest Calls
-- description: The hundred longest conversations of the period, the longest first. A call that was transferred is one conversation with each person who answered; its talk time leads to all of its legs.
-- category: 1
-- listorder: 60
-- format: graph:none
-- opt_user: 1
-- help: Talk time runs from the answer to the end of the conversation; ring time, or the wait in a queue, from the first ring to the answer. Calls that nobody answered are left out.
-- help: Where two conversations are equally long the earlier one stands first.
-- help: The colleague at the other end of an internal call is named where both of them belong to what was chosen.
--
-- Each row is the conversation of a permitted user: [entity] stands on the caller inside and on the
-- one who answered, and a colleague is named only where both carry it.
SELECT gmtdatetime AS start,
    IF(callermine, A_Name, B_RemoteName) AS user,
    CASE WHEN A_Trunk <> '' THEN 'Inbound' WHEN B_Trunk <> '' THEN 'Outbound' ELSE 'Internal' END
        AS direction,
    CASE WHEN A_Trunk <> '' THEN A_Num WHEN B_Trunk <> '' THEN B_Num
        WHEN callermine AND answerermine THEN B_Remote ELSE '' END AS number,
    CASE WHEN A_Trunk <> '' THEN A_Name WHEN B_Trunk <> '' THEN B_Name
        WHEN callermine AND answerermine THEN B_RemoteName ELSE '' END AS party,
    callduration - callconnected AS ringing,
    callconnected AS talk,
    totalcost AS cost,
    confId
FROM (
    SELECT id, gmtdatetime, confId, A_Num, A_Name, A_Trunk, B_Num, B_Name, B_Remote, B_RemoteName,
        B_Trunk, callduration, callconnected, totalcost,
        A_Trunk = '' AND A_Name [entity] AS callermine,
        B_Trunk = '' AND B_RemoteName [entity] AS answerermine
    FROM CallLog
    WHERE customerid IN('[customerSearchGroup]') AND gmtdatetime [date]
        AND TIME(gmtdatetime) [time] AND transfercall IN (0, 1, 2) AND hasconnected
        AND B_Remote <> '!CollectVoicemail'
        AND ((A_Trunk = '' AND A_Name [entity]) OR (B_Trunk = '' AND B_RemoteName [entity]))
    ORDER BY callconnected DESC, gmtdatetime, id
    LIMIT 100
) AS leg
ORDER BY talk DESC, start, id
