-- name: Missed Calls by User
-- description: Calls to each user that nobody answered: how many, from outside or inside, left to voicemail or not, and how long the telephone rang. A call counts once, where it began.
-- category: 1
-- listorder: 45
-- format: graph:bar series:voicemail,hungup label:user
-- opt_user: 1
-- help: Calls are those dialled to the user, less those diverted before the telephone rang; answered are those that somebody answered there, the user or a colleague who picked up. Missed = calls - answered, missed % is missed / calls x 100.
-- help: Voicemail and hung up divide the missed calls by what the caller did; from outside and from inside by where they came from.
-- help: Rang before hanging up is the time from the first ring until the caller gave up, without calls that went to voicemail.
--
-- Only the party dialled is named and counted, and B_Name carries [entity].
SELECT SQL_BIG_RESULT user, MAX(number) AS number,
    COUNT(*) AS offered,
    SUM(answered) AS answered,
    SUM(NOT answered) AS missed,
    ROUND(100 * SUM(NOT answered) / COUNT(*), 1) AS missedpct,
    SUM(NOT answered AND voicemail) AS voicemail,
    SUM(NOT answered AND NOT voicemail) AS hungup,
    SUM(NOT answered AND outside) AS missedoutside,
    SUM(NOT answered AND NOT outside) AS missedinside,
    SUM(IF(answered OR voicemail, 0, rang)) AS rings,
    ROUND(SUM(IF(answered OR voicemail, 0, rang)) / NULLIF(SUM(NOT answered AND NOT voicemail), 0))
        AS avgring,
    MAX(IF(answered OR voicemail, NULL, rang)) AS longestring
FROM (
    SELECT customerid, B_Name AS user, B_ShortNum AS number, hasconnected AS answered,
        B_Remote LIKE '!LeaveVoicemail%' AS voicemail, A_Trunk <> '' AS outside,
        callduration AS rang
    FROM CallLog
    WHERE customerid IN('[customerSearchGroup]') AND gmtdatetime [date]
        AND TIME(gmtdatetime) [time] AND transfercall IN (0, 1)
        AND B_Remote <> '!CollectVoicemail' AND B_Trunk = ''
        AND NOT (transfercall = 1 AND hasconnected = 0 AND callduration < 2)
        AND B_Name [entity]
) AS leg
GROUP BY customerid, user
HAVING missed > 0
ORDER BY missed DESC, user, customerid
