-- name: Call List
-- description: The calls behind one figure of a report: choose the figure there.
-- category: 1
-- listorder: 900
-- hidden: 1
-- format: graph:none
-- opt_user: 1
-- opt_department: 1
-- help: One row is one leg of a call: what happened between two parties, from the first ring to the end. A call that was transferred has several; choose the start of one to see them all.
-- help: Ring is the time before somebody answered, talk the time after that; both together are the duration.
--
-- [drill] is the condition on the legs: period, legs that count, the figure's row and column, and
-- [entity] where the report that was left has it. A leg shows both its parties, as they spoke to
-- each other.
SELECT gmtdatetime AS start,
    CASE WHEN A_Trunk <> '' AND B_Trunk <> '' THEN 'Through'
        WHEN A_Trunk <> '' THEN 'Inbound'
        WHEN B_Trunk <> '' THEN 'Outbound'
        ELSE 'Internal' END AS direction,
    A_Name AS caller, IF(A_ShortNum <> '', A_ShortNum, A_Num) AS callernumber,
    B_Name AS dialled, IF(B_ShortNum <> '', B_ShortNum, B_Num) AS diallednumber,
    IFNULL(targetNumber, '') AS ddi,
    CASE WHEN hasconnected AND B_Trunk <> '' THEN IF(B_RemoteName <> '', B_RemoteName, B_Name)
        WHEN hasconnected THEN B_RemoteName
        WHEN B_Remote LIKE '!LeaveVoicemail%' THEN 'Voicemail'
        WHEN transfercall = 1 AND callduration < 2 THEN 'Passed on'
        ELSE 'Nobody' END AS answeredby,
    callduration AS duration, callduration - callconnected AS ring, callconnected AS talk,
    CASE transfercall WHEN 1 THEN 'Transferred away' WHEN 2 THEN 'By transfer' ELSE '' END
        AS transfer,
    SUBSTRING_INDEX(SUBSTRING_INDEX(IF(A_Trunk <> '', A_Trunk, B_Trunk), ',', 1), '=', -1)
        AS trunk,
    accountCode AS account, totalcost AS cost, confId,
    transfercall <> 2 AS n_calls, 1 AS n_legs, transfercall = 2 AS n_transfers
FROM CallLog
WHERE customerid IN('[customerSearchGroup]') AND [drill]
ORDER BY gmtdatetime, id
