-- name: Calls with Contacts
-- description: Every call with up to six contacts, by number or name, the latest first: who spoke with them, when and for how long. Choose the contacts below the period, and a direction if you like.
-- category: 1
-- listorder: 66
-- format: graph:none
-- opt_user: 1
-- opt_department: 1
-- opt_contact: 1
-- opt_in_out: 1
-- help: A row is one leg of a call; a call that was transferred is one with each person who spoke. Only calls from and to the outside are searched.
-- help: Answered: somebody spoke; voicemail: the caller was led to a voicemail box; passed on: diverted before the telephone rang; unanswered: nobody answered. Ring time runs from the first ring to the answer, or to the end where there was none.
--
-- Each row is the call of a permitted party: [entity] stands on the caller inside, on the party
-- dialled and on the one who answered, and only the one who carries it is named.
SELECT gmtdatetime AS start,
    CASE WHEN callermine THEN A_Name WHEN answerermine THEN B_RemoteName ELSE B_Name END AS user,
    IF(inbound, 'Inbound', 'Outbound') AS direction,
    IF(inbound, A_Num, B_Num) AS number, IF(inbound, A_Name, B_Name) AS name,
    CASE WHEN hasconnected THEN 'Answered' WHEN B_Remote LIKE '!LeaveVoicemail%' THEN 'Voicemail'
        WHEN transfercall = 1 AND callduration < 2 THEN 'Passed on' ELSE 'Unanswered' END AS result,
    callduration - callconnected AS ringing, callconnected AS talk, totalcost AS cost, confId,
    transfercall <> 2 AS n_calls, 1 AS n_legs, transfercall = 2 AS n_transfers
FROM (
    SELECT id, gmtdatetime, confId, transfercall, A_Num, A_Name, B_Num, B_Name, B_Remote,
        B_RemoteName, hasconnected, callduration, callconnected, totalcost,
        A_Trunk <> '' AS inbound,
        A_Trunk = '' AND A_Name [entity] AS callermine,
        B_Trunk = '' AND hasconnected AND B_RemoteName [entity] AS answerermine
    FROM CallLog
    WHERE customerid IN('[customerSearchGroup]') AND gmtdatetime [date]
        AND TIME(gmtdatetime) [time] AND transfercall IN (0, 1, 2)
        AND (A_Trunk <> '') <> (B_Trunk <> '')
        AND ((A_Trunk = '' AND A_Name [entity]) OR (B_Trunk = '' AND B_Name [entity])
            OR (B_Trunk = '' AND hasconnected AND B_RemoteName [entity]))
) AS leg
ORDER BY start DESC, id DESC
